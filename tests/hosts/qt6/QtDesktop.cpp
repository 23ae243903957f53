// The desktop of tests of widgets: X11 through Qt.

#include "X11Desktop.h"

#include <gui/qt/ViewWidget.h>

#include <QApplication>
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

namespace test
{

namespace
{

class WidgetWindow : public ShownWindow
{
public:
    WidgetWindow(const char* title, const td::Size<double>& size)
        : _title(title)
        , _size(size)
    {
    }

    bool show(RecordingView& view, gui::gl::Context::Animation animation) override
    {
        _pWidget = std::make_unique<gui::qt::ViewWidget>(
            [&view, animation]
            {
                view.create(animation);
                return &view;
            });
        _pWidget->setWindowTitle(_title);
        setSize(_size);
        _pWidget->show();
        return true;
    }
    void setSize(const td::Size<double>& size) override { _pWidget->resize(int(size.width), int(size.height)); }

private:
    const char* _title;
    td::Size<double> _size;
    std::unique_ptr<gui::qt::ViewWidget> _pWidget;
};

class QtDesktop : public X11Desktop
{
public:
    std::vector<std::string> hearsComposed(const std::vector<std::string>&) const override
    {
        return {"text é", "up key 42496", "up key 'e'"};
    }
    std::unique_ptr<ShownWindow> makeWindow(const char* title, const td::Size<double>& size) const override
    {
        return std::make_unique<WidgetWindow>(title, size);
    }
};

std::unique_ptr<QtDesktop> s_pDesktop;

class Environment : public testing::Environment
{
public:
    void SetUp() override
    {
        s_pDesktop = std::make_unique<QtDesktop>();
        ASSERT_TRUE(s_pDesktop->isOk());
        setenv("GUIGL_WINDOW_SYSTEM", "qt", 1); // what the log is to say
        setenv("QT_QPA_PLATFORM", "xcb", 1);
        static int s_argc = 1;
        static char s_name[] = "qt6_test";
        static char* s_argv[] = {s_name, nullptr};
        _pApplication = std::make_unique<QApplication>(s_argc, s_argv);
        // From the first widget on the library's loop is Qt's.
        const gui::qt::ViewWidget first([]() -> gui::gl::View* { return nullptr; });
    }
    void TearDown() override { _pApplication.reset(); }

private:
    std::unique_ptr<QApplication> _pApplication;
};

testing::Environment* const s_pEnvironment = testing::AddGlobalTestEnvironment(new Environment);

} // namespace

Desktop& desktop() { return *s_pDesktop; }

} // namespace test
