#include <gui/gl/Triang2D.h>

#include "VertexFinder.h"

#include <gui/gl/Buffer.h>
#include <gui/gl/SimplePolygon.h>
#include <td/Assert.h>
#include <vo/Log.h>

#include <numeric>

namespace gui::gl
{

namespace
{

// A search of so few vertices takes less than making a table of them.
constexpr std::size_t cFew = 16;

// The vertices of a range of the buffer, x and y in turn.
struct Range
{
    const float* pCoordinates;
    std::size_t size;

    bool isAt(std::size_t i, const td::Point<float>& q) const
    {
        return pCoordinates[2 * i] == q.x && pCoordinates[2 * i + 1] == q.y;
    }

    /// The first vertex equal to q from begin on, else the first of all. @return size when there is none
    std::size_t find(const td::Point<float>& q, std::size_t begin) const
    {
        for (std::size_t i = begin; i < size; ++i)
            if (isAt(i, q))
                return i;
        for (std::size_t i = 0; i < begin; ++i)
            if (isAt(i, q))
                return i;
        return size;
    }

    /// How many points are the range's vertices in their order, from the first on.
    std::size_t countInOrder(const td::Point<float>* points) const
    {
        const float* const pPoints = &points->x;
        std::size_t i = 0;
        // Without a way out in its middle, the inner loop is made one over vectors.
        constexpr std::size_t cBlock = 64;
        for (; i + cBlock <= size; i += cBlock)
        {
            unsigned int nDifferent = 0;
            for (std::size_t k = 2 * i; k < 2 * (i + cBlock); ++k)
                nDifferent += pCoordinates[k] == pPoints[k] ? 0 : 1;
            if (nDifferent != 0)
                break;
        }
        while (i < size && isAt(i, points[i]))
            ++i;
        return i;
    }
};

// Collects, for each point, the number of the vertex in the range that equals it. @return false when one has none
bool findVertices(const Range& range, const td::Point<float>* points, unsigned int firstSearchPos, VertexFinder& finder,
                  Triang2D::Indices& indices)
{
    indices.reset();
    const std::size_t nInOrder = range.countInOrder(points);
    unsigned int* const pInOrder = indices.pushSlots(nInOrder);
    std::iota(pInOrder, pInOrder + nInOrder, firstSearchPos);
    if (nInOrder == range.size)
        return true;

    const bool areFew = range.size <= cFew;
    if (!areFew)
        finder.build(range.pCoordinates, range.size);
    for (std::size_t i = nInOrder; i < range.size; ++i)
    {
        const std::size_t j = range.isAt(i, points[i]) ? i
                              : areFew                 ? range.find(points[i], i)
                                                       : finder.find(points[i], i);
        if (j >= range.size)
            return false;
        indices.push_back(firstSearchPos + static_cast<unsigned int>(j));
    }
    return true;
}

} // namespace

Command* Triang2D::createRecycledLine(Buffer* pBuffer, Primitive primitive, const td::Point<float>* points,
                                      unsigned int firstSearchPos, unsigned int nVerticesToSearch)
{
    TD_ASSERT(pBuffer != nullptr, nullptr);
    if (pBuffer->getVertexStride() != 2 * sizeof(float))
    {
        vo::dbgLog("Error! Triang2D::createRecycledLine wrong input data! This method can be used only with layouts "
                   "having 2d points");
        TD_ASSERT(false, nullptr);
    }
    const std::size_t nVertices = pBuffer->getNoOfVertices();
    // In 32 bits the sum could wrap and be accepted.
    const std::size_t lastSearchPos = std::size_t(firstSearchPos) + nVerticesToSearch;
    if (nVertices < lastSearchPos)
    {
        vo::dbgLog("Error! Triang2D::createRecycledLine wrong input data! Number of vertices in buffer=%u, "
                   "lastSearchPos=%d",
                   static_cast<unsigned int>(nVertices), static_cast<int>(lastSearchPos));
        TD_ASSERT(false, nullptr);
    }
    if (pBuffer->isAddOnCommitted())
        return nullptr;

    const Range range{pBuffer->getVertices().begin() + 2 * std::size_t(firstSearchPos), nVerticesToSearch};
    Indices& indices = _pSimplePolygon->getIndices();
    if (!findVertices(range, points, firstSearchPos, *_pVertexFinder, indices))
        return nullptr;
    TD_ASSERT(indices.size() == nVerticesToSearch, nullptr);

    Command* pComm = pBuffer->getCommandList().get();
    TD_ASSERT(pComm, nullptr);
    const std::size_t firstIndex = pBuffer->getNoOfIndices();
    pBuffer->appendIndices(indices);
    pComm->createDrawElements(primitive, firstIndex, nVerticesToSearch);
    return pComm;
}

} // namespace gui::gl
