#include "ThickLine.h"

#include "OutlineVectors.h"
#include "Predicates.h"

#include <gui/gl/Buffer.h>
#include <td/Assert.h>

namespace gui::gl
{

namespace
{

/// How many times the width a miter may be long.
constexpr float cMiterLimit = 2.0f;

class ListOutput : public BandOutput
{
public:
    ListOutput(Triang2D::Points& vertices, Triang2D::Indices& indices)
        : BandOutput(vertices.size())
        , _vertices(vertices)
        , _indices(indices)
    {
    }

private:
    void append(std::span<const td::Point<float>> vertices, std::span<const unsigned int> indices) override
    {
        _vertices.push_back(vertices.data(), vertices.size());
        _indices.push_back(indices.data(), indices.size());
    }

    Triang2D::Points& _vertices;
    Triang2D::Indices& _indices;
};

class BufferOutput : public BandOutput
{
public:
    explicit BufferOutput(Buffer& buffer)
        : BandOutput(buffer.getNoOfVertices())
        , _buffer(buffer)
    {
    }

private:
    void append(std::span<const td::Point<float>> vertices, std::span<const unsigned int> indices) override
    {
        _buffer.appendVertices(vertices.data(), vertices.size());
        _buffer.appendIndices(indices.data(), indices.size());
    }

