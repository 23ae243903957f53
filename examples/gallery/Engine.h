#pragma once

#include <gui/draw/Mesh.h>

#include <glm/vec3.hpp>

namespace gallery
{

/// An engine of one cylinder, in millimetres: the crankshaft along x, the cylinder upwards along z.
struct Engine
{
    static constexpr double cBore = 52, cStroke = 44, cAngle = 48; ///< of the crank, in degrees after the top
    static constexpr double cBottom = -54, cDeck = 128; ///< heights: of the crankcase, and where the head begins
    /// Where the crank pin and the piston's pin are.
    static glm::dvec3 getCrankPin();
    static glm::dvec3 getPistonPin();

    /// What a section cuts: crankcase, cylinder, liner, gasket, head, piston and its rings.
    static gui::draw::Mesh makeHousing();
    /// What it leaves whole: crankshaft, rod, pin, plug, in that order.
    static gui::draw::Mesh makeTrain();
};

} // namespace gallery
