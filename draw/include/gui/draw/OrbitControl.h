#pragma once

#include "OrbitCamera.h"

#include <td/Export.h>
#include <td/Point.h>
#include <td/Types.h>

#include <glm/vec3.hpp>

#include <functional>
#include <memory>
#include <optional>

namespace gui
{
class InputDevice;
class Key;
} // namespace gui

namespace gui::draw
{

/// What pointer, wheel, fingers and keys do to an OrbitCamera, and the axes in a corner of its view. OrbitView has one;
/// for views of other kinds, several cameras in one view, and hosts of one's own:
///
///     draw::OrbitCamera _camera;
///     draw::OrbitControl _control{_camera};
///     ...
///     _control.setOnChange([this] { reRender(); });
///     _control.setOnMotion([this] { startAnimation(); });
///     void onCursorDragged(const InputDevice& device) override { _control.onDragged(device); }   // and so on
///     bool prepareNextFrame() override { return _control.advance(); }
///
/// | what | does |
/// |---|---|
/// | a drag with the primary button, a finger | turns about what is there |
/// | one with the middle or the secondary button, or with Shift | moves along, what is there with the pointer |
/// | one with Ctrl | up nearer, down away |
/// | the wheel, a pinch | nearer to what is under the pointer, or away from it; with Shift the wheel moves along |
/// | a double click | flies to what is there, or shows all |
/// | arrows | turn by 15 degrees, with Shift move along by 60 points |
/// | plus and minus | nearer and away, about the view's middle |
/// | 1 to 7 | flies to the front, the right, the back, the left, the top, the bottom, the corner |
/// | 0 and Home | flies to where all is seen |
/// | P | with perspective, or without |
/// | a click on an end of the axes in the corner | flies to look from there, if it does already from the other side |
/// | a drag there | turns about the target |
///
/// Turning and moving along go on for a moment when the button is let go in motion, and end when it is pressed. What is
/// there, under the pointer, says the function given to setPick; where nothing is, or without one, it is the
/// target that is turned about, and a point at its distance that is moved and gone nearer to.
///
/// Handlers take records as views get them, and say whether they used them. Those with numbers that are not finite do
/// nothing. GUI thread only.
class GUIGL_API OrbitControl
{
public:
    /// Where the axes are.
    enum class Corner : td::BYTE
    {
        None, ///< no axes
        TopLeft,
        TopRight,
        BottomLeft,
        BottomRight
    };

    /// @param camera  not owned; has to live as long
    explicit OrbitControl(OrbitCamera& camera);
    ~OrbitControl();
    OrbitControl(const OrbitControl&) = delete;
    OrbitControl& operator=(const OrbitControl&) = delete;

    /// @param pick  the point of the model that is seen at a point of the view, if any; asked when a drag or a turn of
    ///              the wheel begins
    void setPick(std::function<std::optional<glm::dvec3>(const td::Point<double>&)> pick);
    /// @param onChange  called when another frame is to be drawn
    void setOnChange(std::function<void()> onChange);
    /// @param onMotion  called when a flight or a glide begins: frames are to follow until advance returns false
    void setOnMotion(std::function<void()> onMotion);
    /// @param clock  tells seconds since any moment; the steady clock at first, and with an empty one
    void setClock(std::function<double()> clock);

    /// TopRight at first. A view of less than 184 points either way has no axes.
    void setGizmo(Corner corner);
    Corner getGizmo() const; ///< see setGizmo

    /// For the button that the record says, the first one alone until it is let go, or the pointer moves without any.
    void onPressed(const InputDevice& device);
    /// With the button down that onPressed was told of last.
    void onDragged(const InputDevice& device);
    /// @return whether it ends a click on the model: a press without a drag, of the primary button, beside the axes
    bool onReleased(const InputDevice& device);
    void onDoubleClick(const InputDevice& device); ///< takes the place of onPressed
    void onMoved(const InputDevice& device);       ///< with no button down
    void onExited();                               ///< the pointer has left the view
    bool onScroll(const InputDevice& device);      ///< @return whether it was used
    bool onZoom(const InputDevice& device);        ///< @return whether it was used
    bool onKey(const Key& key);                    ///< @return whether it was one of the keys above

    /// Whether a drag is under way.
    bool isDragging() const;

    /// Before a frame of an animation: goes on with flights and glides, by the clock.
    /// @return whether there is more to come
    bool advance();
    /// Starts the clock for a flight that the program has begun by itself, and calls what setOnMotion was given.
    void begin();

    /// Draws the axes over what is there, from inside a view's onDraw, with the viewport over all of it.
    /// @return as Drawing::draw
    bool drawGizmo(const Eye& eye);

private:
    struct Impl;
    std::unique_ptr<Impl> _pImpl;
};

} // namespace gui::draw
