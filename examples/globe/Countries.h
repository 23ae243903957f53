#pragma once

#include "Geography.h"

#include <common/TopoJSON.h>

#include <gui/draw/Drawing.h>
#include <gui/draw/Labels3.h>
#include <gui/draw/Polylines3.h>

#include <optional>

namespace globe
{

/// The countries' borders, and what they and large cities are called.
class Countries
{
public:
    /// @return false, after a line in the log, when they can't be read
    [[nodiscard]] bool init();

    /// The country at a place; null in the sea.
    const examples::TopoJSON::Area* find(const Place& place) const;

    /// Points at the country around a point of the ground: it is outlined and told there. In the sea, and without a
    /// point, at none. @return whether it shows anything else than before
    bool point(const std::optional<glm::dvec3>& at);
    const examples::TopoJSON::Area* getPointed() const { return _pPointed; } ///< null for none

    /// Lines on the ground. @param hasBorders  whether there are more than the outline of what is pointed at
    void drawLines(const gui::draw::Eye& eye, bool hasBorders = true)
    {
        const bool isNear = glm::length(eye.getPosition()) < 2.5;
        if (hasBorders)
            (isNear ? _borders : _coarseBorders).draw(eye);
        _outline.draw(eye);
    }
    /// @param hasNames  whether there are more than that of what is pointed at
    void drawNames(const gui::draw::Eye& eye, bool hasNames = true)
    {
        if (hasNames)
            _names.draw(eye);
        _note.draw(eye);
    }
    const gui::draw::Labels3& getNames() const { return _names; }

private:
    examples::TopoJSON _shapes;
    gui::draw::Drawing _map; // in degrees, to be asked only: each country has its index, plus one, as its tag
    gui::draw::Polylines3 _borders, _coarseBorders, _outline;
    gui::draw::Labels3 _names, _note;
    const examples::TopoJSON::Area* _pPointed = nullptr;
};

} // namespace globe
