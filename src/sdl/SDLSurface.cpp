#include "SDLSurface.h"

#include "../native/LoopSurface.h"
#include "SDLContext.h"
#include "SDLEvents.h"

#include <gui/port/sdl/Presentation.h>
#include <gui/port/sdl/SDL.h>
#include <gui/port/sdl/SDLPort.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace gui::gl
{

namespace
{

constexpr double cLongest = 16384; // SDL's own limit, in points

int toPlace(double points) { return static_cast<int>(std::lround(std::clamp(points, -cLongest, cLongest))); }

class SDLSurface : public LoopSurface
{
public:
    SDLSurface(NativeSurfaceClient& client, std::unique_ptr<SDLContext> pContext)
        : LoopSurface(client)
        , _pContext(std::move(pContext))
        , _events(client, *_pContext)
        , _presentedSize(SDLSurface::getDrawableSize())
    {
    }

    bool makeCurrent() override { return _pContext->makeCurrent(); }
    bool beginFrame() override { return _pContext->beginFrame(); }
    bool replaceContext() override { return _pContext->replace(); }
    void flush() override
    {
        gui::awaitPresentation(window());
        SDL_GL_SwapWindow(window());
    }

    td::Size<double> getSize() const override
    {
        int width = 0;
        int height = 0;
        SDL_GetWindowSize(window(), &width, &height);
        return {static_cast<double>(width), static_cast<double>(height)};
    }
    float getBackingScale() const override
    {
        // There are whole pixels alone: 251 of 201 points at a scale of 1.25. Wayland's scales are 120ths.
        constexpr double cSteps = 120;
        const td::Size<double> size = getSize();
        const td::Size<int> pixels = getDrawableSize();
        const double ratio = static_cast<double>(pixels.width) / std::max(1.0, size.width);
        const double scale = std::round(ratio * cSteps) / cSteps;
        const bool isExact = std::lround(size.width * scale) == pixels.width &&
                             std::lround(size.height * scale) == pixels.height;
        return static_cast<float>(isExact ? scale : ratio);
    }
    td::Size<int> getDrawableSize() const override
    {
        return gui::sdl::getPixelSize(window());
    }
    unsigned int getDefaultFramebuffer() const override { return 0; }

    void* getNativeWindow() const override { return window(); }

    bool followWindow() override
    {
        const bool isShown = (SDL_GetWindowFlags(window()) & SDL_WINDOW_HIDDEN) == 0;
        const td::Size<int> size = getDrawableSize();
        const bool isSizeNew = std::exchange(_presentedSize, size) != size;
        const bool isNewlyShown = isShown && !std::exchange(_isShown, isShown);
        return isSizeNew || isNewlyShown ? _pContext->renewBuffers() : makeCurrent();
    }

    void setCursor(gui::Cursor::Type type) override
    {
        // SDL has one pointer for all windows.
        if (_events.isPointerInside())
            SDL_SetCursor(static_cast<SDL_Cursor*>(getSDLCursor(type)));
    }

    void setTextInput(bool isOn) override { _events.setTextInput(isOn); }
    void setTextInputRect(const td::RectNormalized<double>& rect) override
    {
        const int left = toPlace(rect.left), top = toPlace(rect.top);
        _events.setTextInputRect({left, top, toPlace(rect.right) - left, toPlace(rect.bottom) - top});
    }

private:
    SDL_Window* window() const { return _pContext->getWindow(); }

    std::unique_ptr<SDLContext> _pContext;
    SDLEvents _events;
    td::Size<int> _presentedSize;
    bool _isShown = false;
};

int toLength(double points) { return static_cast<int>(std::lround(std::clamp(points, 1.0, cLongest))); }

} // namespace

std::unique_ptr<NativeSurface> createSDLSurface(NativeSurfaceClient& client, const PixelFormat& format,
                                                const td::Size<double>& size)
{
    std::unique_ptr<SDLContext> pContext =
        SDLContext::create(decodePixelFormat(format), {toLength(size.width), toLength(size.height)});
    if (pContext == nullptr)
        return nullptr;
    return std::make_unique<SDLSurface>(client, std::move(pContext));
}

void* getSDLCursor(gui::Cursor::Type type)
{
    static SDL_Cursor* const pArrow = gui::sdl::createCursor(gui::Cursor::Type::Default);
    static SDL_Cursor* const pPan = gui::sdl::createCursor(gui::Cursor::Type::Pan);
    static SDL_Cursor* const pBar = gui::sdl::createCursor(gui::Cursor::Type::Text);
    switch (type)
    {
    case gui::Cursor::Type::Pan:
        return pPan;
    case gui::Cursor::Type::Text:
        return pBar;
    default:
        return pArrow;
    }
}

} // namespace gui::gl
