#pragma once

#include <gui/draw/Mesh.h>

namespace gallery
{

/// An engine of one cylinder, in millimetres: the crankshaft along x, the cylinder upwards along z.
struct Engine
{
    static constexpr double cBore = 52, cStroke = 44;

    /// What a section cuts: crankcase, cylinder, liner, gasket, head, piston and its rings.
    static gui::draw::Mesh makeHousing();
    /// What it leaves whole: crankshaft, rod, pin, plug, in that order.
    static gui::draw::Mesh makeTrain();
};

} // namespace gallery
