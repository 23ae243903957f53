#pragma once

#include "Image.h"

#include <td/Color.h>
#include <td/Export.h>

namespace gui::draw
{

/// What a surface looks like in the light. A value:
///
///     mesh.material = {.color = "#c8a040", .shininess = 0.6};
///
/// Colours are those that one sees: what light does to them is computed in linear space.
struct GUIGL_API Material
{
    /// With an alpha below 255 one sees through it: see Model.
    td::Color color{200, 204, 212, 255};
    /// Times the colour, where the mesh has texture coordinates; none for the colour alone. (0, 0) is the picture's
    /// upper left corner, (1, 1) its lower right one; beyond it repeats. Its alpha does not count.
    Image texture{};
    /// Whether both sides are seen, each lit from where it is seen. Else triangles are seen from where their corners
    /// turn against the clock, and one looks through their backs.
    bool isTwoSided = true;
    /// How polished: 0 is matt, 1 has a small and bright reflection of the light. What is out of that range counts as
    /// its nearer end, NaN as 0.
    double shininess = 0.3;

    bool operator==(const Material&) const = default;
};

} // namespace gui::draw
