// Look for: W opens a second window, whose planets stand where those of the first do, at any size, moving or not.

#include "Planets.h"
#include "Scenes.h"
#include "Stage.h"

#include <gui/Key.h>
#include <gui/Window.h>
#include <gui/gl/View.h>

#include <memory>
#include <optional>

namespace gallery
{

namespace
{

bool isW(const gui::Key& key) { return key.getChar() == 'w' || key.getChar() == 'W'; }

// A window with a view and a context of its own. All it shares with the first one is the clock.
class SecondWindow : public gui::gl::View
{
public:
    SecondWindow(Stage& stage, bool isTimeRunning)
        : _stage(stage)
        , _window("The same planets, in a context of their own", {640, 400})
    {
        using namespace gui::gl;
        createContext(Context(isTimeRunning ? Context::Animation::On : Context::Animation::Off,
                              DepthBuffer::Size::Bits24, StencilBuffer::Size::Bits8, Context::Profile::Core41),
                      {gui::InputDevice::Event::Keyboard});
    }

    ~SecondWindow() override
    {
        makeCurrentContext();
        _planets.reset();
    }

    bool open() { return _window.show(*this); }
    bool isOpen() const { return _window.isOpen(); }

protected:
    void onInit() override
    {
        if (!_planets.emplace().init())
            _planets.reset();
    }

    void onDraw(const td::RectNormalized<double>&) override
    {
        td::Size<double> size;
        getSize(size);
        if (_planets.has_value())
            _planets->draw({size, static_cast<double>(getPixelHiDPIScale()), _stage.getSeconds()});
    }

    bool prepareNextFrame() override { return true; }

    bool onKeyPressed(const gui::Key& key) override
    {
        if (key.getChar() == ' ')
            _stage.toggleTime();
        else if (isW(key) || key.getVirtual() == gui::Key::Virtual::Escape)
            _window.close();
        else
            return false;
        return true;
    }

    void cleanResources() override { _planets.reset(); }

private:
    Stage& _stage;
    gui::Window _window;
    std::optional<Planets> _planets;
};

class Windows : public Scene
{
public:
    bool init() override { return _planets.init(); }

    void enter(Stage& stage) override
    {
        _pStage = &stage;
        stage.setNote("W for a second window");
    }

    void draw(const Frame& frame) override { _planets.draw(frame); }

    bool moves() const override { return true; }

    void onTime(bool runs) override
    {
        _isTimeRunning = runs;
        if (_pSecond == nullptr)
            return;
        if (runs)
            _pSecond->startAnimation();
        else
            _pSecond->stopAnimation();
        _pSecond->reRender();
    }

    bool onKey(const gui::Key& key, bool isDown) override
    {
        if (!isDown || !isW(key))
            return false;
        const bool isOpen = _pSecond != nullptr && _pSecond->isOpen();
        _pSecond.reset();
        if (isOpen)
            return true;
        _pSecond = std::make_unique<SecondWindow>(*_pStage, _isTimeRunning);
        if (!_pSecond->open())
            _pStage->setNote("no second window to be had");
        return true;
    }

private:
    Stage* _pStage = nullptr;
    Planets _planets;
    std::unique_ptr<SecondWindow> _pSecond;
    bool _isTimeRunning = false;
};

} // namespace

std::unique_ptr<Scene> makeWindows() { return std::make_unique<Windows>(); }

} // namespace gallery
