#pragma once

#include "Affine.h"
#include "FillRule.h"
#include "Image.h"
#include "Paint.h"
#include "Path.h"
#include "Stroke.h"
#include "TextLayout.h"
#include "TextOnPath.h"
#include "TextPlacement.h"

#include <td/Export.h>
#include <td/Point.h>
#include <td/RectNormalized.h>
#include <td/Size.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace gui::gl
{
class OrthoView;
}

namespace gui::draw
{

/// A picture that is kept: filled and stroked paths, texts and images, added once, drawn each frame, changed one by
/// one, found under the pointer. All edges are smooth, in contexts with and without samples.
///
///     #include <gui/draw/Drawing.h>
///     #include <gui/gl/OffscreenContext.h>
///
///     int main()
///     {
///         using gui::gl::DepthBuffer;
///         gui::gl::Context settings(DepthBuffer::Size::None, gui::gl::StencilBuffer::Size::None,
///                                   gui::gl::Context::Profile::Core41);
///         gui::gl::OffscreenContext context({200, 200}, settings);
///         gui::draw::Drawing drawing;
///         gui::draw::Path disc;
///         disc.addCircle({100, 100}, 80);
///         drawing.fill(disc, "#e6be3c");
///         drawing.stroke(disc, {.width = 4}, "#5a2814");
///         drawing.draw(gui::draw::Affine());
///         return context.savePicture("disc.png") ? 0 : 1;
///     }
///
/// In a view of a plane, `drawing.draw(*this)` in onDraw is all that zooming and panning take: nothing is uploaded for
/// them, however many shapes there are. What changes is uploaded with the next draw, and nothing else.
///
/// Shapes are drawn in the order in which they were added, later ones over earlier ones; raise and lower change that.
/// Each covers a pixel as far as its area does, and only once: where a translucent stroke crosses itself it is no
/// darker. Fills are exact to some 1/255 of a pixel; strokes are taken at 64 samples a pixel. Where opaque shapes that
/// were added later share edges with a fill, from corner to corner, nothing of what is below shows between them, nor
/// where many such shapes meet at a point.
///
/// Coordinates are double, far from the origin as well: the points of a path are whole numbers of a step that is at
/// most 2^-29 of its size (or 2^-52 of the largest coordinate), and are drawn within a tenth of a pixel of there at
/// every zoom. (For a group that is turned or scaled, as long as the shape is less than a million pixels across.)
///
/// It draws into a texture of the viewport's size, and where frames draw it several times, by other maps or into other
/// viewports, into one for each, up to eight. GL objects are its own, made anew in another context. Not copyable. Only
/// draw needs a context; everything else is for any time, on the GUI thread.
class GUIGL_API Drawing
{
public:
    using Point = td::Point<double>;         ///< in model units
    using Rect = td::RectNormalized<double>; ///< in model units
    /// Names a shape or a group for as long as the drawing lives, and is not given twice; 0 is none.
    using ID = std::uint64_t;

    Drawing();
    ~Drawing();
    Drawing(const Drawing&) = delete;
    Drawing& operator=(const Drawing&) = delete;

    /// What is inside of a path, by the rule; open subpaths are closed.
    /// @return the shape's id, also when nothing of it is to be seen
    ID fill(const Path& path, const Paint& paint, FillRule rule = FillRule::NonZero);
    /// A line along a path.
    ID stroke(const Path& path, const Stroke& stroke, const Paint& paint);

    /// A text. Its letters are the outlines of its face, sharp at every size and angle. No zoom uploads anything but
    /// the pictures of small letters that were not seen before (see docs/type.md): texts in points that are not turned,
    /// of 24 pixels per em or less, have their anchor on a quarter of a pixel in x and on a row in y, and their letters
    /// at fixed distances from there.
    ///
    ///     drawing.text({13.4, 52.5}, "Berlin", {.size = 14, .halo = {1.5}},
    ///                  {.anchor = Anchor::Left, .offset = {6, 0}});
    ///     drawing.text({3, 0}, "6.00", {}, {.anchor = Anchor::Center, .frame = TextFrame{.fill = "#ffffff"}});
    ///
    /// In points (TextStyle::unit, of the first style) a text has the same size at every zoom, is turned by its own
    /// angle alone, whatever groups do, and stands on whole pixels when that is 0. In model units it is as large as the
    /// plane makes it, lies along the plane's x axis turned by its angle, and is never mirrored. A gradient as its
    /// paint is in the layout's own coordinates. Where glyphs of a translucent text overlap, both are seen.
    /// @param at      where the placement's anchor stands
    /// @param layout  read during the call only
    /// @return the text's id, also when there is nothing to see; whatever moves, hides and orders shapes takes it
    ID text(Point at, const TextLayout& layout, const TextPlacement& placement = {});
    ID text(Point at, std::string_view text, const TextStyle& style = {}, const TextPlacement& placement = {});

