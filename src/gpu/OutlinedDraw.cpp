#include "OutlinedDraw.h"

#include "../context/GLNumber.h"
#include "../context/StateOfES.h"

#include <cstdint>
#include <cstring>
#include <vector>

namespace gui::gl
{

namespace
{

void issue(const TriangleDraw& draw, GLenum mode, GLsizei count)
{
    if (draw.isIndexed && draw.nInstances > 0)
        glDrawElementsInstanced(mode, count, draw.indexType, draw.offset, draw.nInstances);
    else if (draw.isIndexed)
        glDrawElements(mode, count, draw.indexType, draw.offset);
    else if (draw.nInstances > 0)
        glDrawArraysInstanced(mode, draw.first, count, draw.nInstances);
    else
        glDrawArrays(mode, draw.first, count);
}

// The vertices in their order. @return false when the driver gives no indices
bool findVertices(const TriangleDraw& draw, std::vector<std::uint32_t>& vertices)
{
    vertices.resize(static_cast<std::size_t>(draw.count));
    if (!draw.isIndexed)
    {
        for (std::size_t i = 0; i < vertices.size(); ++i)
            vertices[i] = static_cast<std::uint32_t>(draw.first) + static_cast<std::uint32_t>(i);
        return true;
    }
    const std::size_t size = draw.indexType == GL_UNSIGNED_SHORT ? 2 : draw.indexType == GL_UNSIGNED_BYTE ? 1 : 4;
    const auto* const pBytes = static_cast<const unsigned char*>(
        glMapBufferRange(GL_ELEMENT_ARRAY_BUFFER, reinterpret_cast<GLintptr>(draw.offset),
                         static_cast<GLsizeiptr>(size * vertices.size()), GL_MAP_READ_BIT));
    if (pBytes == nullptr)
        return false;
    for (std::size_t i = 0; i < vertices.size(); ++i)
    {
        std::uint16_t index = pBytes[size * i];
        if (size == 4)
            std::memcpy(&vertices[i], pBytes + size * i, size);
        else if (size == 2)
            std::memcpy(&index, pBytes + size * i, size);
        vertices[i] = size == 4 ? vertices[i] : index;
    }
    glUnmapBuffer(GL_ELEMENT_ARRAY_BUFFER);
    return true;
}

} // namespace

bool drawOutlined(const TriangleDraw& draw)
{
    const bool isList = draw.mode == GL_TRIANGLES;
    const GLsizei count = isList ? draw.count / 3 * 3 : draw.count;
    if (count < 3)
        return true;
    if (s_trianglesAs == GL_POINT)
    {
        issue(draw, GL_POINTS, count);
        return true;
    }
    std::vector<std::uint32_t> vertices, lines;
    if (!findVertices(draw, vertices))
        return true;
    for (std::size_t i = 0; i + 2 < static_cast<std::size_t>(count); i += isList ? 3 : 1)
    {
        const std::uint32_t a = vertices[draw.mode == GL_TRIANGLE_FAN ? 0 : i], b = vertices[i + 1],
                            c = vertices[i + 2];
        lines.insert(lines.end(), {a, b, b, c, c, a});
    }
    const auto before = static_cast<GLuint>(glNumber(GL_ELEMENT_ARRAY_BUFFER_BINDING));
    GLuint buffer = 0;
    glGenBuffers(1, &buffer);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffer);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLsizeiptr>(lines.size() * sizeof(std::uint32_t)), lines.data(),
                 GL_STREAM_DRAW);
    issue({GL_LINES, 0, 0, true, GL_UNSIGNED_INT, nullptr, draw.nInstances}, GL_LINES,
          static_cast<GLsizei>(lines.size()));
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, before);
    glDeleteBuffers(1, &buffer);
    return true;
}

} // namespace gui::gl
