#include "SDLContext.h"

#include "WaylandFrame.h"

#include "../context/Samples.h"
#include "../native/GLDebug.h"

#include <vo/Log.h>

#include <SDL_error.h>
#include <SDL_hints.h>
#include <epoxy/gl.h>

#include <cstring>
#include <string>
#include <utility>

namespace gui::gl
{

namespace
{

constexpr Uint32 cWindowFlags = SDL_WINDOW_OPENGL | SDL_WINDOW_HIDDEN | SDL_WINDOW_RESIZABLE | SDL_WINDOW_ALLOW_HIGHDPI;

const char* versionOf(const PixelFormatSizes& sizes) { return sizes.is41 ? "4.1" : "3.2"; }

void setAttributes(const PixelFormatSizes& sizes)
{
    constexpr int cChannels = 3;
    SDL_GL_ResetAttributes();
    const std::pair<SDL_GLattr, int> attributes[] = {
        {SDL_GL_RED_SIZE, sizes.colorBits / cChannels},
        {SDL_GL_GREEN_SIZE, sizes.colorBits / cChannels},
        {SDL_GL_BLUE_SIZE, sizes.colorBits / cChannels},
        {SDL_GL_ALPHA_SIZE, sizes.alphaBits},
        {SDL_GL_DEPTH_SIZE, sizes.depthBits},
        {SDL_GL_STENCIL_SIZE, sizes.stencilBits},
        {SDL_GL_MULTISAMPLEBUFFERS, sizes.nSamples > 1 ? 1 : 0},
        {SDL_GL_MULTISAMPLESAMPLES, sizes.nSamples > 1 ? sizes.nSamples : 0},
        {SDL_GL_DOUBLEBUFFER, 1},
        {SDL_GL_SHARE_WITH_CURRENT_CONTEXT, 0},
        {SDL_GL_CONTEXT_PROFILE_MASK, SDL_GL_CONTEXT_PROFILE_CORE},
        {SDL_GL_CONTEXT_MAJOR_VERSION, sizes.is41 ? 4 : 3},
        {SDL_GL_CONTEXT_MINOR_VERSION, sizes.is41 ? 1 : 2},
        {SDL_GL_CONTEXT_FLAGS, isGLDebugWanted() ? SDL_GL_CONTEXT_DEBUG_FLAG : 0},
    };
    for (const auto& [attribute, value] : attributes)
        SDL_GL_SetAttribute(attribute, value);
}

SDL_Window* createWindow(const td::Size<int>& size, bool isTransparent = false)
{
    SDL_SetHint(SDL_HINT_VIDEO_EGL_ALLOW_TRANSPARENCY, isTransparent ? "1" : "0");
    return SDL_CreateWindow("", SDL_WINDOWPOS_UNDEFINED, SDL_WINDOWPOS_UNDEFINED, size.width, size.height,
                            cWindowFlags);
}

// One that tells of resets where the driver has such contexts.
SDL_GLContext createContext(SDL_Window* pWindow)
{
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_RESET_NOTIFICATION, SDL_GL_CONTEXT_RESET_LOSE_CONTEXT);
    const SDL_GLContext context = SDL_GL_CreateContext(pWindow);
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_RESET_NOTIFICATION, SDL_GL_CONTEXT_RESET_NO_NOTIFICATION);
    return context != nullptr ? context : SDL_GL_CreateContext(pWindow);
}

// One that may have been shown.
void destroyWindow(SDL_Window* pWindow)
{
    SDL_HideWindow(pWindow);
    destroyWaylandFrame(pWindow);
    SDL_DestroyWindow(pWindow);
}

bool isOnWayland()
{
    const char* const driver = SDL_GetCurrentVideoDriver();
    return driver != nullptr && std::strcmp(driver, "wayland") == 0;
}

// What somebody gets who asks for nothing in particular.
std::string describeSystem()
{
    SDL_GL_ResetAttributes();
    SDL_Window* const pWindow = createWindow({1, 1});
    const SDL_GLContext context = pWindow != nullptr ? SDL_GL_CreateContext(pWindow) : nullptr;
    std::string description = "no OpenGL at all";
    if (context != nullptr)
    {
        CurrentContext::set(context);
        const auto text = [](GLenum name)
        {
            const GLubyte* const value = glGetString(name);
            return std::string(value != nullptr ? reinterpret_cast<const char*>(value) : "?");
        };
        int depthBits = 0;
        int stencilBits = 0;
        SDL_GL_GetAttribute(SDL_GL_DEPTH_SIZE, &depthBits);
        SDL_GL_GetAttribute(SDL_GL_STENCIL_SIZE, &stencilBits);
        description = "OpenGL " + text(GL_VERSION) + " on " + text(GL_RENDERER) + " with " + std::to_string(depthBits) +
                      " depth and " + std::to_string(stencilBits) + " stencil bits";
        SDL_GL_MakeCurrent(nullptr, nullptr);
        CurrentContext::died(context);
        SDL_GL_DeleteContext(context);
    }
    if (pWindow != nullptr)
        SDL_DestroyWindow(pWindow);
    return description;
}

} // namespace

