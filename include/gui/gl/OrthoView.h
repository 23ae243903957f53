#pragma once

#include "View.h"

#include <td/Export.h>
#include <td/Point.h>
#include <td/RectNormalized.h>
#include <td/Size.h>

#include <glm/mat4x4.hpp>

#include <memory>
#include <optional>

namespace gui::gl
{

/// A view of a plane that the user pans and zooms. Derive from it, call createContext, and draw the plane in onDraw
/// with getProjection as the program's matrix. The user moves it by
/// - a drag with Shift: the plane follows the pointer, which shows gui::Cursor::Type::Pan meanwhile;
/// - the wheel: the plane moves along;
/// - the wheel with Command, or the magnification gesture: zooms about the event's point;
/// - Command-plus and Command-minus: zoom about the view's middle, by 1 + gui::InputDevice::getDefaultZoomIncrement().
/// setBindings chooses what people expect of maps instead: a plain drag pans, the plain wheel zooms.
///
/// An override of a handler calls this class's for what it leaves to it. onZoomChanged and onOriginChanged tell a
/// derived class of every change; they must not end the view's life.
///
/// The projection is always finite: while the size is empty, or the view's edges are so far out that float cannot tell
/// them apart, it stays what it was. Events whose numbers are NaN or infinite change nothing.
///
/// Origin, zoom and the points that are computed of them are double: view points are exact to a hundredth at model
/// coordinates of 1e7 and a zoom of 1e6. The matrix is float, as vertices are. Far from the model's origin, store
/// vertices as distances from a point in their midst, and draw them with getProjection(that point).
class GUIGL_API OrthoView : public View
{
public:
    OrthoView();
    ~OrthoView() override;

    /// What drags and the wheel do.
    enum class Bindings : td::BYTE
    {
        Modified, ///< with Shift a drag pans; the wheel pans, with Command it zooms
        Plain     ///< a drag with the primary or the middle button pans; the wheel zooms about the pointer, five times
                  ///< as fast with Option, and pans with Shift
    };

    /// Modified at first. It takes effect with the next press.
    void setBindings(Bindings bindings);
    Bindings getBindings() const { return _bindings; }

    /// Makes an OpenGL 4.1 core context without depth or stencil buffer and without animation, for all kinds of input.
    /// See View::createContext for what happens when there is none.
    /// @param yDown  true when the plane's y grows downwards like the screen's, false when it grows upwards
    void createContext(bool yDown);
    /// Whether the plane's y grows downwards.
    bool isYDown() const { return _isYDown; }
    /// With a context and events of your own; the plane's y grows upwards.
    using View::createContext;

    /// From model units to clip space. It is up to date in onDraw, after every notification and after onResize.
    const glm::mat4& getProjection() const { return _projection; }

    /// The same for vertices that are stored as distances from a point: right to a fraction of a pixel however far from
    /// the model's origin that is. As it is now; from -1 to 1 in both directions while the size is empty.
    glm::mat4 getProjection(const td::Point<double>& base) const;

    /// The model point at the view's top left corner when y grows downwards, else at its bottom left corner.
    const td::Point<double>& getOrigin() const { return _origin; }

    /// In view points per model unit; 1 at first.
    double getZoom() const override;

    /// Keeps the origin where it is and asks for no redraw. Calls onZoomChanged, then onOriginChanged, if the zoom
    /// changes.
    /// @param zoom  brought into the limits; NaN is ignored
    void setZoom(double zoom);

    /// 0.01 and 100 at first; any two numbers above 0 will do. The zoom stays what it is until it is next set. Ignored
    /// when max is less than min, and, after "Warning! OrthoView::setZoomLimits ignores limits from MIN to MAX", when
    /// one is not above 0 or not finite.
    void setZoomLimits(double min, double max);

    /// Moves the plane so that this point becomes the origin, calls onOriginChanged and asks for a redraw.
    /// @param point  ignored when it is not finite
    void setModelRefPoint(const td::Point<double>& point);

    /// @param viewPoint  in points from the view's top left corner, y downwards, as event records have it
    /// @return the model point that is seen there
    td::Point<double> getModelPoint(const td::Point<double>& viewPoint) const;

    /// @param modelPoint  in model units
    /// @return where it is seen, as getModelPoint takes it; beyond the view's size when it is not seen
    td::Point<double> getViewPoint(const td::Point<double>& modelPoint) const;

    /// The part of the model that is seen; of no size while the view has none.
    td::RectNormalized<double> getVisible() const;

    /// The model point in the view's middle.
    td::Point<double> getCenter() const;
    /// Moves the plane so that a point of the model is there, as setModelRefPoint does.
    void setCenter(const td::Point<double>& modelPoint);
    /// The same at a zoom, as setZoom takes it.
    void setCenter(const td::Point<double>& modelPoint, double zoom);

    /// Zooms about the view's middle: what Command-plus does with any factor above 0.
    /// @return what onZoom returns
    bool zoomBy(double factor);

    /// Shows a rectangle of the model whole, and its middle in the view's middle, as large as the zoom's limits let it
    /// be. Without a width or a height it is the other one that decides; without both the zoom stays. Calls
    /// onZoomChanged, if the zoom changes, and onOriginChanged, and asks for a redraw. As long as the view has no size,
    /// it is done when it gets one, the last call's alone.
    /// @param model   in model units
    /// @param margin  in points, left free on each side
    /// @return false, with nothing changed, when a number is not finite or the margin leaves no room
    bool fit(const td::RectNormalized<double>& model, double margin = 0);

