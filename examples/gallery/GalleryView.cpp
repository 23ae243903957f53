#include "GalleryView.h"

#include <gui/Application.h>
#include <gui/Key.h>
#include <gui/gl/Context.h>
#include <vo/Log.h>

#include <string>

namespace gallery
{

namespace
{

// The moment that the pictures show too.
constexpr double cFirstSeconds = 2;

} // namespace

GalleryView::GalleryView(gui::Window& window, std::size_t nthScene, int nFrames)
    : _window(window)
    , _nthScene(nthScene)
    , _nFrames(nFrames)
    , _seconds(cFirstSeconds)
{
    using namespace gui::gl;
    using Event = gui::InputDevice::Event;
    createContext(Context(DepthBuffer::Size::Bits24, StencilBuffer::Size::Bits8, Context::Profile::Core41),
                  {Event::CursorEnterLeave, Event::PrimaryClicks, Event::SecondaryClicks, Event::CursorMove,
                   Event::CursorDrag, Event::ScrollAndZoom, Event::Keyboard});
    registerForFocusEvents();
}

GalleryView::~GalleryView()
{
    makeCurrentContext();
    _pScene.reset();
}

void GalleryView::onInit() { showScene(_nthScene); }

void GalleryView::showScene(std::size_t nthScene)
{
    _nthScene = nthScene % scenes().size();
    _seconds = cFirstSeconds;
    _lastFrame = Clock::now();
    _note.clear();
    setCursor(gui::Cursor::Type::Default);
    stopTextInput();
    _pScene.reset();
    makeCurrentContext(); // the scene may have had others
    std::unique_ptr<Scene> pScene = scenes()[_nthScene].make();
    if (pScene->init())
    {
        _pScene = std::move(pScene);
        _pScene->enter(*this);
        _pScene->onFocus(_hasFocus);
    }
    else
        vo::dbgLog("ERROR! Gallery cannot show scene: %s", scenes()[_nthScene].name);
    runTime(_nFrames > 0 || (_pScene != nullptr && _pScene->moves()));
    showTitle();
    reRender();
}

bool GalleryView::prepareNextFrame()
{
    advanceTime();
    const bool goesOn = _pScene == nullptr || _pScene->prepareNextFrame(_seconds);
    return goesOn || _nFrames > 0;
}

void GalleryView::onDraw(const td::RectNormalized<double>&)
{
    td::Size<double> size;
    getSize(size);
    const gallery::Frame frame{size, static_cast<double>(getPixelHiDPIScale()), _seconds};
    if (_pScene != nullptr)
        _pScene->draw(frame);
    else
    {
        gui::gl::Context::clear(td::ColorID::Maroon);
        gui::gl::Context::clear(gui::gl::Context::Clear::Color);
    }
    ++_nDraws;
    if (_nDraws == _nFrames)
        gui::Application::quit();
}

void GalleryView::showTitle()
{
    const SceneInfo& scene = scenes()[_nthScene];
    std::string title = std::to_string(_nthScene + 1) + "  " + scene.title;
    if (!_note.empty())
        title += " - " + _note;
    _window.setTitle(title.c_str());
}

void GalleryView::grab(gui::Texture& image, const std::function<void()>& callback)
{
    readFrameFrameBuffer(image, callback);
}

void GalleryView::setNote(const std::string& note)
{
    _note = note;
    showTitle();
}

// @return whether there is a scene to take the event
bool GalleryView::tell(PointerEvent event, const gui::InputDevice& device)
{
    if (_pScene != nullptr)
        _pScene->onPointer(event, device);
    return _pScene != nullptr;
}

void GalleryView::setFocus(bool hasFocus)
{
    _hasFocus = hasFocus;
    if (_pScene != nullptr)
        _pScene->onFocus(hasFocus);
}

void GalleryView::runTime(bool runs)
{
    advanceTime();
    if (runs)
        startAnimation();
    else
        stopAnimation();
    reRender();
    if (_pScene != nullptr)
        _pScene->onTime(runs);
}

// On the scene's clock.
double GalleryView::secondsSinceFrame(Clock::time_point now) const
{
    return isAnimated() ? std::chrono::duration<double>(now - _lastFrame).count() : 0;
}

void GalleryView::advanceTime()
{
    const Clock::time_point now = Clock::now();
    _seconds += secondsSinceFrame(now);
    _lastFrame = now;
}

bool GalleryView::onKeyPressed(const gui::Key& key)
{
    using Virtual = gui::Key::Virtual;
    if (_pScene != nullptr && _pScene->onKey(key, true))
        return true;
    const std::size_t nScenes = scenes().size();
    const char character = key.getChar();
    if (character >= '1' && character <= '9' && static_cast<std::size_t>(character - '1') < nScenes)
        showScene(static_cast<std::size_t>(character - '1'));
    else if (key.getVirtual() == Virtual::Right || key.getVirtual() == Virtual::Down)
        showScene(_nthScene + 1);
    else if (key.getVirtual() == Virtual::Left || key.getVirtual() == Virtual::Up)
        showScene(_nthScene + nScenes - 1);
    else if (character == ' ')
        toggleTime();
    else if (character == 'f' || character == 'F')
    {
        _inspector.setShown(!_inspector.isShown());
        reRender();
    }
    else if (key.getVirtual() == Virtual::F11)
        _window.setFullScreen(!_window.isFullScreen());
    else if (key.getVirtual() == Virtual::Escape && _window.isFullScreen())
        _window.setFullScreen(false);
    else if (key.getVirtual() == Virtual::Escape)
        gui::Application::quit();
    else
        return false;
    return true;
}

bool GalleryView::onKeyReleased(const gui::Key& key) { return _pScene != nullptr && _pScene->onKey(key, false); }

void GalleryView::onTextInput(std::string_view text)
{
    if (_pScene != nullptr)
        _pScene->onText(text);
}

void GalleryView::onTextComposition(const gui::TextComposition& composition)
{
    if (_pScene != nullptr)
        _pScene->onComposition(composition);
}

void GalleryView::setTextInput(const td::RectNormalized<double>* pCaret)
{
    if (pCaret == nullptr)
    {
        stopTextInput();
        return;
    }
    startTextInput();
    setTextInputRect(*pCaret);
}

} // namespace gallery
