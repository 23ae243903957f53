#pragma once

#include <gui/gl/port/PixelFormat.h>

#include <gui/gl/CurrentContext.h>
#include <td/Size.h>

#include <memory>

struct SDL_Window;

namespace gui::gl
{

/// A hidden window of SDL with a GL context of its own, shared with nobody.
///
/// On Wayland the buffer that a window has when the context is bound to it is the one that is presented next, whatever
/// becomes of the window's size until then. There the context is bound to a shown window for frames alone, and
/// otherwise to a second window that stays hidden.
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
    /// The same, to draw what the window presents next.
    bool beginFrame();

    /// Makes another context on the same window in the place of this one, which is destroyed, and makes it current.
    /// @return false when there is none to be had
    bool replace();

    /// The window has another size, or was shown: what is drawn next goes into buffers that fit. As makeCurrent.
    bool renewBuffers();

    /// The window, which is hidden, will be shown at this size: another one takes its place where its buffers would be
    /// of the old size. The context may not be current afterwards. @param size  in points
    void prepareToShow(const td::Size<int>& size);

    SDL_Window* getWindow() const { return _pWindow; }

private:
    SDLContext(SDL_Window* pWindow, void* context, const PixelFormatSizes& sizes)
        : _sizes(sizes)
        , _pWindow(pWindow)
        , _context(context)
        , _id(CurrentContext::getID())
    {
    }
    static std::unique_ptr<SDLContext> tryToCreate(const PixelFormatSizes& sizes, const td::Size<int>& size);
    bool bind(SDL_Window* pWindow);
    void unbind();
    void destroyContext();
    SDL_Window* createAnotherWindow(const td::Size<int>& size) const;

    PixelFormatSizes _sizes;
    SDL_Window* _pWindow;
    SDL_Window* _pHiddenWindow = nullptr; // for between frames; null where none is needed
    void* _context; // an SDL_GLContext
    CurrentContext::ID _id;
    bool _isLost = false; // it could not be made current, and the log says so
};

} // namespace gui::gl
