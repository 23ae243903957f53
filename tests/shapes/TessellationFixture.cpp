#include "TessellationFixture.h"

#include <epoxy/gl.h>

#include <bit>
#include <cmath>
#include <span>

namespace test
{

namespace
{

using gui::gl::Primitive;
using Point = td::Point<float>;
using testing::AssertionFailure;
using testing::AssertionSuccess;

// NaN is NaN: which of its bits are set is nobody's promise.
bool isSame(float a, float b)
{
    return std::bit_cast<unsigned int>(a) == std::bit_cast<unsigned int>(b) || (std::isnan(a) && std::isnan(b));
}

bool isSame(const Point& a, const Point& b) { return isSame(a.x, b.x) && isSame(a.y, b.y); }

double areaOf(const Point& a, const Point& b, const Point& c)
{
    return ((double(b.x) - a.x) * (double(c.y) - a.y) - (double(b.y) - a.y) * (double(c.x) - a.x)) / 2;
}

} // namespace

const Outline Tessellating::cOldVertices{{-7, -8}, {-9, -10}};
const std::vector<unsigned int> Tessellating::cOldIndices{1, 0, 1};

testing::AssertionResult Tessellating::isAppended(std::span<const Point> vertices,
                                                  std::span<const unsigned int> indices, const Tessellation& expected)
{
    Outline allVertices = cOldVertices;
    allVertices.insert(allVertices.end(), expected.vertices.begin(), expected.vertices.end());
    std::vector<unsigned int> allIndices = cOldIndices;
    for (const unsigned int index : expected.indices)
        allIndices.push_back(index + static_cast<unsigned int>(cOldVertices.size()));

    if (vertices.size() != allVertices.size())
        return AssertionFailure() << vertices.size() << " vertices instead of " << allVertices.size();
    for (std::size_t i = 0; i < vertices.size(); ++i)
        if (!isSame(vertices[i], allVertices[i]))
            return AssertionFailure() << "vertex " << i << " is (" << vertices[i].x << ", " << vertices[i].y
                                      << ") instead of (" << allVertices[i].x << ", " << allVertices[i].y << ")";
    if (indices.size() != allIndices.size())
        return AssertionFailure() << indices.size() << " indices instead of " << allIndices.size();
    for (std::size_t i = 0; i < indices.size(); ++i)
        if (indices[i] != allIndices[i])
            return AssertionFailure() << "index " << i << " is " << indices[i] << " instead of " << allIndices[i];
    return AssertionSuccess();
}

void Tessellating::begin(gui::gl::Buffer& buffer)
{
    buffer.init(0, 0, 0, {gui::gl::DataType::Vec2});
    buffer.reset();
    buffer.appendVertices(cOldVertices.data(), cOldVertices.size());
    buffer.appendIndices(cOldIndices.data(), cOldIndices.size());
}

// The calls of the buffer's commands.
std::vector<std::string> Tessellating::drawn()
{
    _trace.clear();
    _buffer.getCommandList().execute();
    return _trace.calls();
}

void Tessellating::beginLists()
{
    _vertices.reset();
    _vertices.push_back(cOldVertices.data(), cOldVertices.size());
    _indices.reset();
    _indices.push_back(cOldIndices.data(), cOldIndices.size());
    begin(_buffer);
}

testing::AssertionResult Tessellating::isPolygon(const Outline& points, const Tessellation& expected)
{
    beginLists();
    const auto n = static_cast<unsigned int>(points.size());
    const auto [primitive, count] = triang.triangulate(points.data(), n, _vertices, _indices);
    if (primitive != expected.primitive || count != expected.count)
        return AssertionFailure() << int(primitive) << ", " << count << " instead of " << int(expected.primitive)
                                  << ", " << expected.count;
    const testing::AssertionResult lists = areLists(expected);
    const gui::gl::Command* const pCommand = triang.triangulate(&_buffer, points.data(), n);
    _log.take(); // the line of an object that could not fill one
    return lists ? isCommand(pCommand, expected) : lists;
}

testing::AssertionResult Tessellating::isLine(const Outline& points, const Line& line, const Tessellation& expected)
{
    beginLists();
    const auto n = static_cast<unsigned int>(points.size());
    const auto [primitive, nVertices, nIndices] =
        triang.triangulateLine(points.data(), n, line.width, line.closed, _vertices, _indices);
    if (primitive != Primitive::Triangles || nVertices != expected.vertices.size() || nIndices != expected.count)
        return AssertionFailure() << int(primitive) << ", " << nVertices << ", " << nIndices << " instead of 4, "
                                  << expected.vertices.size() << ", " << expected.count;
    const testing::AssertionResult lists = areLists(expected);
    return lists ? isCommand(triang.triangulateLine(&_buffer, points.data(), n, line.width, line.closed), expected)
                 : lists;
}

testing::AssertionResult Tessellating::isRecycled(const Outline& stored, const Outline& points,
                                                  const std::vector<unsigned int>& found)
{
    begin(_buffer);
    const auto first = static_cast<unsigned int>(_buffer.getNoOfVertices());
    _buffer.appendVertices(stored.data(), stored.size());
    const gui::gl::Command* const pCommand = triang.createRecycledLine(&_buffer, Primitive::LineLoop, points.data(),
                                                                       first, static_cast<unsigned int>(points.size()));
    return isCommand(pCommand, {Primitive::LineLoop, static_cast<unsigned int>(found.size()), stored, found});
}

testing::AssertionResult Tessellating::areLists(const Tessellation& expected) const
{
    return isAppended({_vertices.begin(), _vertices.end()}, {_indices.begin(), _indices.end()}, expected);
}

testing::AssertionResult Tessellating::isCommand(const gui::gl::Command* pCommand, const Tessellation& expected)
{
    std::vector<std::string> draws;
    if (expected.primitive == Primitive::TriangleFan)
        draws = {"glDrawArrays(6, 2, " + std::to_string(expected.vertices.size()) + ")"};
    else if (expected.count > 0)
        draws = {std::string("glDrawElements(") + (expected.primitive == Primitive::LineLoop ? "2, " : "4, ") +
                 std::to_string(expected.count) + ", 0x1405, 12)"};
    if ((pCommand != nullptr) != !draws.empty() || _buffer.getCommandList().size() != draws.size())
        return AssertionFailure() << _buffer.getCommandList().size() << " commands, "
                                  << (pCommand != nullptr ? "one" : "none") << " returned";
    if (pCommand != nullptr)
        _buffer.encode(const_cast<gui::gl::Command*>(pCommand));
    if (drawn() != draws)
        return AssertionFailure() << "not the draw call " << draws.front();
    if (!_buffer.commit())
        return AssertionFailure() << "cannot commit";
    const std::vector<unsigned int> indices = _trace.lastBuffer<unsigned int>(GL_ELEMENT_ARRAY_BUFFER);
    const std::vector<Point> vertices = _trace.lastBuffer<Point>(GL_ARRAY_BUFFER);
    _buffer.release();
    return isAppended(vertices, indices, expected) << " in the buffer";
}

testing::AssertionResult coversOnce(const Tessellation& tessellation, const Outline& outline)
{
    const Outline& v = tessellation.vertices;
    std::vector<unsigned int> corners = tessellation.indices;
    if (tessellation.primitive == Primitive::TriangleFan)
        for (unsigned int i = 2; i < v.size(); ++i)
            corners.insert(corners.end(), {0, i - 1, i});
    double area = 0, left = 0, right = 0;
    for (std::size_t i = 1; i < outline.size(); ++i)
        area += areaOf(outline[0], outline[i - 1], outline[i]);
    for (std::size_t i = 0; i < corners.size(); i += 3)
    {
        const double triangle = areaOf(v[corners[i]], v[corners[i + 1]], v[corners[i + 2]]);
        (triangle > 0 ? left : right) += std::abs(triangle);
    }
    // Tessellation decides in float: a triangle that is nearly a line may turn the other way.
    const double tolerance = 1e-6 * std::abs(area);
    if (std::abs(left + right - std::abs(area)) > tolerance || std::min(left, right) > tolerance)
        return AssertionFailure() << "an area of " << area << " covered by " << left << " and " << right;
    return AssertionSuccess();
}

} // namespace test
