#pragma once

#include "Countries.h"

#include <gui/draw/DrawingView.h>

namespace worldmap
{

/// A view with a map in it, whole and in the middle until somebody moves it. The tag of a country's shapes is one more
/// than its number.
class SheetView : public gui::draw::DrawingView
{
public:
    /// @param countries  must outlive the view
    SheetView(const Countries& countries, Projection projection);

    const Countries& getCountries() const { return _countries; }
    void setProjection(Projection projection);
    Projection getMapProjection() const { return _projection; }

    /// Around a country, in the plane.
    Rect getBounds(std::size_t country) const { return drawing().getBounds(_lands[country][1]).value_or(Rect()); }
    /// Draws a country in another colour from now on. @param country  Countries::cNone for none of them
    void highlight(std::size_t country);
    /// Which one, or Countries::cNone.
    std::size_t getCountry() const { return _highlighted; }

    /// Which place a point of the view is, in degrees; empty beyond the map.
    std::string getPlaceText(const Point& viewPoint) const;
    /// Along the parallel in the middle of the view.
    double getPointsPerKilometre() const;

private:
    void make();
    void addMap(const examples::FlatMap& map, double minZoom, double maxZoom);

    const Countries& _countries;
    Projection _projection{};
    std::vector<std::vector<gui::draw::Drawing::ID>> _lands; // of each country, the coarse shape and the fine one
    std::size_t _highlighted = Countries::cNone;
};

} // namespace worldmap
