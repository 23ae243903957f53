#pragma once

#include <gui/draw/Mesh.h>
#include <gui/draw/OrbitCamera.h>

#include <array>
#include <string>
#include <vector>

/// What a file has.
struct Loaded
{
    gui::draw::Mesh mesh;           ///< all of it, each thing at its place, as a part
    std::vector<std::string> names; ///< of the parts, in their order; some may be empty
    gui::draw::OrbitCamera::Up up = gui::draw::OrbitCamera::Up::Y;

    /// The name of the part that a triangle belongs to.
    const std::string& nameOf(std::size_t triangle) const;
    std::array<glm::dvec3, 3> cornersOf(std::size_t triangle) const;
};

/// Reads triangles, materials and pictures from a file of any format that assimp knows. Lines and points are left out.
/// Throws a std::runtime_error, "FILE: what is wrong", when it can't, and when there is no triangle.
Loaded load(const std::string& file);
