#pragma once

#include "Geography.h"

#include <common/TopoJSON.h>

#include <gui/draw/Drawing.h>
#include <gui/draw/Labels3.h>

#include <string>

namespace globe
{

/// What countries and large cities are called, and where they are.
class Countries
{
public:
    /// @return false, after a line in the log, when they can't be read
    [[nodiscard]] bool init();
    const examples::TopoJSON& getShapes() const { return _shapes; }

    /// The country at a place; null in the sea.
    const examples::TopoJSON::Area* find(const Place& place) const;

    void drawNames(const gui::draw::Eye& eye) { _names.draw(eye); }
    const gui::draw::Labels3& getNames() const { return _names; }

private:
    void addName(const std::string& name, const Place& place, double extent, bool isCity);

    examples::TopoJSON _shapes;
    gui::draw::Drawing _map; // in degrees, to be asked only: each country has its index, plus one, as its tag
    gui::draw::Labels3 _names;
};

} // namespace globe
