#include <gui/Window.h>

#include <gui/NativeView.h>
#include <gui/Texture.h>
#include <gui/ZavObject.h>
#include <gui/port/RunLoop.h>
#include <gui/port/WindowSystem.h>
#include <td/Assert.h>
#include <td/GUIThread.h>
#include <vo/Log.h>

#include <utility>

namespace gui
{

namespace
{

// Counts a window as closed at the end of its scope, even when a handler throws on the way.
struct ClosedWindow
{
    explicit ClosedWindow(Window* pWindow)
        : _pWindow(pWindow)
    {
    }
    ClosedWindow(const ClosedWindow&) = delete;
    ClosedWindow& operator=(const ClosedWindow&) = delete;
    ~ClosedWindow() { WindowSystem::instance().getRunLoop().windowClosed(_pWindow); }

private:
    Window* _pWindow;
};

} // namespace

Window::Window(const char* title, const td::Size<double>& size)
{
    if (!(size.width >= 1 && size.height >= 1))
        vo::dbgLog("Error! Window with a size of %g x %g points, which is never seen", size.width, size.height);
    TD_ASSERT(size.width >= 1 && size.height >= 1);
    _pPeer = WindowSystem::instance().createWindow(title != nullptr ? title : "", size);
}

Window::~Window() { close(); }

bool Window::show(ZavObject& view)
{
    TD_ASSERT_GUI_THREAD(false);
    auto* const pNativeView = dynamic_cast<NativeView*>(view.getHandle());
    if (pNativeView == nullptr)
    {
        vo::dbgLog("Error! Window::show view without a native view! Create its context first!");
        return false;
    }
    if (_pPeer == nullptr)
    {
        vo::dbgLog("Error! Window::show on a closed window!");
        return false;
    }
    if (!pNativeView->isAlive())
    {
        vo::dbgLog("Error! Window::show view whose native view went with its window! Make another view!");
        return false;
    }
    if (_pNativeView == pNativeView)
        return true;

    // Counted before the other one closes, which would be the last and end the program.
    const bool wasOpen = isOpen();
    if (!wasOpen)
        WindowSystem::instance().getRunLoop().windowOpened(this);
    if (Window* const pOther = pNativeView->_pWindow)
    {
        pNativeView->leftWindow();
        pOther->closeWithoutView();
    }
    if (wasOpen)
        release();
    _pNativeView = pNativeView;
    pNativeView->_pWindow = this;
    _pPeer->show(pNativeView);
    return true;
}

// Lets go of the view, which goes on living without a window.
void Window::release()
{
    NativeView* const pNativeView = std::exchange(_pNativeView, nullptr);
    pNativeView->_pWindow = nullptr;
    _pPeer->hide();
    pNativeView->leftWindow();
}

void Window::close()
{
    if (!isOpen())
    {
        _pPeer.reset();
        return;
    }
    const ClosedWindow closed(this);
    const std::unique_ptr<WindowPeer> pPeer = std::move(_pPeer);
    NativeView* const pNativeView = std::exchange(_pNativeView, nullptr);
    pNativeView->_pWindow = nullptr;
    pPeer->hide();
    pNativeView->leftWindow();
    pNativeView->windowClosed();
}

void Window::closeWithoutView()
{
    const ClosedWindow closed(this);
    const std::unique_ptr<WindowPeer> pPeer = std::move(_pPeer);
    std::exchange(_pNativeView, nullptr)->_pWindow = nullptr;
    pPeer->hide();
}

void NativeView::closeWindow()
{
    if (_pWindow != nullptr)
        _pWindow->closeWithoutView();
}

void Window::setTitle(const char* title)
{
    TD_ASSERT_GUI_THREAD();
    if (_pPeer != nullptr && title != nullptr)
        _pPeer->setTitle(title);
}

void Window::setSize(const td::Size<double>& size)
{
    TD_ASSERT_GUI_THREAD();
    TD_ASSERT(size.width >= 1 && size.height >= 1);
    if (_pPeer != nullptr)
        _pPeer->setSize(size);
}

td::Size<double> Window::getSize() const { return _pPeer != nullptr ? _pPeer->getSize() : td::Size<double>(); }

void Window::setMinSize(const td::Size<double>& size)
{
    if (_pPeer != nullptr)
        _pPeer->setMinSize(size);
}

void Window::setPosition(const td::Point<double>& position)
{
    if (_pPeer != nullptr)
        _pPeer->setPosition(position);
}

std::optional<td::Point<double>> Window::getPosition() const
{
    return _pPeer != nullptr ? _pPeer->getPosition() : std::nullopt;
}

bool Window::setIcon(const Texture& picture)
{
    const unsigned int nBytes = picture.getBytesPerPixel();
    if (!picture.isOk() || (nBytes != 3 && nBytes != 4))
    {
        vo::dbgLog("Error! Window::setIcon picture without pixels of 3 or 4 bytes!");
        return false;
    }
    if (_pPeer != nullptr)
        _pPeer->setIcon(picture);
    return true;
}

void Window::setState(State state)
{
    if (_pPeer != nullptr)
        _pPeer->setState(state);
}

Window::State Window::getState() const { return _pPeer != nullptr ? _pPeer->getState() : State::Normal; }

void Window::setStateHandler(std::function<void(State)> handler) { _stateHandler = std::move(handler); }

void WindowPeer::tellState(const NativeView& view, Window::State state)
{
    const Window* const pWindow = view.getWindow();
    if (pWindow == nullptr || !pWindow->_stateHandler)
        return;
    // A copy: it may set another one, or be the window's end.
    const std::function<void(Window::State)> handler = pWindow->_stateHandler;
    handler(state);
}

void Window::setFullScreen(bool isFullScreen)
{
    if (_pPeer != nullptr)
        _pPeer->setFullScreen(isFullScreen);
}

bool Window::isFullScreen() const { return _pPeer != nullptr && _pPeer->isFullScreen(); }

} // namespace gui
