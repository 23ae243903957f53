#include <gui/gl/Triang2D.h>

#include "Predicates.h"
#include "VertexFinder.h"

#include <gui/gl/Buffer.h>
#include <gui/gl/SimplePolygon.h>
#include <td/Assert.h>
#include <vo/Log.h>

#include <algorithm>

namespace gui::gl
{

namespace
{

// The triangles of a polygon, as numbers of vertices of which the polygon's first is base.
cnt::PushBackVector<unsigned int, 0>& indicesFrom(SimplePolygon& polygon, std::size_t base)
{
    for (unsigned int& index : polygon.getIndices())
        index += static_cast<unsigned int>(base);
    return polygon.getIndices();
}

Command* finished(Command* pCommand, td::Color color)
{
    if (pCommand == nullptr)
        return nullptr;
    pCommand->setColor(color);
    pCommand->encode();
    return pCommand;
}

} // namespace

float crossProduct(const td::Point<float>& a, const td::Point<float>& b, const td::Point<float>& c)
{
    return turnArea(a, b, c);
}

int orientation(const td::Point<float>& a, const td::Point<float>& b, const td::Point<float>& c)
{
    return turnSign(a, b, c);
}

std::tuple<bool, unsigned int, unsigned int> isConvex(const td::Point<float>* points, unsigned int n)
{
    if (n <= 4)
        return {true, 0, 0};
    unsigned int nNeg = 0, nPos = 0, firstNeg = 0, firstPos = 0;
    for (unsigned int i = 0; i < n; ++i)
    {
        const unsigned int j = i + 1 < n ? i + 1 : 0;
        const unsigned int k = j + 1 < n ? j + 1 : 0;
        const float c = turnArea(points[i], points[j], points[k]);
        if (c < 0 && ++nNeg == 1)
            firstNeg = j;
        else if (c > 0 && ++nPos == 1)
            firstPos = j;
        if (nNeg > 1 && nPos > 1)
            return {false, 0, 0};
    }
    if (nNeg == 0 || nPos == 0)
        return {true, 0, 0};
    if (nNeg == 1)
        return {true, 1, firstNeg};
    return {true, nPos, firstPos};
}

Triang2D::Triang2D(unsigned int nExpectedPoints)
    : _pSimplePolygon(std::make_unique<SimplePolygon>(nExpectedPoints))
    , _pVertexFinder(std::make_unique<VertexFinder>())
{
}

Triang2D::~Triang2D() = default;

// The fan of four corners is taken without a look at their turns.
void Triang2D::checkFan(const td::Point<float>* points, unsigned int n)
{
    if (n != 4 || _hasSaidUnfilled)
        return;
    const float first = turnArea(points[0], points[1], points[2]);
    const float second = turnArea(points[0], points[2], points[3]);
    if (!((first < 0 && second > 0) || (first > 0 && second < 0)))
        return;
    vo::dbgLog("Warning! Triang2D::triangulate the fan of a polygon of four corners leaves it");
    _hasSaidUnfilled = true;
}

bool Triang2D::cut(const td::Point<float>* points, unsigned int n)
{
    if (_pSimplePolygon->triangulate(points, n)) [[likely]]
        return true;
    if (!_hasSaidUnfilled)
        vo::dbgLog("Warning! Triang2D::triangulate found no ear in a polygon of %u corners, of which %u were left", n,
                   n - static_cast<unsigned int>(_pSimplePolygon->getIndices().size() / 3));
    _hasSaidUnfilled = true;
    return false;
}

std::pair<Primitive, unsigned int> Triang2D::triangulate(const td::Point<float>* points, unsigned int n,
                                                         Points& vertices, Indices& indices)
{
    constexpr std::pair<Primitive, unsigned int> nothing{cNothing, 0};
    if (n < 3)
        TD_ASSERT(false && "triangulate: Must be 3 indices at least", nothing);

    const std::size_t base = vertices.size();
    const auto [isFannable, nNonConvex, start] = isConvex(points, n);
    if (isFannable)
    {
        if (nNonConvex != 0)
            TD_ASSERT(nNonConvex == 1, nothing);
        checkFan(points, n);
        vertices.push_back(points, n);
        std::rotate(vertices.begin() + base, vertices.begin() + base + start, vertices.end());
        return {Primitive::TriangleFan, 0};
    }

    // Before the points are appended: they may be vertices themselves, which move when there is no room.
    const bool isCut = cut(points, n);
    vertices.push_back(points, n);
    if (!isCut)
        return nothing;
    const Indices& triangles = indicesFrom(*_pSimplePolygon, base);
    indices.push_back(triangles.begin(), triangles.size());
    return {Primitive::Triangles, static_cast<unsigned int>(triangles.size())};
}

std::pair<Primitive, unsigned int> Triang2D::triangulate(const Points& points, Points& vertices, Indices& indices)
{
    return triangulate(points.begin(), static_cast<unsigned int>(points.size()), vertices, indices);
}

Command* Triang2D::triangulate(Buffer* pBuffer, const td::Point<float>* points, unsigned int n)
{
    TD_ASSERT(pBuffer != nullptr, nullptr);
    if (const std::size_t nFloats = pBuffer->getVertexStride() / sizeof(float); nFloats != 2)
    {
        vo::dbgLog("Error! Triang2D::triangulate obtained wrong stride size. Expected 2 elemens, obtained %u elements",
                   static_cast<unsigned int>(nFloats));
        TD_ASSERT(false, nullptr);
    }
    if (n < 3)
        TD_ASSERT(false && "triangulate: Must be 3 indices at least", nullptr);
    if (pBuffer->isAddOnCommitted())
        return nullptr;

    const std::size_t base = pBuffer->getNoOfVertices();
    const std::size_t firstIndex = pBuffer->getNoOfIndices();
    const auto [isFannable, nNonConvex, start] = isConvex(points, n);
    if (isFannable)
    {
        if (nNonConvex != 0)
            TD_ASSERT(nNonConvex == 1, nullptr);
        checkFan(points, n);
        pBuffer->appendVertices(points + start, n - start);
        pBuffer->appendVertices(points, start);
        Command* pComm = pBuffer->getCommandList().get();
        TD_ASSERT(pComm, nullptr);
        pComm->createDrawArrays(Primitive::TriangleFan, base, n);
        return pComm;
    }

    pBuffer->appendVertices(points, n);
    if (!cut(points, n))
        return nullptr;
    const Indices& triangles = indicesFrom(*_pSimplePolygon, base);
    pBuffer->appendIndices(triangles);
    Command* pComm = pBuffer->getCommandList().get();
    TD_ASSERT(pComm, nullptr);
    pComm->createDrawElements(Primitive::Triangles, firstIndex, static_cast<unsigned int>(triangles.size()));
    return pComm;
}

Command* Triang2D::triangulate(Buffer* pBuffer, const Points& points)
{
    return triangulate(pBuffer, points.begin(), static_cast<unsigned int>(points.size()));
}

Command* Triang2D::triangulate(Buffer* pBuffer, std::span<const td::Point<float>> points, td::ColorID color)
{
    return triangulate(pBuffer, points, td::Color(color));
}

Command* Triang2D::triangulate(Buffer* pBuffer, std::span<const td::Point<float>> points, td::Color color)
{
    return finished(triangulate(pBuffer, points.data(), static_cast<unsigned int>(points.size())), color);
}

Command* Triang2D::triangulateLine(Buffer* pBuffer, std::span<const td::Point<float>> points, float width, bool closed,
                                   td::ColorID color)
{
    return triangulateLine(pBuffer, points, width, closed, td::Color(color));
}

Command* Triang2D::triangulateLine(Buffer* pBuffer, std::span<const td::Point<float>> points, float width, bool closed,
                                   td::Color color)
{
    return finished(triangulateLine(pBuffer, points.data(), static_cast<unsigned int>(points.size()), width, closed),
                    color);
}

} // namespace gui::gl
