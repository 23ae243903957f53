#pragma once

#include <gui/port/RunLoop.h>

#include <condition_variable>
#include <mutex>

namespace gui
{

/// A run loop without a window system: nothing happens but what the program itself asks for.
class OffscreenRunLoop : public RunLoop
{
public:
    OffscreenRunLoop() { connect(); }
    ~OffscreenRunLoop() override { disconnect(); }

protected:
    void wait(const std::optional<Time>& until) override;
    void dispatchEvents() override;
    void wakeUp() override;
    double getDisplayRate(const NativeView*) const override { return 0; }

private:
    std::mutex _mutex;
    std::condition_variable _wakeUp;
    bool _isWoken = false;
};

} // namespace gui