std::unique_ptr<SDLContext> SDLContext::create(const PixelFormatSizes& asked, const td::Size<int>& size)
{
    PixelFormatSizes sizes = asked;
    if (asked.isTransparent && !isOnWayland())
        vo::dbgLog("Warning! SDLContext has no transparent windows on X11 with SDL2, and the window is opaque");
    std::unique_ptr<SDLContext> context = tryToCreate(sizes, size);
    const std::string error = SDL_GetError();
    PixelFormatSizes samples = asked;
    while (context == nullptr && (fallBack(sizes) || fallBackSamples(samples)))
    {
        if (sizes.nSamples != samples.nSamples)
            sizes = samples;
        context = tryToCreate(sizes, size);
    }
    if (context == nullptr)
        vo::dbgLog("ERROR! SDLContext cannot have an OpenGL %s core context with %d colour, %d alpha, %d depth and %d "
                   "stencil bits (%s); the system has %s",
                   versionOf(asked), asked.colorBits, asked.alphaBits, asked.depthBits, asked.stencilBits,
                   error.c_str(), describeSystem().c_str());
    else if (sizes.depthBits != asked.depthBits || sizes.stencilBits != asked.stencilBits)
        vo::dbgLog("Warning! SDLContext asked for %d depth and %d stencil bits, got %d and %d", asked.depthBits,
                   asked.stencilBits, sizes.depthBits, sizes.stencilBits);
    if (context != nullptr && asked.nSamples > 1)
        if (const int nSamples = samplesOf(0); nSamples != asked.nSamples)
            vo::dbgLog("Warning! SDLContext asked for %d samples, got %d", asked.nSamples, nSamples);
    return context;
}

std::unique_ptr<SDLContext> SDLContext::tryToCreate(const PixelFormatSizes& sizes, const td::Size<int>& size)
{
    setAttributes(sizes);
    SDL_Window* const pWindow = createWindow(size, sizes.isTransparent);
    if (pWindow == nullptr)
        return nullptr;
    const SDL_GLContext context = createContext(pWindow);
    if (context == nullptr)
    {
        SDL_DestroyWindow(pWindow);
        return nullptr;
    }
    CurrentContext::set(context);
    // One window that waits for the display would hold up all the others.
    SDL_GL_SetSwapInterval(0);
    return std::unique_ptr<SDLContext>(new SDLContext(pWindow, context, sizes));
}

void SDLContext::destroyContext()
{
    if (_context == nullptr)
        return;
    if (SDL_GL_GetCurrentContext() == _context)
        SDL_GL_MakeCurrent(nullptr, nullptr);
    CurrentContext::died(_context);
    SDL_GL_DeleteContext(std::exchange(_context, nullptr));
}

bool SDLContext::replace()
{
    destroyContext();
    setAttributes(_sizes);
    _context = createContext(_pWindow);
    if (_context == nullptr)
        return false;
    CurrentContext::set(_context);
    _id = CurrentContext::getID();
    _isLost = false;
    SDL_GL_SetSwapInterval(0);
    return true;
}

SDLContext::~SDLContext()
{
    destroyContext();
    destroyWindow(_pWindow);
    if (_pHiddenWindow != nullptr)
        SDL_DestroyWindow(_pHiddenWindow);
}

bool SDLContext::renewBuffers()
{
    if (isOnWayland())
    {
        // A swap would copy pixels between buffers of different sizes.
        unbind();
        return makeCurrent();
    }
    // On X11 drivers ask for the size at a swap only: the first frame would be drawn into buffers of the old size.
    if (!makeCurrent())
        return false;
    SDL_GL_SwapWindow(_pWindow);
    return true;
}

void SDLContext::prepareToShow(const td::Size<int>& size)
{
    if (!isOnWayland())
        return;
    if (_pHiddenWindow == nullptr)
        _pHiddenWindow = createAnotherWindow({1, 1});
    SDL_Window* const pWindow = _pHiddenWindow != nullptr ? createAnotherWindow(size) : nullptr;
    if (pWindow == nullptr)
        return; // the first frame is of the old size
    unbind();
    destroyWindow(std::exchange(_pWindow, pWindow));
}

SDL_Window* SDLContext::createAnotherWindow(const td::Size<int>& size) const
{
    setAttributes(_sizes);
    return createWindow(size, _sizes.isTransparent);
}

bool SDLContext::makeCurrent()
{
    if (CurrentContext::getID() == _id && SDL_GL_GetCurrentContext() == _context)
        return true;
    const bool isShown = (SDL_GetWindowFlags(_pWindow) & SDL_WINDOW_HIDDEN) == 0;
    return bind(isShown && _pHiddenWindow != nullptr ? _pHiddenWindow : _pWindow);
}

bool SDLContext::beginFrame() { return bind(_pWindow); }

bool SDLContext::bind(SDL_Window* pWindow)
{
    if (_context == nullptr)
        return false;
    // SDL does nothing for the context that it made current last; somebody else may have made another one current
    // since.
    if (CurrentContext::getID() != _id && SDL_GL_GetCurrentContext() == _context)
        SDL_GL_MakeCurrent(nullptr, nullptr);
    if (SDL_GL_MakeCurrent(pWindow, _context) != 0)
    {
        // Once, and not for every frame and event of a view whose context is lost.
        if (!std::exchange(_isLost, true))
            vo::dbgLog("ERROR! SDLContext cannot be made current: %s", SDL_GetError());
        return false;
    }
    _isLost = false;
    CurrentContext::set(_context);
    return true;
}

void SDLContext::unbind()
{
    if (SDL_GL_GetCurrentContext() != _context)
        return;
    SDL_GL_MakeCurrent(nullptr, nullptr);
    CurrentContext::set(nullptr);
}

} // namespace gui::gl
