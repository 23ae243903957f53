// The desktop of tests of widgets: X11 through GTK.

#include "X11Desktop.h"
#include "support/Pinning.h"

#include <gui/gl/OffscreenContext.h>
#include <gui/gtk/ViewArea.h>

#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <cstdlib>
#include <memory>

namespace test
{

namespace
{

class AreaWindow : public ShownWindow
{
public:
    AreaWindow(const char* title, const td::Size<double>& size)
        : _pWindow(GTK_WINDOW(gtk_window_new()))
    {
        gtk_window_set_title(_pWindow, title);
        setSize(size);
    }
    AreaWindow(const AreaWindow&) = delete;
    AreaWindow& operator=(const AreaWindow&) = delete;
    ~AreaWindow() override { gtk_window_destroy(_pWindow); }

    bool show(RecordingView& view, gui::gl::Context::Animation animation) override
    {
        const auto make = [&view, animation]
        {
            view.create(animation);
            return &view;
        };
        gtk_window_set_child(_pWindow, gui::gtk::newViewArea(make));
        gtk_window_present(_pWindow);
        return true;
    }
    void setSize(const td::Size<double>& size) override
    {
        gtk_window_set_default_size(_pWindow, int(size.width), int(size.height));
    }

private:
    GtkWindow* _pWindow;
};

class GtkDesktop : public X11Desktop
{
public:
    std::vector<std::string> hearsComposed(const std::vector<std::string>&) const override
    {
        return {"composes ´[]", "composes []", "text é", "up key 'e'"};
    }
    std::unique_ptr<ShownWindow> makeWindow(const char* title, const td::Size<double>& size) const override
    {
        return std::make_unique<AreaWindow>(title, size);
    }
};

std::unique_ptr<GtkDesktop> s_pDesktop;

class Environment : public testing::Environment
{
public:
    void SetUp() override
    {
        s_pDesktop = std::make_unique<GtkDesktop>();
        ASSERT_TRUE(s_pDesktop->isOk());
        setenv("GUIGL_WINDOW_SYSTEM", "gtk", 1); // what the log is to say
        setenv("GDK_BACKEND", "x11", 1);
        setenv("GTK_IM_MODULE", "gtk-im-context-simple", 1);
        setenv("GTK_A11Y", "none", 1);
        setenv("GSETTINGS_BACKEND", "memory", 1);
        // GTK tries the driver and unloads it again, with what it leaks.
        {
            using gui::gl::Context;
            const gui::gl::OffscreenContext context({1, 1}, Context(gui::gl::DepthBuffer::Size::None,
                                                                    gui::gl::StencilBuffer::Size::None,
                                                                    Context::Profile::Core41));
            pinLoadedLibraries();
        }
        gtk_init();
        // From the first widget on the library's loop is GTK's.
        g_object_unref(g_object_ref_sink(gui::gtk::newViewArea([]() -> gui::gl::View* { return nullptr; })));
    }
};

testing::Environment* const s_pEnvironment = testing::AddGlobalTestEnvironment(new Environment);

} // namespace

Desktop& desktop() { return *s_pDesktop; }

} // namespace test
