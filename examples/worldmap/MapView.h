#pragma once

#include "Legend.h"
#include "Names.h"

#include <gui/Window.h>

#include <memory>

namespace worldmap
{

/// The map to go about in, with the name of the country under the pointer in its window's title.
///
/// Drag with Shift, wheel, wheel with Ctrl, pinch, plus, minus, 0 and arrow keys: see OrthoView. M changes the
/// projection, L shows and hides what is written on the map, O opens and closes an overview, Escape ends the program.
class MapView : public SheetView
{
public:
    /// @param window, countries  must outlive the view
    MapView(gui::Window& window, const Countries& countries);

    /// The country that is highlighted, or Countries::cNone.
    std::size_t getCountry() const { return _country; }
    /// The whole map in a window of its own, on which a rectangle shows what this view sees of it; null when it is
    /// closed. A click, or a drag, moves this view there.
    SheetView* getOverview() { return _pOverviewWindow && _pOverviewWindow->isOpen() ? _pOverview.get() : nullptr; }

protected:
    void cleanResources() override;
    void onDraw(const td::RectNormalized<double>& rect) override;
    void onOriginChanged() override;
    void onCursorMoved(const gui::InputDevice& device) override { pointAt(device.getFramePoint()); }
    void onCursorDragged(const gui::InputDevice& device) override;
    void onCursorExited(const gui::InputDevice& device) override;
    bool onKeyPressed(const gui::Key& key) override;

private:
    void pointAt(const std::optional<Point>& pointer);
    void toggleOverview();

    gui::Window& _window;
    const Countries& _countries;
    std::optional<Point> _pointer; // in the view
    std::size_t _country = Countries::cNone;
    bool _isWritten = true; // names, scale bar and the line below
    Names _names;
    Legend _legend;
    std::unique_ptr<SheetView> _pOverview;
    std::unique_ptr<gui::Window> _pOverviewWindow;
};

} // namespace worldmap
