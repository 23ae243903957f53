#pragma once

#include <cnt/PushBackVector.h>
#include <td/Circle.h>
#include <td/Export.h>
#include <td/Point.h>

#include <cstddef>

namespace gui::gl
{

/// The corners of a regular polygon, against the clock where y points upwards. (Cubes and spheres: Buffer::addCube and
/// addSphere.)
/// @param circle      through the corners
/// @param nNodes      the number of corners, at least 3 (an assertion; nothing is changed then)
/// @param points      becomes the corners; what it held is gone
/// @param startAngle  of the first corner in radians: 0 on the right, pi / 2 at the top
/// @param pTexCoords  if not null, becomes the corners' texture coordinates: the circle fills the square from (0, 0) to
///                    (1, 1)
GUIGL_API void generateSymPolygon(const td::Circle<float>& circle, std::size_t nNodes,
                                  cnt::PushBackVector<td::Point<float>, 0>& points, float startAngle = 0,
                                  cnt::PushBackVector<td::Point<float>, 0>* pTexCoords = nullptr);

} // namespace gui::gl
