#pragma once

#include "Scenes.h"
#include "Stage.h"

#include <gui/Window.h>
#include <gui/draw/Inspector.h>
#include <gui/gl/View.h>

#include <chrono>
#include <cstddef>
#include <memory>

namespace gallery
{

/// Shows one scene after the other in a window: digits and arrow keys choose, Space starts and stops time, F, or F12,
/// shows what a frame costs, F11 fills the screen, Escape leaves it, and the program. Time stands still when a scene is
/// shown, unless the scene moves by itself.
class GalleryView : public gui::gl::View, private Stage
{
public:
    /// @param nthScene  the first to be shown
    /// @param nFrames   after how many frames the program ends, time running; 0 for never
    GalleryView(gui::Window& window, std::size_t nthScene, int nFrames);
    ~GalleryView() override;

protected:
    void onInit() override;
    void onDraw(const td::RectNormalized<double>& rect) override;
    bool prepareNextFrame() override;
    void onCursorEntered(const gui::InputDevice& device) override { tell(PointerEvent::Entered, device); }
    void onCursorMoved(const gui::InputDevice& device) override { tell(PointerEvent::Moved, device); }
    void onCursorDragged(const gui::InputDevice& device) override { tell(PointerEvent::Dragged, device); }
    void onCursorExited(const gui::InputDevice& device) override { tell(PointerEvent::Exited, device); }
    void onPrimaryButtonPressed(const gui::InputDevice& device) override { tell(PointerEvent::Pressed, device); }
    void onPrimaryButtonReleased(const gui::InputDevice& device) override { tell(PointerEvent::Released, device); }
    void onPrimaryButtonDblClick(const gui::InputDevice& device) override { tell(PointerEvent::DoubleClicked, device); }
    void onSecondaryButtonPressed(const gui::InputDevice& device) override
    {
        tell(PointerEvent::SecondaryPressed, device);
    }
    void onSecondaryButtonReleased(const gui::InputDevice& device) override
    {
        tell(PointerEvent::SecondaryReleased, device);
    }
    bool onScroll(const gui::InputDevice& device) override { return tell(PointerEvent::Scrolled, device); }
    bool onZoom(const gui::InputDevice& device) override { return tell(PointerEvent::Zoomed, device); }
    void onFocusIn() override { setFocus(true); }
    void onFocusOut() override { setFocus(false); }
    bool onKeyPressed(const gui::Key& key) override;
    bool onKeyReleased(const gui::Key& key) override;
    void onTextInput(std::string_view text) override;
    void onTextComposition(const gui::TextComposition& composition) override;
    void cleanResources() override { _pScene.reset(); }

private:
    using Clock = std::chrono::steady_clock;

    const gui::gl::View* getView() const override { return this; }
    void redraw() override { reRender(); }
    void grab(gui::Texture& image, const std::function<void()>& callback) override;
    double getSeconds() const override { return _seconds + secondsSinceFrame(Clock::now()); }
    void toggleTime() override { runTime(!isAnimated()); }
    void setCursor(gui::Cursor::Type type) override { View::setCursor(type, true); }
    void setTextInput(const td::RectNormalized<double>* pCaret) override;
    void setNote(const std::string& note) override;

    void showScene(std::size_t nthScene);
    bool tell(PointerEvent event, const gui::InputDevice& device);
    void setFocus(bool hasFocus);
    void runTime(bool runs);
    double secondsSinceFrame(Clock::time_point now) const;
    void advanceTime();
    void showTitle();

    gui::Window& _window;
    std::unique_ptr<Scene> _pScene;
    std::size_t _nthScene;
    std::string _note;
    int _nFrames;
    double _seconds; // on the scene's clock
    Clock::time_point _lastFrame;
    bool _hasFocus = false;
    gui::draw::Inspector _inspector;
    int _nDraws = 0;
};

} // namespace gallery
