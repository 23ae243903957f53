#pragma once

#include <gui/gl/port/PixelFormat.h>

#include <gui/gl/CurrentContext.h>
#include <td/Size.h>

#include <SDL_video.h>

#include <memory>

namespace gui::gl
{

/// A hidden window of SDL with a GL context of its own, shared with nobody.
class SDLContext
{
public:
    /// The context is current afterwards. When the sizes are not to be had, they are given up step by step, and a log
    /// line says so. @param size  in points
    /// @return null, after a log line that says what was asked for and what the system has
    static std::unique_ptr<SDLContext> create(const PixelFormatSizes& asked, const td::Size<int>& size);
    ~SDLContext();
    SDLContext(const SDLContext&) = delete;
    SDLContext& operator=(const SDLContext&) = delete;

    /// @return false when it cannot be made current, after a log line the first time
    bool makeCurrent();

    /// The window has another size, or was shown: what is drawn next goes into buffers that fit. As makeCurrent.
    bool renewBuffers();

    SDL_Window* getWindow() const { return _pWindow; }

private:
    SDLContext(SDL_Window* pWindow, SDL_GLContext context)
        : _pWindow(pWindow)
        , _context(context)
        , _id(CurrentContext::getID())
    {
    }
    static std::unique_ptr<SDLContext> tryToCreate(const PixelFormatSizes& sizes, const td::Size<int>& size);

    SDL_Window* _pWindow;
    SDL_GLContext _context;
    CurrentContext::ID _id;
    bool _isLost = false; // it could not be made current, and the log says so
};

} // namespace gui::gl
