#pragma once

#include "Names.h"

#include <gui/Window.h>
#include <gui/draw/ScaleBar.h>

#include <memory>

namespace worldmap
{

/// The map to go about in, with the name of the country under the pointer in its window's title.
///
/// Wheel, wheel with Ctrl, pinch, plus, minus, 0 and arrow keys: see OrthoView. A drag with Shift flies to a box, a
/// double click to a country. M changes the projection, L shows and hides what is written on the map, O opens and
/// closes an overview, Escape ends the program.
class MapView : public SheetView
{
public:
    /// @param window, countries  must outlive the view
    MapView(gui::Window& window, const Countries& countries);
    ~MapView() override;

    /// The whole map in a window of its own, on which a rectangle shows what this view sees of it; null when it is
    /// closed. A click, or a drag, moves this view there.
    SheetView* getOverview();

protected:
    void cleanResources() override;
    void onDraw(const td::RectNormalized<double>& rect) override;
    void onOriginChanged() override;
    void onPointed() override { reRender(); } // for the place that is written
    void onShapeEntered(gui::draw::Drawing::ID shape) override;
    bool onKeyPressed(const gui::Key& key) override;

private:
    class Overview;

    gui::Window& _window;
    bool _isWritten = true; // names, scale bar and the line below
    Names _names;
    gui::draw::Drawing _legend; // in points from the lower left corner
    gui::draw::Drawing::ID _band, _place, _country;
    gui::draw::ScaleBar _scaleBar{{.units = {{1, " km"}}, .offset = {22, -34}}};
    std::unique_ptr<Overview> _pOverview;
};

} // namespace worldmap
