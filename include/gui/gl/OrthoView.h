#pragma once

#include "View.h"

#include <td/Export.h>
#include <td/Point.h>
#include <td/Size.h>

#include <glm/mat4x4.hpp>

namespace gui::gl
{

/// A view of a plane that the user pans and zooms. Derive from it, call createContext, and draw the plane in onDraw
/// with getProjection as the program's matrix. The user moves it by
/// - a drag with Shift: the plane follows the pointer, which shows gui::Cursor::Type::Pan meanwhile;
/// - the wheel: the plane moves along;
/// - the wheel with Command, or the magnification gesture: zooms about the event's point;
/// - Command-plus and Command-minus: zoom about the view's middle, by 1 + gui::InputDevice::getDefaultZoomIncrement().
///
/// An override of a handler calls this class's for what it leaves to it. onZoomChanged and onOriginChanged tell a
/// derived class of every change; they must not end the view's life.
///
/// The projection is always finite: while the size is empty, or the view's edges are so far out that float cannot tell
/// them apart, it stays what it was. Events whose numbers are NaN or infinite change nothing.
class GUIGL_API OrthoView : public View
{
public:
    OrthoView();

    /// Makes an OpenGL 4.1 core context without depth or stencil buffer and without animation, for all kinds of input.
    /// See View::createContext for what happens when there is none.
    /// @param yDown  true when the plane's y grows downwards like the screen's, false when it grows upwards
    void createContext(bool yDown);
    /// With a context and events of your own; the plane's y grows upwards.
    using View::createContext;

    /// From model units to clip space. It is up to date in onDraw, after every notification and after onResize.
    const glm::mat4& getProjection() const { return _projection; }

    /// The model point at the view's top left corner when y grows downwards, else at its bottom left corner.
    const td::Point<double>& getOrigin() const { return _origin; }

    /// In view points per model unit; 1 at first.
    double getZoom() const override;

    /// Keeps the origin where it is and asks for no redraw. Calls onZoomChanged, then onOriginChanged, if the zoom
    /// changes.
    /// @param zoom  brought into the limits; NaN is ignored
    void setZoom(double zoom);

    /// 0.01 and 100 at first. The zoom stays what it is until it is next set. Ignored when max is less than min, and,
    /// after "Warning! OrthoView::setZoomLimits ignores limits from MIN to MAX", when one is not above 0 or not finite.
    void setZoomLimits(double min, double max);

    /// Moves the plane so that this point becomes the origin, calls onOriginChanged and asks for a redraw.
    /// @param point  ignored when it is not finite
    void setModelRefPoint(const td::Point<double>& point);

    /// @param viewPoint  in points from the view's top left corner, y downwards, as event records have it
    /// @return the model point that is seen there
    td::Point<double> getModelPoint(const td::Point<double>& viewPoint) const;

protected:
    /// Takes over the size and brings the projection up to date; there is no notification and no redraw.
    void onResize(const td::Size<double>& size) override;

    /// These pan while Shift is held.
    void onPrimaryButtonPressed(const InputDevice& device) override;
    void onPrimaryButtonReleased(const InputDevice& device) override;
    void onPrimaryButtonDblClick(const InputDevice& device) override;
    void onCursorDragged(const InputDevice& device) override;
    void onCursorExited(const InputDevice& device) override;

    /// @return true
    bool onScroll(const InputDevice& device) override;

    /// The model point under the record's point stays there. Calls onZoomChanged and onOriginChanged, each twice, and
    /// asks for a redraw, unless the zoom stays as it is because of its limits.
    /// @return true
    bool onZoom(const InputDevice& device) override;

    /// @return what onZoom returns for Command-plus and Command-minus; false for all other keys
    bool onKeyPressed(const Key& key) override;

private:
    void adjustOrthoProjectionMatrix();
    double clampedZoom(double zoom) const;
    bool setOrigin(const td::Point<double>& origin);
    void endPanning();

    glm::mat4 _projection;
    td::Point<double> _origin;
    float _width = 0;
    float _height = 0;
    double _zoom = 1;
    double _minZoom = 0.01;
    double _maxZoom = 100;
    bool _isPanning = false;
    bool _isYDown = false;
};

} // namespace gui::gl
