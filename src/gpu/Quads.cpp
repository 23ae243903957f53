#include <gui/gl/Quads.h>

#include "../context/Features.h"

#include <vo/Log.h>

#include <epoxy/gl.h>

#include <algorithm>

namespace gui::gl
{

namespace
{

// As many quads as 16-bit indices reach; longer ranges are drawn in pieces of it, each with its base vertex.
constexpr std::uint32_t cQuadsPerPiece = 16384;
// OpenGL ES may have no base vertices: there are indices of 32 bits for so many quads together, when they are drawn.
constexpr std::uint32_t cQuadsPerPage = 4096;

template <typename Index>
std::vector<Index> makeIndices(std::uint32_t first, std::uint32_t nQuads)
{
    std::vector<Index> indices;
    indices.reserve(std::size_t{6} * nQuads);
    for (std::uint32_t corner = 4 * first; corner < 4 * (first + nQuads); corner += 4)
        for (const std::uint32_t i : {0U, 1U, 2U, 2U, 1U, 3U})
            indices.push_back(static_cast<Index>(corner + i));
    return indices;
}

} // namespace

Quads::~Quads() { release(); }

bool Quads::prepare()
{
    if (!CurrentContext::isThere("Quads::draw"))
        return false;
    if (_home.getID() != CurrentContext::getID())
        release();
    if (_vao != 0)
        return true;
    glGenVertexArrays(1, &_vao);
    glGenBuffers(1, &_ebo);
    _home.set(CurrentContext::getID());
    if (_vao == 0 || _ebo == 0)
    {
        vo::dbgLog("Error! Quads::draw cannot create its vertex array and its indices!");
        release();
        return false;
    }
    glBindVertexArray(_vao);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, _ebo);
    if (!Features::get().hasBaseVertex)
        return true;
    const std::vector<std::uint16_t> indices = makeIndices<std::uint16_t>(0, cQuadsPerPiece);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLsizeiptr>(indices.size() * sizeof(std::uint16_t)),
                 indices.data(), GL_STATIC_DRAW);
    return true;
}

bool Quads::draw(std::span<const Range> ranges)
{
    if (!prepare())
        return false;
    glBindVertexArray(_vao);
    if (!Features::get().hasBaseVertex)
    {
        drawPages(ranges);
        return true;
    }
    _counts.clear();
    _bases.clear();
    for (const Range& range : ranges)
        for (std::uint32_t done = 0; done < range.count; done += cQuadsPerPiece)
        {
            _counts.push_back(static_cast<int>(6 * std::min(cQuadsPerPiece, range.count - done)));
            _bases.push_back(static_cast<int>(4 * (range.first + done)));
        }
    _offsets.assign(_counts.size(), nullptr);
    if (!_counts.empty())
        drawPieces();
    return true;
}

void Quads::drawPieces() const
{
    if (Features::get().hasMultiDraw)
    {
        glMultiDrawElementsBaseVertex(GL_TRIANGLES, _counts.data(), GL_UNSIGNED_SHORT, _offsets.data(),
                                      static_cast<GLsizei>(_counts.size()), _bases.data());
        return;
    }
    for (std::size_t i = 0; i < _counts.size(); ++i)
        glDrawElementsBaseVertex(GL_TRIANGLES, _counts[i], GL_UNSIGNED_SHORT, nullptr, _bases[i]);
}

unsigned int Quads::getPage(std::uint32_t page)
{
    unsigned int& buffer = _pages[page];
    if (buffer == 0)
    {
        const std::vector<std::uint32_t> indices = makeIndices<std::uint32_t>(page * cQuadsPerPage, cQuadsPerPage);
        glGenBuffers(1, &buffer);
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffer);
        glBufferData(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLsizeiptr>(indices.size() * sizeof(std::uint32_t)),
                     indices.data(), GL_STATIC_DRAW);
    }
    return buffer;
}

void Quads::drawPages(std::span<const Range> ranges)
{
    for (const Range& range : ranges)
        for (std::uint32_t done = 0; done < range.count;)
        {
            const std::uint32_t first = range.first + done, within = first % cQuadsPerPage;
            const std::uint32_t n = std::min(cQuadsPerPage - within, range.count - done);
            glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, getPage(first / cQuadsPerPage));
            glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(6 * n), GL_UNSIGNED_INT,
                           reinterpret_cast<const void*>(within * 6 * sizeof(std::uint32_t)));
            done += n;
        }
}

void Quads::onContext(ContextResource::Event event)
{
    if (event == ContextResource::Event::Restored)
    {
        _vao = _ebo = 0;
        _pages.clear();
    }
    release();
}

void Quads::release()
{
    _home.deleteName(CurrentContext::Kind::VertexArray, _vao);
    _home.deleteName(CurrentContext::Kind::Buffer, _ebo);
    for (const auto& [page, buffer] : _pages)
        _home.deleteName(CurrentContext::Kind::Buffer, buffer);
    _pages.clear();
    _vao = _ebo = 0;
    _home.set(0);
}

} // namespace gui::gl
