#pragma once

#include "Drawing.h"

#include <gui/gl/OrthoView.h>

#include <td/Color.h>
#include <td/Export.h>

#include <memory>
#include <optional>

namespace gui::draw
{

/// A view of a drawing to pan, zoom and point at: plans, maps, diagrams. A whole program:
///
///     #include <gui/Application.h>
///     #include <gui/draw/DrawingView.h>
///
///     int main(int argc, char** argv)
///     {
///         gui::Application app(argc, argv);
///         gui::draw::DrawingView view;
///         view.drawing().fill(gui::draw::Path().addCircle({0, 0}, 1000), "#d04020");
///         return app.run(view, "A disc", {640, 400});
///     }
///
/// It shows all of the drawing at first, or the home that setHome has given it, and again at each size until the user
/// moves it: by a drag, by the wheel about the pointer, by the keys of OrthoView::moveByKey, and by a double click,
/// which flies to the shape that is there, or home. A drag with Shift draws a box and flies there. Derive from it to
/// learn which shapes are pointed at, clicked and within a box. After a change of the drawing call reDraw.
///
/// Fill the drawing in a derived class's constructor, not in onInit: the context is made before that begins, so that
/// no override of onInit is called.
class GUIGL_API DrawingView : public gl::OrthoView
{
public:
    /// Makes the context too, as OrthoView::createContext(yDown), with plain bindings.
    explicit DrawingView(bool yDown = true);
    ~DrawingView() override;

    /// What it shows, to be filled and changed.
    Drawing& drawing() { return _drawing; }
    const Drawing& drawing() const { return _drawing; }
    /// A second drawing over it, which the pointer looks through and showAll and saveAll leave out: highlights, notes,
    /// lines that are the same whatever becomes of what is below. Where one of the two changes, the other's picture
    /// stays.
    Drawing& overlay() { return _overlay; }
    const Drawing& overlay() const { return _overlay; }
    /// What the drawing is on; white at first.
    void setBackground(td::Color color);

    /// Makes the drawing's bounds, with a margin in points, the view's home (see OrthoView::setHome), and lets people
    /// zoom up to some 10^6 times closer. Done with each size until the first frame, and before that, unless the view
    /// has a home or was moved; call it when the drawing has become larger.
    /// @return false when there is nothing, or no room
    bool showAll(double margin = 30);

    /// Saves all of the drawing on its background as a PNG file.
    /// @param size            in points, of the longer side without the margin
    /// @param margin          in points
    /// @param pixelsPerPoint  see Drawing::savePicture
    /// @return as that; false too when there is nothing
    [[nodiscard]] bool saveAll(const char* path, double size = 1200, double margin = 40, double pixelsPerPoint = 2);

    /// How near the pointer has to be to a shape, in points; 3 at first. 0 for areas side by side, such as countries.
    /// @param points  below 0, or NaN, as 0
    void setReach(double points);
    /// Makes this an overview of another view of the same plane: a rectangle shows what that sees, and a press or a
    /// drag moves it there. This one is neither panned nor zoomed by the pointer then, and tells of no clicks. Call
    /// reRender from the other's onOriginChanged.
    /// @param pView  must outlive this, or another call; null for none
    /// @param color  of the rectangle
    void setOverviewOf(gl::OrthoView* pView, td::Color color = td::ColorID::Crimson);

    /// Where the pointer is, as event records have it; empty when it is elsewhere, or has not moved yet. In the
    /// handlers of clicks it is where the click was: `getModelPoint(*getPointer())` in model units.
    const std::optional<td::Point<double>>& getPointer() const { return _pointer; }
    /// The keys that were held when the pointer last moved or a button was pressed or released, for those who select:
    ///
    ///     void onShapeClicked(Drawing::ID shape) override
    ///     {
    ///         if (!gui::isControlKeyPressed(getModifiers()))
    ///             _selection.clear();
    ///         _selection.insert(shape);
    ///     }
    ///
    /// @return a mask that gui::isShiftPressed, isControlKeyPressed and isAltPressed take
    unsigned int getModifiers() const { return _modifiers; }

protected:
    /// Called when the pointer is at another point of the model, or has gone. For what says where that is; ask for a
    /// frame then. Where the view moves under the pointer it comes with the next frame, before that is drawn.
    virtual void onPointed();
    /// Called after that when another shape is under the pointer; 0 for none. A frame follows.
    virtual void onShapeEntered(Drawing::ID shape);
    /// Called when the primary button is pressed and released without a drag; getPointer says where, and getModifiers
    /// with which keys, in this and all the others. A frame follows. @param shape  0 for none
    virtual void onShapeClicked(Drawing::ID shape);
    /// Called for a double click: flies there, or with 0 home.
    virtual void onShapeDoubleClicked(Drawing::ID shape);
    /// Called when a drag with the primary button and Shift has drawn a box, which is shown meanwhile; Escape ends it
    /// without. A frame follows. This one flies to the box; to select, ask Drawing::pickAll instead. @param box  with a
    /// width or a height
    virtual void onBoxDrawn(const Drawing::Rect& box);

    void onDraw(const td::RectNormalized<double>& rect) override;
    void onResize(const td::Size<double>& size) override;
    void onCursorMoved(const InputDevice& device) override;
    void onCursorExited(const InputDevice& device) override;
    void onCursorDragged(const InputDevice& device) override;
    void onPrimaryButtonPressed(const InputDevice& device) override;
    void onPrimaryButtonReleased(const InputDevice& device) override;
    void onPrimaryButtonDblClick(const InputDevice& device) override;
    void onOtherDragged(const InputDevice& device) override;
    bool onScroll(const InputDevice& device) override;
    bool onZoom(const InputDevice& device) override;
    bool onKeyPressed(const Key& key) override;

private:
    struct Box;
    struct Overview;

    Drawing::ID shapeAt(const td::Point<double>& viewPoint) const;
    void showWhole();
    void setPointer(const InputDevice& device);
    void point();

    Drawing _drawing, _overlay;
    td::Color _background = td::ColorID::White;
    double _reach = 3;
    std::optional<td::Point<double>> _pointer;
    unsigned int _modifiers = 0;
    td::Point<double> _pointed; // the model's point there
    Drawing::ID _entered = 0;
    td::Point<double> _pressed;
    bool _isClick = false;
    bool _isShown = false;
    td::Point<double> _shownOrigin; // where showWhole has brought it
    double _shownZoom = 0;
    std::unique_ptr<Box> _pBox; // while one is drawn
    std::unique_ptr<Overview> _pOverview;
};

} // namespace gui::draw
