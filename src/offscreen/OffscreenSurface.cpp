#include "OffscreenSurface.h"

#include "../native/GLDebug.h"
#include "../native/LoopSurface.h"

#include <gui/gl/OffscreenContext.h>
#include <gui/port/WindowSystem.h>
#include <gui/port/offscreen/OffscreenDrawable.h>

#include <epoxy/gl.h>

#include <algorithm>
#include <cmath>

namespace gui::gl
{

namespace
{

td::Size<int> inPixels(const gui::OffscreenDrawable& drawable)
{
    const auto scale = static_cast<double>(drawable.scale);
    return {std::max(1, static_cast<int>(std::lround(drawable.size.width * scale))),
            std::max(1, static_cast<int>(std::lround(drawable.size.height * scale)))};
}

class OffscreenSurface : public LoopSurface
{
public:
    OffscreenSurface(NativeSurfaceClient& client, const PixelFormat& format, const gui::OffscreenDrawable& drawable)
        : LoopSurface(client)
        , _drawable(drawable)
        , _context(inPixels(drawable), format, isGLDebugWanted())
    {
    }

    bool isOk() const { return _context.isOk(); }

    bool makeCurrent() override { return _context.makeCurrent(); }
    bool isContextLost() const override { return _context.isGone(); }
    bool replaceContext() override { return _context.replace(); }
    void flush() override { glFlush(); }
    td::Size<double> getSize() const override { return _drawable.size; }
    float getBackingScale() const override { return _drawable.scale; }
    td::Size<int> getDrawableSize() const override { return _context.getSize(); }
    unsigned int getDefaultFramebuffer() const override { return _context.getDefaultFramebuffer(); }

    void* getNativeWindow() const override { return &_drawable; }
    bool followWindow() override
    {
        const td::Size<int> size = inPixels(_drawable);
        return size == _context.getSize() ? _context.makeCurrent() : _context.resize(size);
    }

private:
    mutable gui::OffscreenDrawable _drawable; // the window writes to it
    OffscreenContext _context;
};

} // namespace

std::unique_ptr<NativeSurface> createOffscreenSurface(NativeSurfaceClient& client, const PixelFormat& format,
                                                      const td::Size<double>& size)
{
    const gui::OffscreenDrawable drawable{size, gui::WindowSystem::instance().getMainDisplayScale()};
    auto surface = std::make_unique<OffscreenSurface>(client, format, drawable);
    if (!surface->isOk())
        return nullptr;
    return surface;
}

} // namespace gui::gl