    /// A text along a path, such as the name of a river.
    ///
    ///     drawing.textOn(river, "Danube", {.size = 13, .paint = "#2060a0", .halo = {1.5}});
    ///
    /// Each letter, with its marks, stands with the middle of its advance at its place on the path, counted along its
    /// length, and is turned as the path goes from the letter's beginning to its end. Of several subpaths it is the
    /// longest; past the beginning of a closed one it goes on. In points letters keep their size, and take a shorter
    /// part of the path the larger that is seen: each step of a zoom places those in sight anew and uploads 16 bytes
    /// for each. In model units only their turning the other way round does. Lines under and through are
    /// bent as the path is.
    /// @param path    copied  @param layout  read during the call only
    /// @return the text's id: setText, setPath and all others take it; picking goes by the letters' boxes
    ID textOn(const Path& path, const TextLayout& layout, const TextOnPath& placement = {});
    ID textOn(const Path& path, std::string_view text, const TextStyle& style = {}, const TextOnPath& placement = {});

    /// A shape of the same size at every zoom: a town's dot, a handle to drag, the head of an arrow.
    ///
    ///     drawing.symbol({13.4, 52.5}, Path().addCircle({0, 0}, 4), "#203040");
    ///
    /// @param at    where it stands
    /// @param path  about that place, in points, y downwards on the screen whatever the plane and groups do; filled by
    ///              the non-zero rule
    /// @return the symbol's id, which setPath takes as well. Picking goes by the rectangle around the path; for bounds
    ///         it is where it stands
    ID symbol(Point at, const Path& path, const Paint& paint);

    /// A picture over a rectangle, upright whichever way y grows. Its edges are as smooth as a fill's, also where it is
    /// turned; smaller than its pixels it is averaged, larger interpolated. Each image takes a draw call where others
    /// stand between.
    /// @param image  none shows nothing, until setImage
    ID image(const Rect& rect, const Image& image);

    /// What is added until endGroup belongs to the group, which may stand in another one.
    /// @param transform  from the group's coordinates to those around it
    ID beginGroup(const Affine& transform = {});
    /// Begins a group again that is there already, such as a layer: what is added until endGroup belongs to it too, and
    /// is drawn over all that is there, as ever. To bring layers into an order, raise each.
    /// @return false for an id that names no group (any more); then nothing is begun
    bool openGroup(ID group);
    /// Ends what was begun last; what is added then belongs to what was begun before. Without a beginGroup it is an
    /// assertion.
    void endGroup();
    /// Takes a shape, or a group with all that is in it, out of its group and into another one, or into none. It is as
    /// if it had been added there: hidden, moved, picked as that group is, with its own transform in that one's
    /// coordinates. Where it is in the order of drawing it stays.
    /// @param group  0 for none
    /// @return false, with nothing changed, for an id that names nothing, a group that is none, or is within the other
    bool setGroup(ID id, ID group);
    /// The innermost group around a shape or a group; 0 for none, as for an id that names nothing.
    ID getGroup(ID id) const;

