#pragma once

#include <gui/gl/port/NativeSurface.h>

namespace gui::gl
{

/// A surface whose view is drawn and clocked by the run loop of the window system in use.
class LoopSurface : public NativeSurface
{
public:
    explicit LoopSurface(NativeSurfaceClient& client)
        : _client(client)
    {
    }
    ~LoopSurface() override;

    void setNeedsDisplay() override;
    void startFrameClock(float minFPS, float maxFPS) override;
    void stopFrameClock() override;

private:
    NativeSurfaceClient& _client;
};

} // namespace gui::gl
