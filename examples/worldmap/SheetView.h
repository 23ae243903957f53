#pragma once

#include "Countries.h"

#include <gui/draw/DrawingView.h>

namespace worldmap
{

/// A line on the map.
gui::draw::Path pathOf(const Line& degrees, Projection projection);
/// What closed lines enclose, by the even-odd rule.
gui::draw::Path areaOf(const std::vector<Line>& rings, Projection projection);

/// A view with a map in it, whole and in the middle until somebody moves it. The tag of a country's shapes is one more
/// than its number.
class SheetView : public gui::draw::DrawingView
{
public:
    /// @param countries  must outlive the view
    SheetView(const Countries& countries, Projection projection);

    void setProjection(Projection projection);
    Projection getMapProjection() const { return _projection; }

    /// @param point  of the plane  @return the country that is drawn there, or Countries::cNone
    std::size_t find(const Point& point) const { return drawing().getTag(drawing().pick(point)) - 1; }
    /// Around a country, in the plane.
    Rect getBounds(std::size_t country) const { return drawing().getBounds(_groups[country]).value_or(Rect()); }
    /// Draws a country in another colour from now on. @param country  Countries::cNone for none of them
    void highlight(std::size_t country);
    /// Which one, or Countries::cNone.
    std::size_t getCountry() const { return _highlighted; }

private:
    void make();
    void addLines(const Outlines& outlines, double minZoom, double maxZoom);

    const Countries& _countries;
    Projection _projection{};
    std::vector<gui::draw::Drawing::ID> _groups; // of each country's shapes
    std::size_t _highlighted = Countries::cNone;
};

} // namespace worldmap
