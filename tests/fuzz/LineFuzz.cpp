// Thick lines: both forms of one object, and the plain form; lines over the vertices that the buffer holds then.

#include "Outlines.h"

#include <gui/gl/Buffer.h>
#include <gui/gl/Triang2D.h>

using fuzz::require;

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t nBytes)
{
    fuzz::Input input(bytes, nBytes);
    const bool isClosed = input.below(2) == 0;
    const float width = input.below(2) == 0 ? input.take<float>() : static_cast<float>(input.below(256)) / 16;
    const unsigned int first = input.below(8), stride = 1 + input.below(8);
    const test::Outline points = fuzz::takeOutline(input, 400);
    if (points.size() < 2)
        return 0;
    const auto n = static_cast<unsigned int>(points.size());
    const test::Tessellation expected = test::reference::triangulateLine(points, width, isClosed);

    static gui::gl::Triang2D s_triang(4);
    gui::gl::Triang2D::Points vertices;
    gui::gl::Triang2D::Indices indices;
    const auto [primitive, nVertices, nIndices] =
        s_triang.triangulateLine(points.data(), n, width, isClosed, vertices, indices);
    require(fuzz::isSame(primitive, nIndices, expected) && nVertices == expected.vertices.size(),
            "what is to be drawn");
    require(fuzz::areSame(vertices.begin(), vertices.size(), expected.vertices), "vertices");
    require(fuzz::areSame(indices.begin(), indices.size(), expected.indices), "indices");

    gui::gl::Buffer buffer({gui::gl::DataType::Vec2});
    const gui::gl::Command* const pCommand = s_triang.triangulateLine(&buffer, points.data(), n, width, isClosed);
    require((pCommand != nullptr) == (nIndices > 0), "a command if there is what to draw");
    const auto* const pStored = reinterpret_cast<const td::Point<float>*>(buffer.getVertices().begin());
    require(fuzz::areSame(pStored, buffer.getNoOfVertices(), expected.vertices), "vertices of the buffer");
    require(buffer.getNoOfIndices() == nIndices, "indices of the buffer");

    // Some of the stored vertices, in an order of their own.
    if (first >= nVertices)
        return 0;
    const test::Outline stored(pStored, pStored + nVertices);
    test::Outline search;
    for (unsigned int i = 0; i < nVertices - first; ++i)
        search.push_back(stored[first + i * stride % (nVertices - first)]);
    const auto nSearched = static_cast<unsigned int>(search.size());
    const std::vector<unsigned int> recycled = test::reference::recycle(stored, search, first);
    const gui::gl::Command* const pLine =
        s_triang.createRecycledLine(&buffer, gui::gl::Primitive::LineStrip, search.data(), first, nSearched);
    require((pLine != nullptr) == !recycled.empty(), "a line if all its points are there");
    require(buffer.getNoOfIndices() == nIndices + recycled.size(), "an index for each of its points");
    return 0;
}
