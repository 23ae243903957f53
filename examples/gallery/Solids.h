#pragma once

#include <gui/draw/Mesh.h>
#include <gui/draw/Path.h>

#include <glm/vec2.hpp>

#include <span>

namespace gallery
{

/// What a path has inside, by the even-odd rule, from one height to another.
gui::draw::Mesh extrude(const gui::draw::Path& path, double from, double to);

/// What a line of radii (x) and heights (y) goes over when it turns around the z axis. @param profile  upwards outside
gui::draw::Mesh revolve(std::span<const glm::dvec2> profile, int nSectors);

/// The outline of a wheel with involute teeth of 20 degrees, one of which points along x, about the origin.
/// @param module  the pitch circle's diameter for each tooth
gui::draw::Path toothedWheel(int nTeeth, double module);

} // namespace gallery
