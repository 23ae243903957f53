#pragma once

#include "Plot.h"

#include <gui/gl/View.h>
#include <td/Export.h>

namespace gui::draw
{

/// A view with a plot in it: what a window shows, or a host's widget.
///
///     #include <gui/Application.h>
///     #include <gui/draw/PlotView.h>
///
///     int main(int argc, char** argv)
///     {
///         gui::Application app(argc, argv);
///         gui::draw::PlotView plot(gui::draw::Series::line({3, 1, 4, 1, 5, 9, 2, 6}));
///         return app.run(plot, "Digits", {800, 500});
///     }
///
/// It has its context at once: make it behind the application, and set a class derived from it up in the constructor,
/// since no override of onInit is called. Frames follow changes of its series by themselves. See
/// Plot for what the pointer and keys do.
class GUIGL_API PlotView : public gl::View
{
public:
    /// With one set of axes, or rows and columns of them.
    explicit PlotView(std::size_t rows = 1, std::size_t columns = 1);
    /// With one set of axes, and a series on it.
    explicit PlotView(Series series);
    ~PlotView() override;

    /// See Plot, whose operations these are.
    Series& add(Series series) { return _plot.add(std::move(series)); }
    Axes& axes(std::size_t row = 0, std::size_t column = 0) { return _plot.axes(row, column); }
    void setStyle(const PlotStyle& style) { _plot.setStyle(style); }
    Plot& getPlot() { return _plot; } ///< all of it; its setOnChange is the view's, whose frames would stop without

protected:
    void onDraw(const td::RectNormalized<double>& rect) override;
    void onPrimaryButtonPressed(const InputDevice& device) override;
    void onPrimaryButtonReleased(const InputDevice& device) override;
    void onPrimaryButtonDblClick(const InputDevice& device) override;
    void onCursorMoved(const InputDevice& device) override;
    void onCursorDragged(const InputDevice& device) override;
    void onCursorExited(const InputDevice& device) override;
    bool onScroll(const InputDevice& device) override;
    bool onZoom(const InputDevice& device) override;
    bool onKeyPressed(const Key& key) override;

private:
    void showDrag(bool isDragging);

    Plot _plot;
    bool _isDragShown = false; // by the pointer
};

} // namespace gui::draw
