#include "HostedWindowSystem.h"

#include "offscreen/OffscreenWindowSystem.h"

#include <gui/port/Host.h>
#include <vo/Log.h>

#include <utility>

namespace gui
{

namespace
{

class HostedRunLoop : public RunLoop
{
public:
    explicit HostedRunLoop(Host& host)
        : _host(host)
    {
        connect();
    }
    ~HostedRunLoop() override { disconnect(); }

protected:
    void wait(const std::optional<Time>& until) override { _host.serveEvents(until); }
    void dispatchEvents() override { _host.serveEvents(Clock::now()); }
    void wakeUp() override { _host.wakeUp(); }
    double getDisplayRate(const NativeView* pView) const override { return _host.getDisplayRate(pView); }

private:
    Host& _host;
};

class HostedWindowSystem : public WindowSystem
{
public:
    explicit HostedWindowSystem(std::unique_ptr<Host> pHost)
        : _pHost(std::move(pHost))
        , _runLoop(*_pHost)
    {
    }

    const char* getName() const override { return _pHost->getName(); }
    RunLoop& getRunLoop() override { return _runLoop; }
    std::unique_ptr<WindowPeer> createWindow(const char* title, const td::Size<double>& size) override
    {
        vo::dbgLog("Warning! Window '%s' is seen by nobody: the windows are those of %s", title, getName());
        return createOffscreenWindow(size);
    }
    float getMainDisplayScale() const override { return _pHost->getMainDisplayScale(); }
    std::vector<DisplayInfo> getDisplays() const override { return _pHost->getDisplays(); }
    ColorScheme getColorScheme() const override { return _pHost->getColorScheme(); }
    bool setClipboardText(Clipboard::Kind kind, const std::string& text) override
    {
        return _pHost->setClipboardText(kind, text);
    }
    std::string getClipboardText(Clipboard::Kind kind) override { return _pHost->getClipboardText(kind); }
    bool hasClipboardText(Clipboard::Kind kind) override { return _pHost->hasClipboardText(kind); }

protected:
    void leaveContexts() override { _pHost->leaveContexts(); }

private:
    std::unique_ptr<Host> _pHost;
    HostedRunLoop _runLoop;
};

} // namespace

std::unique_ptr<WindowSystem> createHostedWindowSystem(std::unique_ptr<Host> pHost)
{
    return std::make_unique<HostedWindowSystem>(std::move(pHost));
}

} // namespace gui
