#pragma once

#include <common/TopoJSON.h>

#include <gui/draw/Drawing.h>
#include <gui/draw/Globe.h>
#include <gui/draw/Labels3.h>
#include <gui/draw/Polylines3.h>

#include <optional>

namespace globe
{

using Place = gui::draw::Globe::Place; ///< longitude and latitude, in degrees

/// The countries' borders on a globe of radius 1, and what they and large cities are called.
class Countries
{
public:
    /// @return false, after a line in the log, when they can't be read
    [[nodiscard]] bool init();

    /// The country at a place; null in the sea.
    const examples::TopoJSON::Area* find(const Place& place) const;

    /// Points at the country at a place: it is outlined and told there. In the sea, and without a place, at none.
    /// @return whether it shows anything else than before
    bool point(const std::optional<Place>& place);
    const examples::TopoJSON::Area* getPointed() const { return _pPointed; } ///< null for none

    /// Lines on the ground. @param hasBorders  whether there are more than the outline of what is pointed at
    void drawLines(const gui::draw::Eye& eye, bool hasBorders = true);
    /// @param hasNames  whether there are more than that of what is pointed at
    void drawNames(const gui::draw::Eye& eye, bool hasNames = true);
    const gui::draw::Labels3& getNames() const { return _names; }

private:
    void addCountry(const examples::TopoJSON::Area& country);
    void addCities();

    const gui::draw::Globe _globe{};
    examples::TopoJSON _shapes;
    gui::draw::Drawing _map; // in degrees, to be asked only: each country has its index, plus one, as its tag
    gui::draw::Polylines3 _borders, _coarseBorders, _outline;
    gui::draw::Labels3 _names, _note;
    const examples::TopoJSON::Area* _pPointed = nullptr;
};

} // namespace globe
