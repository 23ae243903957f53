#include <gui/gl/Quads.h>

#include <vo/Log.h>

#include <epoxy/gl.h>

#include <algorithm>

namespace gui::gl
{

namespace
{

// As many quads as 16-bit indices reach; longer ranges are drawn in pieces of it, each with its base vertex.
constexpr std::uint32_t cQuadsPerPiece = 16384;

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
    std::vector<std::uint16_t> indices;
    indices.reserve(6 * cQuadsPerPiece);
    for (std::uint32_t corner = 0; corner < 4 * cQuadsPerPiece; corner += 4)
        for (const std::uint32_t i : {0U, 1U, 2U, 2U, 1U, 3U})
            indices.push_back(static_cast<std::uint16_t>(corner + i));
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
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLsizeiptr>(indices.size() * sizeof(std::uint16_t)),
                 indices.data(), GL_STATIC_DRAW);
    return true;
}

bool Quads::draw(std::span<const Range> ranges)
{
    if (!prepare())
        return false;
    _counts.clear();
    _bases.clear();
    for (const Range& range : ranges)
        for (std::uint32_t done = 0; done < range.count; done += cQuadsPerPiece)
        {
            _counts.push_back(static_cast<int>(6 * std::min(cQuadsPerPiece, range.count - done)));
            _bases.push_back(static_cast<int>(4 * (range.first + done)));
        }
    _offsets.assign(_counts.size(), nullptr);
    glBindVertexArray(_vao);
    if (!_counts.empty())
        glMultiDrawElementsBaseVertex(GL_TRIANGLES, _counts.data(), GL_UNSIGNED_SHORT, _offsets.data(),
                                      static_cast<GLsizei>(_counts.size()), _bases.data());
    return true;
}

void Quads::onContext(ContextResource::Event event)
{
    if (event == ContextResource::Event::Restored)
        _vao = _ebo = 0;
    release();
}

void Quads::release()
{
    _home.deleteName(CurrentContext::Kind::VertexArray, _vao);
    _home.deleteName(CurrentContext::Kind::Buffer, _ebo);
    _vao = _ebo = 0;
    _home.set(0);
}

} // namespace gui::gl
