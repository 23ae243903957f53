#pragma once

#include "Countries.h"

#include <gui/draw/Drawing.h>
#include <gui/gl/OrthoView.h>

namespace worldmap
{

/// A line on the map.
gui::draw::Path pathOf(const Line& degrees, Projection projection);

/// A view with a map in it, whole and in the middle until somebody moves it.
class SheetView : public gui::gl::OrthoView
{
public:
    /// @param countries  must outlive the view
    SheetView(const Countries& countries, Projection projection);

    void setProjection(Projection projection);
    Projection getMapProjection() const { return _projection; }

    /// @param point  of the plane  @return the country that is drawn there, or Countries::cNone
    std::size_t find(const Point& point);
    /// Around a country, in the plane.
    Rect getBounds(std::size_t country);
    /// Draws a country in another colour from now on. @param country  Countries::cNone for none of them
    void highlight(std::size_t country);

protected:
    void onDraw(const td::RectNormalized<double>& rect) override;

private:
    void make();
    void add(const Outlines& outlines, double minZoom, double maxZoom);
    void color(std::size_t country, td::Color color);

    const Countries& _countries;
    Projection _projection{};
    bool _isMade = false;
    gui::draw::Drawing _lands; // which get other colours, and leave the lines as they are
    gui::draw::Drawing _lines;
    std::vector<std::vector<gui::draw::Drawing::ID>> _shapes; // of each country, for all zooms
    std::size_t _highlighted = Countries::cNone;
};

} // namespace worldmap
