#pragma once

#include "Shapes.h"
#include "TriangReference.h"
#include "src/shapes/BandLoops.h"
#include "support/NullGL.h"

#include <gui/gl/Buffer.h>
#include <gui/gl/Triang2D.h>

namespace test
{

/// Shapes made by both forms of one object, into lists and buffers that hold a little already.
class Tessellating : public NullGL
{
protected:
    struct Line
    {
        float width;
        bool closed;
    };

    /// Runs the container form and the buffer form, and compares both with what is expected, bit for bit.
    testing::AssertionResult isPolygon(const Outline& points, const Tessellation& expected);
    testing::AssertionResult isLine(const Outline& points, const Line& line, const Tessellation& expected);

    /// The same for the loops of one kind of vectors.
    testing::AssertionResult isBand(const gui::gl::BandLoops& loops, const Outline& points, const Line& line,
                                    const Tessellation& expected) const;

    /// Outlines points over stored vertices. @param found  counts from the first of them; empty when one is missing
    testing::AssertionResult isRecycled(const Outline& stored, const Outline& points,
                                        const std::vector<unsigned int>& found);

    /// An open buffer of 2D points with two vertices, three indices and no command.
    void begin(gui::gl::Buffer& buffer);

    /// The draw calls of the buffer's commands.
    std::vector<std::string> drawn(gui::gl::Buffer& buffer);

    gui::gl::Triang2D triang{4};

private:
    testing::AssertionResult isCommand(const gui::gl::Command* pCommand, const Tessellation& expected);
    testing::AssertionResult areLists(const Tessellation& expected) const;
    void beginLists();

    gui::gl::Triang2D::Points _vertices;
    gui::gl::Triang2D::Indices _indices;
    gui::gl::Buffer _buffer;
};

/// Whether all triangles of a tessellation turn left or all turn right, and together are as large as the outline.
testing::AssertionResult coversOnce(const Tessellation& tessellation, const Outline& outline);

} // namespace test
