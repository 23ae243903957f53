// Polygons: both forms of one object, and the plain form.

#include "Outlines.h"

#include <gui/gl/Buffer.h>
#include <gui/gl/SimplePolygon.h>
#include <gui/gl/Triang2D.h>

using fuzz::require;

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t nBytes)
{
    fuzz::Input input(bytes, nBytes);
    // The plain form takes up to the cube of the number of corners.
    const test::Outline points = fuzz::takeOutline(input, 160);
    if (points.size() < 3)
        return 0;
    const auto n = static_cast<unsigned int>(points.size());
    const test::Tessellation expected = test::reference::triangulate(points);

    // Its memory is that of the polygons before.
    static gui::gl::Triang2D s_triang(4);
    gui::gl::Triang2D::Points vertices;
    gui::gl::Triang2D::Indices indices;
    const auto [primitive, count] = s_triang.triangulate(points.data(), n, vertices, indices);
    require(fuzz::isSame(primitive, count, expected), "primitive and count");
    require(fuzz::areSame(vertices.begin(), vertices.size(), expected.vertices), "vertices");
    require(fuzz::areSame(indices.begin(), indices.size(), expected.indices), "indices");

    gui::gl::Buffer buffer({gui::gl::DataType::Vec2});
    const gui::gl::Command* const pCommand = s_triang.triangulate(&buffer, points.data(), n);
    require((pCommand != nullptr) == (primitive != gui::gl::Triang2D::cNothing), "a command if there is what to draw");
    require(buffer.getNoOfVertices() == n && buffer.getNoOfIndices() == count, "the buffer holds as much as the lists");
    const auto* const pStored = reinterpret_cast<const td::Point<float>*>(buffer.getVertices().begin());
    require(fuzz::areSame(pStored, n, expected.vertices), "vertices of the buffer");
    return 0;
}
