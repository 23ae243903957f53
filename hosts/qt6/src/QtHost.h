#pragma once

#include <gui/port/Host.h>

#include <QObject>
#include <QTimer>

namespace gui::qt
{

/// Qt's loop and clipboard for the library. It adds no wake-up of its own: it looks at what is due when Qt is about to
/// sleep.
class QtHost : public gui::Host
{
public:
    /// Makes it the process's window system, once, if the library has none yet. There must be a QGuiApplication.
    static void use();

    QtHost();

    const char* getName() const override { return "qt"; }
    void wakeUp() override;
    void serveEvents(const std::optional<gui::RunLoop::Time>& until) override;
    double getDisplayRate(const gui::NativeView* pView) const override;
    float getMainDisplayScale() const override;
    std::vector<gui::DisplayInfo> getDisplays() const override;
    gui::ColorScheme getColorScheme() const override;
    bool setClipboardText(gui::Clipboard::Kind kind, const std::string& text) override;
    std::string getClipboardText(gui::Clipboard::Kind kind) override;
    bool hasClipboardText(gui::Clipboard::Kind kind) override;

private:
    void beforeSleep();
    bool isServing() const;
    void takeTurn();
    void wakeAt(gui::RunLoop::Time time);

    QObject _context;
    QTimer _timer;
    int _loopLevel = 0;      // of Qt's loops
    bool _isServing = false; // the library's loop runs at that level, and has Qt's events served
    bool _isInTurn = false;  // the other way round
};

} // namespace gui::qt
