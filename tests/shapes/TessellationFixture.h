#pragma once

#include "TriangReference.h"
#include "support/NullGL.h"

#include <gui/gl/Buffer.h>
#include <gui/gl/Triang2D.h>

#include <span>

namespace test
{

/// Shapes made by both forms of one object, into lists and buffers that hold a little already.
class Tessellating
{
public:
    struct Line
    {
        float width;
        bool closed;
    };

    /// @param trace  a null GL, with a context that is current
    Tessellating(GLTrace& trace, CapturedLog& log)
        : _trace(trace)
        , _log(log)
    {
    }

    /// Runs the container form and the buffer form, and compares both with what is expected, bit for bit.
    testing::AssertionResult isPolygon(const Outline& points, const Tessellation& expected);
    testing::AssertionResult isLine(const Outline& points, const Line& line, const Tessellation& expected);

    /// Whether vertices and indices are those that were there at first, and the expected ones behind them.
    static testing::AssertionResult isAppended(std::span<const td::Point<float>> vertices,
                                               std::span<const unsigned int> indices, const Tessellation& expected);

    /// Outlines points over stored vertices. @param found  counts from the first of them; empty when one is missing
    testing::AssertionResult isRecycled(const Outline& stored, const Outline& points,
                                        const std::vector<unsigned int>& found);

    /// An open buffer of 2D points with two vertices, three indices and no command.
    static void begin(gui::gl::Buffer& buffer);

    static const Outline cOldVertices;
    static const std::vector<unsigned int> cOldIndices;

    gui::gl::Triang2D triang{4};

private:
    testing::AssertionResult isCommand(const gui::gl::Command* pCommand, const Tessellation& expected);
    testing::AssertionResult areLists(const Tessellation& expected) const;
    void beginLists();
    std::vector<std::string> drawn();

    GLTrace& _trace;
    CapturedLog& _log;
    gui::gl::Triang2D::Points _vertices;
    gui::gl::Triang2D::Indices _indices;
    gui::gl::Buffer _buffer;
};

class TessellationTest : public NullGL, protected Tessellating
{
protected:
    TessellationTest()
        : Tessellating(trace, log)
    {
    }
};

/// Whether all triangles of a tessellation turn left or all turn right, and together are as large as the outline.
testing::AssertionResult coversOnce(const Tessellation& tessellation, const Outline& outline);

} // namespace test
