#pragma once

#include <gui/port/Host.h>

#include <gtk/gtk.h>

#include <optional>

namespace gui::gtk
{

/// GTK's loop and clipboard for the library. Its source is in the main context, adds no wake-up of its own, and looks
/// at what is due when that is about to sleep.
class GtkHost : public gui::Host
{
public:
    /// Makes it the process's window system, once, if the library has none yet. GTK is initialised.
    static void use();

    GtkHost();
    ~GtkHost() override;
    GtkHost(const GtkHost&) = delete;
    GtkHost& operator=(const GtkHost&) = delete;

    const char* getName() const override { return "gtk"; }
    void wakeUp() override;
    void serveEvents(const std::optional<gui::RunLoop::Time>& until) override;
    double getDisplayRate(const gui::NativeView* pView) const override;
    float getMainDisplayScale() const override;
    std::vector<gui::DisplayInfo> getDisplays() const override;
    void leaveContexts() override { gdk_gl_context_clear_current(); }
    bool setClipboardText(gui::Clipboard::Kind kind, const std::string& text) override;
    std::string getClipboardText(gui::Clipboard::Kind kind) override;
    bool hasClipboardText(gui::Clipboard::Kind kind) override;

private:
    struct Source;
    static GSourceFuncs s_functions;

    // When the source is due; null when it isn't but for other events.
    std::optional<gui::RunLoop::Time> getDue() const;
    bool isServing(int depth) const;
    void takeTurn();
    void iterate(const std::optional<gui::RunLoop::Time>& until);

    GSource* _pSource;
    // Who iterates the main context here, the library's loop for instance, until when: by then the source only ends a
    // sleep.
    std::optional<gui::RunLoop::Time> _until;
    int _depth = 0; // of the main context's sources
    bool _isServing = false;
    bool _isInTurn = false; // the library's loop turns by GTK's
};

} // namespace gui::gtk
