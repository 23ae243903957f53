#include <gui/gl/Triang2D.h>

#include <gui/gl/Buffer.h>
#include <gui/gl/SimplePolygon.h>
#include <td/Assert.h>
#include <vo/Log.h>

#include <algorithm>
#include <span>

namespace gui::gl
{

namespace
{

// The vertices of a range of the buffer, x and y in turn.
struct Range
{
    const float* pCoordinates;
    std::size_t size;

    /// The first vertex equal to q from begin on. @return end when there is none before it
    std::size_t find(const td::Point<float>& q, std::size_t begin, std::size_t end) const
    {
        while (begin < end && !(pCoordinates[2 * begin] == q.x && pCoordinates[2 * begin + 1] == q.y))
            ++begin;
        return begin;
    }
};

// Collects, for each point, the number of the vertex in the range that equals it. @return false when one has none
bool findVertices(const Range& range, const td::Point<float>* points, unsigned int firstSearchPos,
                  Triang2D::Indices& indices)
{
    indices.reset();
    for (std::size_t i = 0; i < range.size; ++i)
    {
        std::size_t j = range.find(points[i], i, range.size);
        if (j == range.size)
        {
            j = range.find(points[i], 0, i);
            if (j == i)
                return false;
        }
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
    if (!findVertices(range, points, firstSearchPos, indices))
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
