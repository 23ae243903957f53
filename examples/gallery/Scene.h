#pragma once

#include <td/Size.h>
#include <td/Types.h>

#include <string_view>

namespace gui
{
class InputDevice;
class Key;
struct TextComposition;
} // namespace gui

namespace gallery
{

class Stage;

/// What a scene must know of the picture it draws.
struct Frame
{
    td::Size<double> size; ///< in points
    double scale;          ///< device pixels per point
    double seconds;        ///< since the start
};

/// What a pointer, a wheel or a gesture did. See gui::DrawableView's handlers, which are named alike.
enum class PointerEvent : td::BYTE
{
    Entered,
    Moved,
    Dragged,
    Exited,
    Pressed,
    Released,
    DoubleClicked,
    SecondaryPressed,
    SecondaryReleased,
    Scrolled,
    Zoomed
};

/// One feature of the library, shown. A scene owns its programs, buffers and textures, and is destroyed before its
/// context.
class Scene
{
public:
    Scene() = default;
    virtual ~Scene() = default;
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;

    /// Called once, with the context current: link programs, fill buffers, record commands.
    /// @return false, after a line in the log, when the scene can't be shown
    virtual bool init() = 0;

    /// Called once after init, before anything else.
    virtual void enter(Stage& /*stage*/) {}

    /// Draws one picture over the whole viewport. Every Context::Flag is off and polygons are filled, before and after.
    virtual void draw(const Frame& frame) = 0;

    /// Whether time runs in a window as soon as the scene is shown, without a press of Space.
    virtual bool moves() const { return false; }

    /// Called before each frame while time runs. @return false to stop time after this frame
    virtual bool prepareNextFrame(double /*seconds*/) { return true; }

    /// Time starts to run, or stops, other than by prepareNextFrame.
    virtual void onTime(bool /*runs*/) {}

    virtual void onPointer(PointerEvent /*event*/, const gui::InputDevice& /*device*/) {}

    /// Keys go to the window, or to another. Called after enter too.
    virtual void onFocus(bool /*hasFocus*/) {}

    /// A key went down or up. @return true to keep it from the gallery, which then does nothing with it
    virtual bool onKey(const gui::Key& /*key*/, bool /*isDown*/) { return false; }

    /// Where the stage was told to take text. See gui::DrawableView's handlers.
    virtual void onText(std::string_view /*text*/) {}
    virtual void onComposition(const gui::TextComposition& /*composition*/) {}
};

} // namespace gallery