    /// Fits a rectangle as fit does, and goes on to at each size of the view until the plane is moved or zoomed.
    /// @param model, margin  see fit
    /// @return what fit returns; the home stays what it was with false
    bool setHome(const td::RectNormalized<double>& model, double margin = 0);
    /// Fits what setHome was last called with, again at each size. @return false without one, or when it has no room
    bool goHome();
    /// Whether nobody has moved the plane since it was fitted to its home.
    bool isAtHome() const;
    /// Whether setHome has given it one.
    bool hasHome() const { return _home.has_value(); }

    /// Goes to where fit would go, in a flight that is seen: out, along and in again on the way that looks shortest,
    /// the more slowly the nearer it is to either end. It takes frames of the view's animation, and ends when it is
    /// there, with what fit does, or when anybody else moves or zooms the plane; another flight begins where this one
    /// is.
    /// @param model, margin  see fit
    /// @param seconds        not above 0, or while the view has no size, it is fit at once
    /// @return what fit would return
    bool flyTo(const td::RectNormalized<double>& model, double margin = 0, double seconds = 0.8);
    /// Flies home. @return false without one, or when it has no room
    bool flyHome(double seconds = 0.8);
    bool isFlying() const;

    /// What people expect of a map's keys, for an onKeyPressed to call: plus (with or without Shift) and minus, the
    /// keypad's too, zoom as zoomBy does, by 1 + gui::InputDevice::getDefaultZoomIncrement(); an arrow moves what is
    /// seen 60 points its way; 0 and Home go home, if there is one.
    /// @return whether it was one of these
    bool moveByKey(const Key& key);

    /// Keeps what is seen within a rectangle of the model: nobody pans, zooms or sets the origin to beyond. Where more
    /// is seen than the rectangle has, its middle is in the view's middle. Holds at once: calls onOriginChanged and
    /// asks for a redraw when that moves the plane. Sizes that change move it too, with that notification.
    /// @param limits   in model units; ignored when a number is not finite
    /// @param inSight  in points: from 0 on, the view may go beyond the rectangle, as far as so much of it, or all of
    ///                 it, stays in sight both ways
    void setPlaneLimits(const td::RectNormalized<double>& limits, double inSight = -1);
    /// Back to a plane without an end, as it is at first.
    void removePlaneLimits();
    const std::optional<td::RectNormalized<double>>& getPlaneLimits() const { return _limits; }

protected:
    /// Takes over the size and brings the projection up to date; there is no notification and no redraw, but for a fit
    /// that waits for a size, and limits of the plane.
    void onResize(const td::Size<double>& size) override;

    /// These pan: while Shift is held, or as the bindings say.
    void onPrimaryButtonPressed(const InputDevice& device) override;
    void onPrimaryButtonReleased(const InputDevice& device) override;
    void onPrimaryButtonDblClick(const InputDevice& device) override;
    void onCursorDragged(const InputDevice& device) override;
    void onCursorMoved(const InputDevice& device) override; ///< ends a pan whose release went elsewhere
    void onCursorExited(const InputDevice& device) override;
    void onOtherButtonPressed(const InputDevice& device) override;
    void onOtherButtonReleased(const InputDevice& device) override;
    void onOtherDragged(const InputDevice& device) override;

    /// Pans, or, with plain bindings, calls onZoom with a record of its own.
    /// @return true
    bool onScroll(const InputDevice& device) override;

    /// The model point under the record's point stays there. Calls onZoomChanged and onOriginChanged, each twice, and
    /// asks for a redraw, unless the zoom stays as it is because of its limits.
    /// @return true
    bool onZoom(const InputDevice& device) override;

    /// @return what onZoom returns for Command-plus and Command-minus; false for all other keys
    bool onKeyPressed(const Key& key) override;

    /// Goes on with a flight. An animated view calls it from its own, for flights to be seen.
    /// @return whether a flight goes on
    bool prepareNextFrame() override;

private:
    bool zoomBy(double factor, unsigned int modifiers);
    void adjustOrthoProjectionMatrix();
    double clampedZoom(double zoom) const;
    bool setOrigin(const td::Point<double>& origin);
    td::Point<double> withinLimits(const td::Point<double>& origin) const;
    bool keepWithinLimits();
    void beginPanning(const InputDevice& device);
    void panTo(const InputDevice& device);
    void dragPlane(const InputDevice& device, InputDevice::Button button);
    void endPanning();

    struct Fit
    {
        td::RectNormalized<double> model;
        double margin;

        bool operator==(const Fit&) const = default;
    };

    struct Home
    {
        Fit fit;
        td::Point<double> origin; // where it was fitted last
        double zoom;
    };

    struct Place
    {
        td::Point<double> origin;
        double zoom;
    };

    struct Flight;

    std::optional<Place> placeOf(const Fit& fit) const;

    glm::mat4 _projection;
    td::Point<double> _origin;
    float _width = 0;
    float _height = 0;
    double _zoom = 1;
    double _minZoom = 0.01;
    double _maxZoom = 100;
    std::optional<td::RectNormalized<double>> _limits;
    double _inSight = -1;
    std::optional<Fit> _fit; // that waits for a size
    std::optional<Home> _home;
    std::unique_ptr<Flight> _pFlight;
    Bindings _bindings = Bindings::Modified;
    InputDevice::Button _pressed = InputDevice::Button::None; // what a drag with plain bindings began with
    bool _isPanning = false;
    bool _isYDown = false;
};

} // namespace gui::gl
