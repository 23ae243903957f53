#pragma once

#include "Axes.h"
#include "PlotStyle.h"

#include <td/Export.h>
#include <td/Size.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <span>

namespace gui
{
class InputDevice;
class Key;
} // namespace gui

namespace gui::draw
{

/// A sheet of axes in rows and columns: draws them, and moves them by what a pointer and keys do. PlotView is a view
/// that shows one; others hand on their events and draw it where they like.
///
///     #include <gui/draw/Plot.h>
///     #include <gui/gl/OffscreenContext.h>
///
///     int main()
///     {
///         gui::draw::Plot plot;
///         plot.add(gui::draw::Series::line({3, 1, 4, 1, 5, 9, 2, 6}));
///         gui::gl::Context settings(gui::gl::DepthBuffer::Size::None, gui::gl::StencilBuffer::Size::None,
///                                   gui::gl::Context::Profile::Core41);
///         gui::gl::OffscreenContext context({16, 16}, settings);
///         return plot.savePicture("digits.png", {640, 400}, 2) ? 0 : 1;
///     }
///
/// A drag moves what is seen, and that of one axis alone where it begins beside it; with Shift it draws the box that is
/// seen then. The wheel zooms about the pointer: both axes, or that whose numbers it is on. A double click shows all.
/// The pointer over the samples shows the nearest one's values.
///
/// It draws lines with smooth edges by a table of what is seen and shaders of its own: each change of what is seen
/// takes one upload of some kilobytes. GL objects are made anew in another context. Not copyable. Only draw and
/// savePicture need a context; GUI thread only.
class GUIGL_API Plot
{
public:
    using Point = td::Point<double>; ///< in points from the top left corner, y downwards

    /// @param rows, columns  of axes, each 1 at least (an assertion, and 1)
    explicit Plot(std::size_t rows = 1, std::size_t columns = 1);
    ~Plot();
    Plot(const Plot&) = delete;
    Plot& operator=(const Plot&) = delete;

    /// Adds to the first axes. @return the series, which lives until it is removed
    Series& add(Series series);
    /// @param row, column  from the top left, there (an assertion, and the first)
    Axes& axes(std::size_t row = 0, std::size_t column = 0);
    std::size_t getRows() const;
    std::size_t getColumns() const;
    /// The axes of all rows show the same x.
    void linkX();
    /// How much of the height rows take, of the width columns, in relation to each other; 1 each at first.
    /// @param shares  as many as there are (else it is an assertion, and nothing changes), above 0
    void setRowShares(std::span<const double> shares);
    void setColumnShares(std::span<const double> shares); ///< see setRowShares

    /// Colours and sizes of all axes.
    void setStyle(const PlotStyle& style);
    const PlotStyle& getStyle() const; ///< see setStyle
    /// Whether the pointer shows values; it does at first.
    void setCrosshair(bool hasCrosshair);

    /// Called when there is something new to draw.
    void setOnChange(std::function<void()> onChange);
    /// Whether a draw would look other than the last one.
    bool isChanged() const;

    /// Draws into the framebuffer and viewport that are bound, all over it. GL's state is afterwards what it was, but
    /// for texture units 0 to 11.
    /// @param size            of the viewport in points  @param pixelsPerPoint  of the viewport
    /// @return false, with a log line for each kind of reason once: no context, a program that does not link, no
    ///         memory, more than 65536 pixels one way
    bool draw(const td::Size<double>& size, double pixelsPerPoint = 1);

    /// Saves a picture of any size as a PNG file, opaque, whatever is shown elsewhere.
    /// @param size   in points  @param scale  pixels per point: 3 for print
    /// @return false, with a log line, when there is no context, when the driver has no framebuffer that large, or the
    ///         file could not be written
    [[nodiscard]] bool savePicture(const char* path, const td::Size<double>& size, double scale = 2);

    /// The seven below take what a view's handlers get, with points from the plot's top left corner, as of the last
    /// draw.
    void onPressed(const InputDevice& device);
    void onDragged(const InputDevice& device);
    void onReleased(const InputDevice& device);
    void onDoubleClick(const InputDevice& device);
    void onMoved(const InputDevice& device);
    void onExited();
    bool onScroll(const InputDevice& device); ///< @return whether it was over axes
    bool onZoom(const InputDevice& device);   ///< @return whether it was over axes
    /// Plus and minus zoom, arrows move, 0 and Home show all, Escape ends a box. @return whether it was one of these
    bool onKey(const Key& key);

private:
    struct Impl;
    std::unique_ptr<Impl> _pImpl;
};

} // namespace gui::draw
