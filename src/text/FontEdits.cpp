#include "FontEdits.h"

#include "LayoutMemo.h"

#include <gui/gl/Font.h>

#include <td/Assert.h>
#include <vo/Log.h>

#include <epoxy/gl.h>

#include <algorithm>
#include <cstring>

namespace gui::gl
{

td::Size<float> Font::replaceString(std::size_t index, const td::Point<float>& pos, const char* str, unsigned long len,
                                    const _format& format)
{
    TD_ASSERT(str != nullptr, {});
    TD_ASSERT(index < _commands.size(), {});
    if (len == 0)
        len = std::strlen(str);
    if (isEmpty() || !canLayOut(str, len, format))
        return {};
    if (_pEdits == nullptr)
    {
        _pEdits = std::make_unique<FontEdits>();
        if (_committed)
            _pEdits->vertices.adopt(_vertices.size());
    }
    _cmd& cmd = _commands[index];
    std::size_t& room = _pEdits->rooms.try_emplace(index, cmd.vertexCount).first->second;

    // Behind all others, where a space at its end writes over nothing that is in use.
    const std::size_t end = _vertices.size();
    const auto* const pText = reinterpret_cast<const unsigned char*>(str);
    const td::Size<float> size = format.hAlignment == cLeft ? addGlyphs(pos, pText, pText + len, format.scale)
                                                            : addAlignedText(pos, str, len, format);
    const std::size_t n = _vertices.size() - end;
    _pMemo->forgetString(index);
    if (n <= room)
    {
        if (_committed && n != 0)
            _pEdits->vertices.pieces.change(cmd.firstVertex, n);
        _pMemo->overwrote(end + n);
        std::copy_n(_vertices.begin() + end, n, _vertices.begin() + cmd.firstVertex);
        _vertices.useTo(_vertices.begin() + end);
    }
    else
    {
        const std::size_t spare = n / 2;
        _pMemo->moved(); // if there is no room for the spare ones
        std::fill_n(_vertices.pushSlots(spare), spare, _vd{});
        if (_committed)
            _pEdits->vertices.pieces.extendTo(_vertices.size());
        room = n + spare;
        cmd.firstVertex = static_cast<unsigned int>(end);
    }
    cmd.vertexCount = static_cast<unsigned int>(n);
    setLooks(cmd, format);
    return size;
}

td::Size<float> Font::replaceString(std::size_t index, const td::Point<float>& pos, const td::StringBase& str,
                                    const _format& format)
{
    return replaceString(index, pos, str.c_str(), str.length(), format);
}

void Font::setColor(std::size_t index, td::ColorID colorID)
{
    TD_ASSERT(index < _commands.size());
    _commands[index].colorID = colorID;
    _commands[index].hasColor = false;
}

void Font::setColor(std::size_t index, td::Color color)
{
    TD_ASSERT(index < _commands.size());
    _commands[index].color = color;
    _commands[index].hasColor = true;
}

// What was replaced since the strings were uploaded.
bool Font::uploadEdits()
{
    const unsigned int before = _vbo;
    if (!_pEdits->vertices.update(_vbo, 0, {_vertices.begin(), sizeof(_vd), _vertices.size()}, _bufferHome))
    {
        vo::dbgLog("ERROR! Font::commit cannot create VBO!");
        return false;
    }
    if (_vbo != before)
    {
        glBindVertexArray(_vao);
        describeVertices();
    }
    return true;
}

} // namespace gui::gl