    /// Changes of shapes and, where it says so, groups. What is set to what it is already changes nothing, and takes no
    /// new picture (but for the paths of fills and of curves, gradients, images and layouts, which are not compared).
    /// @return false for an id that names nothing (any more), or not that; nothing changes then
    ///
    /// Of a text, all letters and lines get it; halos and frames stay. Of a group, all shapes that are in it now.
    bool setColor(ID id, const Paint& paint);
    /// Hides a shape or all of a group, or shows it again. What is in a hidden group stays hidden.
    bool setVisible(ID id, bool isVisible);
    /// Shows a shape, or a group, at some zooms alone: a coarse outline from afar and a fine one from nearby, or a
    /// street's name. It is drawn and picked where its groups' zooms have it too; bounds take no notice of zooms. A
    /// zoom that passes a limit uploads nothing.
    /// @param minZoom, maxZoom  in points per model unit, to the seven digits of a float: from minZoom on, below
    ///                          maxZoom; 0 and infinity at first. What transforms of groups and shapes do to that does
    ///                          not count; of a map that stretches one way more, it is the geometric mean
    bool setZoomRange(ID id, double minZoom, double maxZoom);
    /// Whether pick and pickAll find a shape, or what is in a group; they do at first, and look through what is not.
    bool setPickable(ID id, bool isPickable);
    /// Keeps a number of yours with a shape or a group: what it stands for. Nothing of it is seen.
    bool setTag(ID id, std::uint64_t tag);
    /// The number that setTag gave a shape or, where that is 0, the innermost group around it that has one; else 0, as
    /// for an id that names nothing.
    std::uint64_t getTag(ID id) const;
    /// Of a text, only where it lies along a path; of a symbol, in points about its place.
    bool setPath(ID shape, const Path& path);
    /// Of a text only, which stays where it is, in the style of its beginning or as laid out.
    bool setText(ID text, std::string_view string);
    bool setText(ID text, const TextLayout& layout);
    /// With another anchor, offset, angle or frame; of a text at a point only.
    bool setText(ID text, const TextLayout& layout, const TextPlacement& placement);
    /// Of what was added by image only, which keeps its rectangle (and loses the colour that it may have got).
    bool setImage(ID shape, const Image& image);
    /// Of a stroke only.
    bool setStroke(ID shape, const Stroke& stroke);
    /// Of a group, or of a shape, which has the identity at first.
    bool setTransform(ID id, const Affine& transform);
    /// Removes a shape, or a group with all that is in it.
    bool remove(ID id);
    /// Draws a shape right after (over) another, or right before (under) it. A group's shapes keep their order; over or
    /// under an empty group nothing moves.
    bool moveAbove(ID id, ID other);
    bool moveBelow(ID id, ID other);
    /// Draws it after all others, or before them.
    bool raise(ID id);
    bool lower(ID id);
    /// Removes everything.
    void clear();

    /// How far the lines that stand for curves may be from them, in model units. 0, at first, means for each path
    /// 1/4096 of its own size. For paths that are added or set from now on.
    void setTolerance(double tolerance);

    /// How much of all that it draws is seen, as if it were one picture: 1 at first, 0 for nothing. What is not within,
    /// or no number, counts as 1. Changes nothing else, and uploads nothing.
    void setOpacity(double opacity);

    /// Shapes, not groups.
    std::size_t getNumberOfShapes() const;
    /// Around all visible shapes with their strokes' widths, those in points left out, as is the size of texts in
    /// points, which are where their anchor is; empty when there are none.
    std::optional<Rect> getBounds() const;
    std::optional<Rect> getBounds(ID id) const;

    /// Draws into the framebuffer and viewport that are bound, over what is there, whatever GL state there is; the
    /// state is afterwards what it was, but for texture units 0 to 11.
    /// @param modelToView     from model units to points from the viewport's top left corner, y downwards
    /// @param pixelsPerPoint  of the view
    /// @return false, with a log line for each kind of reason once, when it could not: no context, a map that has no
    ///         inverse, a program that does not link, no memory
    bool draw(const Affine& modelToView, double pixelsPerPoint = 1);
    /// The same with a view's zoom and origin, from its onDraw.
    bool draw(const gl::OrthoView& view);

    /// Saves a picture of any size as a PNG file, opaque, whatever is shown elsewhere. Needs a context.
    ///
    ///     drawing.savePicture("plan.png", {800, 600}, Affine::scaling(20), 4);
    ///
    /// @param size         in points  @param modelToView  as draw takes it
    /// @param pixelsPerPoint  4 is some 300 per inch  @param background  below the shapes
    /// @return false, with a log line, when draw would say so, when the driver has no framebuffer that large, or the
    ///         file could not be written
    [[nodiscard]] bool savePicture(const char* path, const td::Size<double>& size, const Affine& modelToView,
                                   double pixelsPerPoint = 2, td::Color background = td::ColorID::White);

    /// The topmost visible and pickable shape within a tolerance of a point; 0 when there is none. Strokes whose width
    /// is in points are as wide as the last draw has made them, and texts as large, and zooms are that one's; before
    /// one, a point is a model unit and y grows downwards. A text is where its lines are, from top to bottom and from
    /// the first letter to the last, or where its frame is.
    /// @param tolerance  in model units; 0 for the shapes right at the point
    ID pick(Point point, double tolerance = 0) const;
    /// All of these that have a part inside of the rectangle, the topmost one first.
    std::vector<ID> pickAll(const Rect& rect) const;

private:
    friend class Dimensions;
    friend class TextField;
    friend class Upload;
    struct Impl;
    std::unique_ptr<Impl> _pImpl;
};

} // namespace gui::draw
