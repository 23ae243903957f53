#pragma once

#include <gui/Cursor.h>
#include <td/RectNormalized.h>

#include <functional>
#include <string>

namespace gui
{
class Texture;
namespace gl
{
class View;
}
} // namespace gui

namespace gallery
{

/// Where scenes are shown, for those that do more than draw: a window, or a picture that is drawn without one. It
/// outlives its scenes.
class Stage
{
public:
    virtual ~Stage() = default;

    /// Whose frames the scene is drawn in; null for pictures.
    virtual const gui::gl::View* getView() const { return nullptr; }

    /// Asks for another frame, although time may stand still.
    virtual void redraw() = 0;

    /// Reads the next frame that is drawn, or the one being drawn, as View::readFrameFrameBuffer does.
    virtual void grab(gui::Texture& image, const std::function<void()>& callback) = 0;

    /// The scene's clock, now: beyond the frame drawn last while time runs.
    virtual double getSeconds() const = 0;
    /// As Space does.
    virtual void toggleTime() = 0;

    /// The pointer's shape over the scene, at once; an arrow at first.
    virtual void setCursor(gui::Cursor::Type type) = 0;

    /// Text comes to the scene. @param pCaret  where the caret is, in points; null for no more text
    virtual void setTextInput(const td::RectNormalized<double>* /*pCaret*/) {}

    /// What the window's title says behind the scene's own. @param note  empty for nothing
    virtual void setNote(const std::string& note) = 0;
};

} // namespace gallery
