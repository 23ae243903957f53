#include "SDLContext.h"

#include "../context/Samples.h"
#include "../native/GLDebug.h"

#include <gui/port/sdl/SDL.h>
#include <gui/port/sdl/SDLPort.h>
#include <vo/Log.h>

#include <epoxy/gl.h>

#include <cstring>
#include <string>
#include <utility>

namespace gui::gl
{

namespace
{

void setAttributes(const PixelFormatSizes& sizes)
{
    constexpr int cChannels = 3;
    SDL_GL_ResetAttributes();
    const std::pair<decltype(SDL_GL_RED_SIZE), int> attributes[] = {
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
        {SDL_GL_CONTEXT_PROFILE_MASK, sizes.isES ? SDL_GL_CONTEXT_PROFILE_ES : SDL_GL_CONTEXT_PROFILE_CORE},
        {SDL_GL_CONTEXT_MAJOR_VERSION, sizes.is41 ? 4 : 3},
        {SDL_GL_CONTEXT_MINOR_VERSION, sizes.is41 || sizes.isES ? 1 : 2},
        {SDL_GL_CONTEXT_FLAGS, isGLDebugWanted() ? SDL_GL_CONTEXT_DEBUG_FLAG : 0},
    };
    for (const auto& [attribute, value] : attributes)
        SDL_GL_SetAttribute(attribute, value);
}

// One that tells of resets where the driver has such contexts.
void* createContext(SDL_Window* pWindow)
{
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_RESET_NOTIFICATION, SDL_GL_CONTEXT_RESET_LOSE_CONTEXT);
    void* const context = SDL_GL_CreateContext(pWindow);
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_RESET_NOTIFICATION, SDL_GL_CONTEXT_RESET_NO_NOTIFICATION);
    return context != nullptr ? context : SDL_GL_CreateContext(pWindow);
}

// What somebody gets who asks for nothing in particular.
std::string describeSystem()
{
    SDL_GL_ResetAttributes();
    SDL_Window* const pWindow = gui::sdl::createWindow({1, 1}, false);
    void* const context = pWindow != nullptr ? SDL_GL_CreateContext(pWindow) : nullptr;
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
        gui::sdl::makeCurrent(nullptr, nullptr);
        CurrentContext::died(context);
        gui::sdl::deleteContext(context);
    }
    if (pWindow != nullptr)
        SDL_DestroyWindow(pWindow);
    return description;
}

} // namespace

std::unique_ptr<SDLContext> SDLContext::create(const PixelFormatSizes& asked, const td::Size<int>& size)
{
    PixelFormatSizes sizes = asked;
    if (asked.isTransparent && !gui::sdl::hasTransparentWindows())
        vo::dbgLog("Warning! SDLContext has no transparent windows on X11 with SDL2, and the window is opaque");
    std::unique_ptr<SDLContext> context = tryToCreate(sizes, size);
    const std::string error = SDL_GetError();
    PixelFormatSizes samples = asked;
    PixelFormatSizes version = asked;
    while (context == nullptr && (fallBack(sizes) || fallBackSamples(samples) || fallBackVersion(version)))
    {
        if (sizes.is41 != version.is41)
            sizes = samples = version;
        else if (sizes.nSamples != samples.nSamples)
            sizes = samples;
        context = tryToCreate(sizes, size);
    }
    if (context == nullptr)
        vo::dbgLog("ERROR! SDLContext cannot have an %s context with %d colour, %d alpha, %d depth and %d "
                   "stencil bits (%s); the system has %s",
                   nameOfOpenGL(asked), asked.colorBits, asked.alphaBits, asked.depthBits, asked.stencilBits,
                   error.c_str(), describeSystem().c_str());
    else if (sizes.depthBits != asked.depthBits || sizes.stencilBits != asked.stencilBits)
        vo::dbgLog("Warning! SDLContext asked for %d depth and %d stencil bits, got %d and %d", asked.depthBits,
                   asked.stencilBits, sizes.depthBits, sizes.stencilBits);
    static bool s_isVersionSaid = false; // it is the same for every context
    if (context != nullptr && sizes.is41 != asked.is41 && !std::exchange(s_isVersionSaid, true))
        vo::dbgLog("Warning! SDLContext asked for %s, got %s", nameOfOpenGL(asked), nameOfOpenGL(sizes));
    if (context != nullptr && asked.nSamples > 1)
        if (const int nSamples = samplesOf(0); nSamples != asked.nSamples)
            vo::dbgLog("Warning! SDLContext asked for %d samples, got %d", asked.nSamples, nSamples);
    return context;
}

std::unique_ptr<SDLContext> SDLContext::tryToCreate(const PixelFormatSizes& sizes, const td::Size<int>& size)
{
    setAttributes(sizes);
    SDL_Window* const pWindow = gui::sdl::createWindow(size, sizes.isTransparent);
    if (pWindow == nullptr)
        return nullptr;
    void* const context = createContext(pWindow);
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
        gui::sdl::makeCurrent(nullptr, nullptr);
    CurrentContext::died(_context);
    gui::sdl::deleteContext(std::exchange(_context, nullptr));
}

bool SDLContext::replace()
{
    destroyContext();
    setAttributes(_sizes);
    _context = createContext(_pWindow);
    if (_context == nullptr && gui::sdl::isOnWayland())
    {
        // SDL makes contexts for the frame buffers that it chose last, for whichever window: choose these again.
        SDL_Window* const pChosen = gui::sdl::createWindow({1, 1}, _sizes.isTransparent);
        _context = createContext(_pWindow);
        if (pChosen != nullptr)
            SDL_DestroyWindow(pChosen);
    }
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
    gui::sdl::destroyWindow(_pWindow);
    if (_pHiddenWindow != nullptr)
        SDL_DestroyWindow(_pHiddenWindow);
}

bool SDLContext::renewBuffers()
{
    if (gui::sdl::isOnWayland())
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
    if (!gui::sdl::isOnWayland())
        return;
    if (_pHiddenWindow == nullptr)
        _pHiddenWindow = createAnotherWindow({1, 1});
    SDL_Window* const pWindow = _pHiddenWindow != nullptr ? createAnotherWindow(size) : nullptr;
    if (pWindow == nullptr)
        return; // the first frame is of the old size
    unbind();
    gui::sdl::destroyWindow(std::exchange(_pWindow, pWindow));
}

SDL_Window* SDLContext::createAnotherWindow(const td::Size<int>& size) const
{
    setAttributes(_sizes);
    return gui::sdl::createWindow(size, _sizes.isTransparent);
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
        gui::sdl::makeCurrent(nullptr, nullptr);
    if (!gui::sdl::makeCurrent(pWindow, _context))
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
    gui::sdl::makeCurrent(nullptr, nullptr);
    CurrentContext::set(nullptr);
}

} // namespace gui::gl