    Buffer& _buffer;
};

/// A point of the line that has both neighbours.
struct Corner
{
    const glm::vec2& before;
    const glm::vec2& point;
    const glm::vec2& after;
    const Segment& in;
    const Segment& out;
};

void addPair(BandOutput& band, const glm::vec2& left, const glm::vec2& right)
{
    band.addPair(toPt2(left), toPt2(right));
}

// The vertices of the outer edge's cut, which stands across the miter at the distance width.
void addBevel(BandOutput& band, const Corner& corner, const glm::vec2& miter, float width)
{
    const auto& [P, C, N, in, out] = corner;
    const int turn = turnSign(toPt2(P), toPt2(C), toPt2(N));
    const auto s = static_cast<float>(turn);
    const glm::vec2 A = C + width * perp(out.back);
    const glm::vec2 B = C - perp(width * in.ahead);
    const glm::vec2 m = glm::normalize(miter);
    const glm::vec2 D = C - s * width * m;
    const glm::vec2 T = -s * perp(width * m);
    // A turn that is lost in rounding has no direction and no finite result.
    const glm::vec2 none = glm::normalize(C - C);
    const glm::vec2 U1 = width * (turn > 0 ? out.back : turn < 0 ? in.ahead : none);
    const glm::vec2 U2 = width * (turn > 0 ? in.ahead : turn < 0 ? out.back : none);
    const glm::vec2 X1 = A + stepsToCrossing(U1, -T, D - A) * U1;
    const glm::vec2 X2 = B + stepsToCrossing(U2, T, D - B) * U2;
    if (turn > 0)
    {
        addPair(band, C + miter, X2);
        addPair(band, C + miter, X1);
    }
    else
    {
        addPair(band, X1, C - miter);
        addPair(band, X2, C - miter);
    }
}

void addJoin(BandOutput& band, const Corner& corner, float width)
{
    const auto& [P, C, N, in, out] = corner;
    const Join join = joinOf(in, out);
    if (join == Join::Corner)
    {
        const glm::vec2 miter = miterVector(P, C, N, in, out, width);
        if (glm::length(miter) > cMiterLimit * width)
            addBevel(band, corner, miter, width);
        else
            addPair(band, C + miter, C - miter);
        return;
    }
    const glm::vec2 o = width * perp(in.ahead);
    if (join == Join::StraightOn)
    {
        addPair(band, C + o, C - o);
        return;
    }
    const glm::vec2 E = C + width * in.ahead;
    addPair(band, E + o, E - o);
    addPair(band, E - o, E + o);
}

// The place behind a run of equal points; there is at least one.
std::size_t endOfRun(std::span<const td::Point<float>> points, std::size_t i)
{
    do
        ++i;
    while (i < points.size() && points[i] == points[i - 1]);
    return i;
}

// Without the points at the end that equal the first.
std::span<const td::Point<float>> openRing(std::span<const td::Point<float>> points)
{
    while (points.size() > 1 && points.back() == points.front())
        points = points.first(points.size() - 1);
    return points;
}

glm::vec2 firstOfLastRun(std::span<const td::Point<float>> points)
{
    std::size_t i = points.size() - 1;
    while (i > 0 && points[i - 1] == points[i])
        --i;
    return toGlm2(points[i]);
}

} // namespace

void BandOutput::addPair(const td::Point<float>& left, const td::Point<float>& right)
{
    if (_nWaitingVertices == _vertices.size())
        flush();
    const Pair pair{left, right, _base + _nVertices};
    if (_nVertices == 0)
        _first = pair;
    else
    {
        addTriangle({_last.left, _last.index}, {_last.right, _last.index + 1}, {left, pair.index});
        addTriangle({right, pair.index + 1}, {_last.right, _last.index + 1}, {left, pair.index});
    }
    _vertices[_nWaitingVertices++] = left;
    _vertices[_nWaitingVertices++] = right;
    _nVertices += 2;
    _last = pair;
}

void BandOutput::close()
{
    addTriangle({_last.left, _last.index}, {_last.right, _last.index + 1}, {_first.left, _first.index});
    addTriangle({_first.right, _first.index + 1}, {_last.right, _last.index + 1}, {_first.left, _first.index});
}

// Counter-clockwise.
void BandOutput::addTriangle(const Vertex& a, const Vertex& b, const Vertex& c)
{
    const bool turnsRight = turnSign(a.point, b.point, c.point) < 0;
    _indices[_nWaitingIndices++] = a.index;
    _indices[_nWaitingIndices++] = turnsRight ? c.index : b.index;
    _indices[_nWaitingIndices++] = turnsRight ? b.index : c.index;
    _nIndices += 3;
}

void BandOutput::flush()
{
    append({_vertices.data(), _nWaitingVertices}, {_indices.data(), _nWaitingIndices});
    _nWaitingVertices = _nWaitingIndices = 0;
}

bool addBand(BandOutput& band, std::span<const td::Point<float>> points, float width, bool closed)
{
    if (closed)
        points = openRing(points);
    std::size_t next = endOfRun(points, 0);
    if (next == points.size() || width == 0 || std::isnan(width))
        return false;

    glm::vec2 P = firstOfLastRun(points), C = toGlm2(points[0]), N = toGlm2(points[next]);
    Segment in = segmentOf(P, C), out = segmentOf(C, N);
    const auto goTo = [&](const td::Point<float>& point)
    {
        P = C;
        C = N;
        N = toGlm2(point);
        in = out;
        out = segmentOf(C, N);
    };

    if (closed)
        addJoin(band, {P, C, N, in, out}, width);
    else
        addPair(band, C + width * perp(out.ahead), C - width * perp(out.ahead));
    for (next = endOfRun(points, next); next < points.size(); next = endOfRun(points, next))
    {
        goTo(points[next]);
        addJoin(band, {P, C, N, in, out}, width);
    }
    if (closed)
    {
        goTo(points[0]);
        addJoin(band, {P, C, N, in, out}, width);
        band.close();
    }
    else
        addPair(band, N - perp(width * out.back), N + perp(width * out.back));
    band.flush();
    return true;
}

std::tuple<Primitive, unsigned int, unsigned int> Triang2D::triangulateLine(const td::Point<float>* points,
                                                                            unsigned int n, float width, bool closed,
                                                                            Points& vertices, Indices& indices)
{
    constexpr std::tuple<Primitive, unsigned int, unsigned int> nothing{Primitive::Triangles, 0, 0};
    if (n < 2)
        TD_ASSERT(false, nothing);
    ListOutput band(vertices, indices);
    addBand(band, {points, n}, width, closed);
    return {Primitive::Triangles, band.getNoOfVertices(), band.getNoOfIndices()};
}

Command* Triang2D::triangulateLine(Buffer* pBuffer, const td::Point<float>* points, unsigned int n, float width,
                                   bool closed)
{
    TD_ASSERT(pBuffer != nullptr, nullptr);
    TD_ASSERT(pBuffer->getVertexStride() == 2 * sizeof(float), nullptr);
    if (n < 2)
        TD_ASSERT(false, nullptr);
    if (pBuffer->isAddOnCommitted())
        return nullptr;

    const std::size_t firstIndex = pBuffer->getNoOfIndices();
    BufferOutput band(*pBuffer);
    if (!addBand(band, {points, n}, width, closed))
        return nullptr;
    Command* pComm = pBuffer->getCommandList().get();
    TD_ASSERT(pComm, nullptr);
    pComm->createDrawElements(Primitive::Triangles, firstIndex, band.getNoOfIndices());
    return pComm;
}

} // namespace gui::gl
