#pragma once

#include "Labels.h"
#include "Legend.h"
#include "Overview.h"
#include "SheetView.h"

#include <gui/Window.h>

#include <memory>
#include <optional>

namespace worldmap
{

/// The map to go about in, with the name of the country under the pointer in its window's title.
///
/// Drag with Shift, wheel, wheel with Ctrl and pinch: see OrthoView. Plus and minus zoom without Ctrl too, arrow keys
/// move, 0 fits, M changes the projection, L shows and hides what is written on the map, O opens and closes an
/// overview, Escape ends the program.
class MapView : public SheetView
{
public:
    /// @param window, countries  must outlive the view
    MapView(gui::Window& window, const Countries& countries);

    /// The country that is highlighted, or Countries::cNone.
    std::size_t getCountry() const { return _country; }
    const Overview* getOverview() const { return _pOverview.get(); }

    /// Names of countries, the scale bar and the line below it; shown at first.
    void setWritten(bool isWritten);

protected:
    void onInit() override;
    void cleanResources() override;
    void onDraw(const td::RectNormalized<double>& rect) override;
    void onOriginChanged() override;
    void onCursorMoved(const gui::InputDevice& device) override;
    void onCursorDragged(const gui::InputDevice& device) override;
    void onCursorExited(const gui::InputDevice& device) override;
    bool onKeyPressed(const gui::Key& key) override;

private:
    void findCountry();
    void move(double x, double y);
    void toggleOverview();

    gui::Window& _window;
    const Countries& _countries;
    std::optional<td::Point<double>> _pointer; // in the view
    std::size_t _country = Countries::cNone;
    bool _isWritten = true;
    std::unique_ptr<Labels> _pLabels; // null, as the legend, when a font is missing
    std::unique_ptr<Legend> _pLegend;
    std::unique_ptr<Overview> _pOverview;
};

} // namespace worldmap
