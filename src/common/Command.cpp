#include <gui/gl/Command.h>

#include "ProgHelper.h"
#include "UniformPacking.h"

#include <gui/Color.h>
#include <td/Assert.h>
#include <vo/Log.h>

#include <epoxy/gl.h>

#include <array>
#include <climits>
#include <cstring>

namespace gui::gl
{

namespace
{

constexpr unsigned short cNoTexture = 65535;

Program* s_pCurrentProgram = nullptr;
ProgHelper s_progHelper;
td::Color s_prevColor(0, 0, 0, 0);
unsigned short s_prevTexture = cNoTexture;

const void* indexOffset(unsigned int first)
{
    return reinterpret_cast<const void*>(static_cast<std::size_t>(first) * sizeof(GLuint));
}

} // namespace

void setCurrentProgram(Program* pProgram)
{
    s_pCurrentProgram = pProgram;
    s_progHelper.setProgram(pProgram);
    s_prevTexture = cNoTexture;
    s_prevColor = td::Color(0, 0, 0, 0);
}

void ProgHelper::forgetTexture() { s_prevTexture = cNoTexture; }

bool ProgHelper::isCurrent(const Program* pProgram) { return s_pCurrentProgram == pProgram; }

// The functions that encode chooses from. Those of a row differ only in the mode.
struct Command::Functions
{
    static bool drawArrays(const Command* c, GLenum mode)
    {
        glDrawArrays(mode, static_cast<GLint>(c->_drawData._first), static_cast<GLsizei>(c->_drawData._count));
        return true;
    }
    static bool drawArraysPoints(const Command* c) { return drawArrays(c, GL_POINTS); }
    static bool drawArraysLines(const Command* c) { return drawArrays(c, GL_LINES); }
    static bool drawArraysLineStrip(const Command* c) { return drawArrays(c, GL_LINE_STRIP); }
    static bool drawArraysLineLoop(const Command* c) { return drawArrays(c, GL_LINE_LOOP); }
    static bool drawArraysTriangles(const Command* c) { return drawArrays(c, GL_TRIANGLES); }
    static bool drawArraysTriangleFan(const Command* c) { return drawArrays(c, GL_TRIANGLE_FAN); }
    static bool drawArraysTriangleStrip(const Command* c) { return drawArrays(c, GL_TRIANGLE_STRIP); }
    static bool drawArraysPatches(const Command* c) { return drawArrays(c, GL_PATCHES); }

    static bool drawElements(const Command* c, GLenum mode)
    {
        glDrawElements(mode, static_cast<GLsizei>(c->_drawData._count), GL_UNSIGNED_INT,
                       indexOffset(c->_drawData._first));
        return true;
    }
    static bool drawElementsPoints(const Command* c) { return drawElements(c, GL_POINTS); }
    static bool drawElementsLines(const Command* c) { return drawElements(c, GL_LINES); }
    static bool drawElementsLineStrip(const Command* c) { return drawElements(c, GL_LINE_STRIP); }
    static bool drawElementsLineLoop(const Command* c) { return drawElements(c, GL_LINE_LOOP); }
    static bool drawElementsTriangles(const Command* c) { return drawElements(c, GL_TRIANGLES); }
    static bool drawElementsTriangleFan(const Command* c) { return drawElements(c, GL_TRIANGLE_FAN); }
    static bool drawElementsTriangleStrip(const Command* c) { return drawElements(c, GL_TRIANGLE_STRIP); }
    static bool drawElementsPatches(const Command* c) { return drawElements(c, GL_PATCHES); }

    static bool drawArraysInstanced(const Command* c, GLenum mode)
    {
        glDrawArraysInstanced(mode, static_cast<GLint>(c->_drawData._first), static_cast<GLsizei>(c->_drawData._count),
                              static_cast<GLsizei>(c->_drawData._nInstances));
        return true;
    }
    static bool drawArraysPointsInstanced(const Command* c) { return drawArraysInstanced(c, GL_POINTS); }
    static bool drawArraysLinesInstanced(const Command* c) { return drawArraysInstanced(c, GL_LINES); }
    static bool drawArraysLineStripInstanced(const Command* c) { return drawArraysInstanced(c, GL_LINE_STRIP); }
    static bool drawArraysLineLoopInstanced(const Command* c) { return drawArraysInstanced(c, GL_LINE_LOOP); }
    static bool drawArraysTrianglesInstanced(const Command* c) { return drawArraysInstanced(c, GL_TRIANGLES); }
    static bool drawArraysTriangleFanInstanced(const Command* c) { return drawArraysInstanced(c, GL_TRIANGLE_FAN); }
    static bool drawArraysTriangleStripInstanced(const Command* c) { return drawArraysInstanced(c, GL_TRIANGLE_STRIP); }
    static bool drawArraysPatchesInstanced(const Command* c) { return drawArraysInstanced(c, GL_PATCHES); }

    static bool drawElementsInstanced(const Command* c, GLenum mode)
    {
        glDrawElementsInstanced(mode, static_cast<GLsizei>(c->_drawData._count), GL_UNSIGNED_INT,
                                indexOffset(c->_drawData._first), static_cast<GLsizei>(c->_drawData._nInstances));
        return true;
    }
    static bool drawElementsPointsInstanced(const Command* c) { return drawElementsInstanced(c, GL_POINTS); }
    static bool drawElementsLinesInstanced(const Command* c) { return drawElementsInstanced(c, GL_LINES); }
    static bool drawElementsLineStripInstanced(const Command* c) { return drawElementsInstanced(c, GL_LINE_STRIP); }
    static bool drawElementsLineLoopInstanced(const Command* c) { return drawElementsInstanced(c, GL_LINE_LOOP); }
    static bool drawElementsTrianglesInstanced(const Command* c) { return drawElementsInstanced(c, GL_TRIANGLES); }
    static bool drawElementsTriangleFanInstanced(const Command* c) { return drawElementsInstanced(c, GL_TRIANGLE_FAN); }
    static bool drawElementsTriangleStripInstanced(const Command* c)
    {
        return drawElementsInstanced(c, GL_TRIANGLE_STRIP);
    }
    static bool drawElementsPatchesInstanced(const Command* c) { return drawElementsInstanced(c, GL_PATCHES); }

    static bool drawArraysPointsWithSize(const Command* c)
    {
        glPointSize(c->_drawData._pointSize);
        return drawArrays(c, GL_POINTS);
    }
    static bool drawElementPointsWithSize(const Command* c)
    {
        glPointSize(c->_drawData._pointSize);
        return drawElements(c, GL_POINTS);
    }
    static bool drawArraysPatchesWithSize(const Command* c)
    {
        glPatchParameteri(GL_PATCH_VERTICES, c->_drawData._nPatchVertices);
        return drawArrays(c, GL_PATCHES);
    }
    static bool drawElementPatchesWithSize(const Command* c)
    {
        glPatchParameteri(GL_PATCH_VERTICES, c->_drawData._nPatchVertices);
        return drawElements(c, GL_PATCHES);
    }

    static bool s_setUniformMatrix(const Command* c)
    {
        TD_ASSERT(s_pCurrentProgram != nullptr, false);
        s_progHelper.setMVP(c->_mvpData._pMatrix);
        return sendUniforms(*s_pCurrentProgram, c->_mvpData._uniforms, c->_mvpData._uniforms + cMVPUniformBytes);
    }

    static Function encodeDrawArrays(td::BYTE primitive)
    {
        static constexpr std::array<Function, 8> cFunctions{
            drawArraysPoints,    drawArraysLines,       drawArraysLineStrip,     drawArraysLineLoop,
            drawArraysTriangles, drawArraysTriangleFan, drawArraysTriangleStrip, drawArraysPatches};
        if (primitive >= cFunctions.size())
            TD_ASSERT(false, nullptr);
        return cFunctions[primitive];
    }

    static Function encodeDrawElements(td::BYTE primitive)
    {
        static constexpr std::array<Function, 8> cFunctions{
            drawElementsPoints,    drawElementsLines,       drawElementsLineStrip,     drawElementsLineLoop,
            drawElementsTriangles, drawElementsTriangleFan, drawElementsTriangleStrip, drawElementsPatches};
        if (primitive >= cFunctions.size())
            TD_ASSERT(false, nullptr);
        return cFunctions[primitive];
    }

    static Function encodeDrawArraysInstanced(td::BYTE primitive)
    {
        static constexpr std::array<Function, 8> cFunctions{
            drawArraysPointsInstanced,        drawArraysLinesInstanced,     drawArraysLineStripInstanced,
            drawArraysLineLoopInstanced,      drawArraysTrianglesInstanced, drawArraysTriangleFanInstanced,
            drawArraysTriangleStripInstanced, drawArraysPatchesInstanced};
        if (primitive >= cFunctions.size())
            TD_ASSERT(false, nullptr);
        return cFunctions[primitive];
    }

    static Function encodeDrawElementsInstanced(td::BYTE primitive)
    {
        static constexpr std::array<Function, 8> cFunctions{
            drawElementsPointsInstanced,        drawElementsLinesInstanced,     drawElementsLineStripInstanced,
            drawElementsLineLoopInstanced,      drawElementsTrianglesInstanced, drawElementsTriangleFanInstanced,
            drawElementsTriangleStripInstanced, drawElementsPatchesInstanced};
        if (primitive >= cFunctions.size())
            TD_ASSERT(false, nullptr);
        return cFunctions[primitive];
    }
};

Command::Command()
    : _fn(nullptr)
    , _type(0)
    , _drawSubType(0)
{
}

void Command::reset()
{
    static_assert(sizeof(_draw) == sizeof(_mvp) && sizeof(_draw) >= cUniformBytes);
    _fn = nullptr;
    std::memset(&_drawData, 0, sizeof(_drawData));
    setTypeInfo(Type::None, DrawSubType::None);
}

void Command::setTypeInfo(Type type, DrawSubType subType)
{
    _type = static_cast<td::BYTE>(type) & 0xF;
    _drawSubType = static_cast<td::BYTE>(subType) & 0xF;
}

// The callers have checked that the command is empty and that the numbers fit.
void Command::createDraw(Type type, Primitive primitive, std::size_t first, unsigned int count)
{
    reset();
    setTypeInfo(type, DrawSubType::None);
    _drawData._first = static_cast<unsigned int>(first);
    _drawData._count = count;
    _drawData._primitive = static_cast<td::BYTE>(primitive);
}

void Command::createDrawArrays(Primitive primitive, std::size_t first, unsigned int count)
{
    TD_ASSERT(_type == (td::BYTE) Type::None);
    TD_ASSERT(first <= INT_MAX && count <= INT_MAX);
    createDraw(Type::DrawArrays, primitive, first, count);
}

void Command::createDrawElements(Primitive primitive, std::size_t first, unsigned int count)
{
    TD_ASSERT(_type == (td::BYTE) Type::None);
    TD_ASSERT(first <= UINT_MAX && count <= INT_MAX);
    createDraw(Type::DrawElements, primitive, first, count);
}

void Command::createDrawArraysInstanced(Primitive primitive, std::size_t first, unsigned int count,
                                        unsigned int nInstances)
{
    TD_ASSERT(_type == (td::BYTE) Type::None);
    TD_ASSERT(first <= INT_MAX && count <= INT_MAX && nInstances <= INT_MAX);
    createDraw(Type::DrawArraysInstanced, primitive, first, count);
    _drawData._nInstances = nInstances;
}

void Command::createDrawElementsInstanced(Primitive primitive, std::size_t first, unsigned int count,
                                          unsigned int nInstances)
{
    TD_ASSERT(_type == (td::BYTE) Type::None);
    TD_ASSERT(first <= UINT_MAX && count <= INT_MAX && nInstances <= INT_MAX);
    createDraw(Type::DrawElementsInstanced, primitive, first, count);
    _drawData._nInstances = nInstances;
}

void Command::createDrawArrayPoints(std::size_t first, unsigned int count, float pointSize)
{
    TD_ASSERT(_type == (td::BYTE) Type::None);
    TD_ASSERT(first <= INT_MAX && count <= INT_MAX);
    createDraw(Type::DrawArrayPoints, Primitive::Points, first, count);
    _drawData._pointSize = pointSize;
}

void Command::createDrawElementPoints(std::size_t first, unsigned int count, float pointSize)
{
    TD_ASSERT(_type == (td::BYTE) Type::None);
    TD_ASSERT(first <= UINT_MAX && count <= INT_MAX);
    createDraw(Type::DrawElementPoints, Primitive::Points, first, count);
    _drawData._pointSize = pointSize;
}

void Command::createDrawArrayPatches(std::size_t first, unsigned int nVertices, int verticesPerPatch)
{
    TD_ASSERT(_type == (td::BYTE) Type::None);
    TD_ASSERT(first <= INT_MAX && nVertices <= INT_MAX);
    TD_ASSERT(verticesPerPatch > 0);
    TD_ASSERT(nVertices % verticesPerPatch == 0);
    createDraw(Type::DrawArrayPatches, Primitive::Points, first, nVertices);
    _drawData._nPatchVertices = verticesPerPatch;
}

void Command::createDrawElementPatches(std::size_t first, unsigned int nIndices, int verticesPerPatch)
{
    TD_ASSERT(_type == (td::BYTE) Type::None);
    TD_ASSERT(first <= UINT_MAX && nIndices <= INT_MAX);
    TD_ASSERT(verticesPerPatch > 0);
    TD_ASSERT(nIndices % verticesPerPatch == 0);
    createDraw(Type::DrawElementPatches, Primitive::Points, first, nIndices);
    _drawData._nPatchVertices = verticesPerPatch;
}

void Command::createMVPSetter(const glm::mat4* pMatrix, _additinalUniform* pUniforms, unsigned char n)
{
    TD_ASSERT(_type == (td::BYTE) Type::None);
    TD_ASSERT(pMatrix != nullptr);
    reset();
    setTypeInfo(Type::MVPSetter, DrawSubType::None);
    _mvpData._pMatrix = pMatrix;
    if (pUniforms != nullptr && n > 0)
        setAdditionalUniforms(pUniforms, n);
}

bool Command::createUniformSetter(_additinalUniform* pUniforms, unsigned char n)
{
    TD_ASSERT(_type == (td::BYTE) Type::None, false);
    reset();
    setTypeInfo(Type::UniformSetter, DrawSubType::None);
    return setAdditionalUniforms(pUniforms, n);
}

void Command::setNumberOfInstances(unsigned int n)
{
    const bool isArrays = _type == (td::BYTE) Type::DrawArrays;
    const bool isElements = _type == (td::BYTE) Type::DrawElements;
    if (!isArrays && !isElements)
    {
        vo::dbgLog("Error! Command::setNumberOfIstances can be only called after createDrawElements or "
                   "createDrawArrays!");
        TD_ASSERT(false);
    }
    // The word that the instance count would take holds the colour.
    TD_ASSERT(_drawSubType != (td::BYTE) DrawSubType::DrawWithClr4);
    TD_ASSERT(n <= INT_MAX);
    setTypeInfo(isArrays ? Type::DrawArraysInstanced : Type::DrawElementsInstanced, getDrawSubType());
    _drawData._nInstances = n;
}

// clang-format off
void Command::setColor(td::ColorID id)
{
    TD_ASSERT(_type != 0);
    if (_fn == nullptr)
    {
        if (!isDraw())
            TD_ASSERT(false);
        TD_ASSERT(_drawSubType == (td::BYTE) DrawSubType::None || _drawSubType == (td::BYTE) DrawSubType::DrawWithClr3);
    }
    else
        TD_ASSERT(_drawSubType == (td::BYTE) DrawSubType::DrawWithClr3);

    setTypeInfo(getType(), DrawSubType::DrawWithClr3);
    const td::Color color = gui::Color::toTDColor(id);
    _drawData._values[0] = color.red();
    _drawData._values[1] = color.green();
    _drawData._values[2] = color.blue();
}

void Command::setColor(td::ColorID id, unsigned char alpha)
{
    TD_ASSERT(_type != 0);
    if (_fn == nullptr)
    {
        if (!isDraw())
            TD_ASSERT(false);
        TD_ASSERT(_drawSubType == (td::BYTE) DrawSubType::None || _drawSubType == (td::BYTE) DrawSubType::DrawWithClr4);
        // The other kinds keep their instance count, point size or patch size in the word that the colour would take.
        TD_ASSERT(_type == (td::BYTE) Type::DrawArrays || _type == (td::BYTE) Type::DrawElements);
    }
    else
        TD_ASSERT(_drawSubType == (td::BYTE) DrawSubType::DrawWithClr4);

    setTypeInfo(getType(), DrawSubType::DrawWithClr4);
    td::Color color = gui::Color::toTDColor(id);
    color.setAlpha(alpha);
    _drawData._rgba = color.rgba();
}

void Command::setTexture(Textures::Unit unit, char index)
{
    TD_ASSERT(_type != 0);
    TD_ASSERT(unit <= Textures::Unit::T31);
    if (_fn == nullptr)
    {
        if (!isDraw())
            TD_ASSERT(false);
        TD_ASSERT(_drawSubType == (td::BYTE) DrawSubType::None || _drawSubType == (td::BYTE) DrawSubType::DrawWithTexture);
    }
    else
        TD_ASSERT(_drawSubType == (td::BYTE) DrawSubType::DrawWithTexture);

    setTypeInfo(getType(), DrawSubType::DrawWithTexture);
    _drawData._values[0] = static_cast<td::BYTE>(unit);
    _drawData._values[1] = static_cast<td::BYTE>(index);
}
// clang-format on

void Command::setColor(td::ColorID id, int alpha)
{
    TD_ASSERT(alpha >= 0 && alpha <= 255);
    setColor(id, static_cast<unsigned char>(alpha));
}

void Command::setColor(td::ColorID id, float alpha)
{
    // Out of the integer's range the conversion is undefined: below it gives 0, above it the largest.
    const float scaled = alpha * 255.0f;
    unsigned int value = 0;
    if (scaled >= 4294967296.0f)
        value = UINT_MAX;
    else if (scaled > 0)
        value = static_cast<unsigned int>(scaled);
    setColor(id, static_cast<unsigned char>(value & 0xFF));
}

void Command::setColor(td::ColorID id, double alpha) { setColor(id, static_cast<float>(alpha)); }

bool Command::setAdditionalUniforms(_additinalUniform* pUniforms, unsigned char n)
{
    const bool isMVP = _type == (td::BYTE) Type::MVPSetter;
    if (!isMVP && _type != (td::BYTE) Type::UniformSetter)
        TD_ASSERT(false, false);
    TD_ASSERT(pUniforms, false);
    TD_ASSERT(n > 0, false);

    // First how many fit, so that a programming error touches nothing.
    const unsigned int nValueBytes = (isMVP ? cMVPUniformBytes : cUniformBytes) - cGroupHead;
    unsigned int nBytes = nValueBytes;
    unsigned char nFitting = 0;
    for (; nFitting < n; ++nFitting)
    {
        const td::BYTE type = pUniforms[nFitting].type;
        TD_ASSERT(type < UniformSize.size(), false);
        const unsigned int uniformSize = UniformSize[type];
        if (nFitting > 0)
        {
            // One byte stays 0 behind the last group: it ends them.
            if (nBytes <= uniformSize + cGroupHead)
                break;
            nBytes -= cGroupHead;
        }
        else if (isMVP)
            TD_ASSERT(uniformSize < 5, false);
        else
            TD_ASSERT(uniformSize < 13, false);
        if (type == 0 || type > cLastPackableType)
            TD_ASSERT(false, false);
        nBytes -= uniformSize;
    }

    td::BYTE* dst = isMVP ? _mvpData._uniforms : _uniformData;
    std::memset(dst, 0, nValueBytes + cGroupHead);
    for (unsigned char i = 0; i < nFitting; ++i)
        dst = packUniform(dst, pUniforms[i]);
    return nFitting == n;
}

bool Command::encode()
{
    Function fn = nullptr;
    switch (getType())
    {
    case Type::DrawArrays:
        fn = Functions::encodeDrawArrays(_drawData._primitive);
        break;
    case Type::DrawElements:
        fn = Functions::encodeDrawElements(_drawData._primitive);
        break;
    case Type::DrawArraysInstanced:
        fn = Functions::encodeDrawArraysInstanced(_drawData._primitive);
        break;
    case Type::DrawElementsInstanced:
        fn = Functions::encodeDrawElementsInstanced(_drawData._primitive);
        break;
    case Type::DrawArrayPoints:
        fn = Functions::drawArraysPointsWithSize;
        break;
    case Type::DrawElementPoints:
        fn = Functions::drawElementPointsWithSize;
        break;
    case Type::DrawArrayPatches:
        fn = Functions::drawArraysPatchesWithSize;
        break;
    case Type::DrawElementPatches:
        fn = Functions::drawElementPatchesWithSize;
        break;
    case Type::MVPSetter:
        fn = Functions::s_setUniformMatrix;
        break;
    case Type::None:
    case Type::UniformSetter:
    default:
        TD_ASSERT(false, false);
    }
    if (fn == nullptr)
        return false;
    _fn = fn;
    return true;
}

bool Command::execute()
{
    if (_fn == nullptr)
    {
        vo::dbgLog("Error! Command not encoded!");
        TD_ASSERT(false, false);
    }
    if (isDraw() && !sendColorOrTexture())
        return false;
    return _fn(this);
}

bool Command::sendColorOrTexture() const
{
    const td::BYTE* const v = _drawData._values;
    switch (getDrawSubType())
    {
    case DrawSubType::DrawWithClr3:
    {
        const td::Color color(v[0], v[1], v[2], 255);
        if (color == s_prevColor)
            break;
        TD_ASSERT(s_pCurrentProgram != nullptr, false);
        s_prevColor = color;
        s_pCurrentProgram->setColor3({v[0] / 255.0f, v[1] / 255.0f, v[2] / 255.0f});
        break;
    }
    case DrawSubType::DrawWithClr4:
    {
        const td::Color color(_drawData._rgba);
        if (color == s_prevColor)
            break;
        TD_ASSERT(s_pCurrentProgram != nullptr, false);
        s_prevColor = color;
        s_pCurrentProgram->setColor4(
            {color.red() / 255.0f, color.green() / 255.0f, color.blue() / 255.0f, color.alpha() / 255.0f});
        break;
    }
    case DrawSubType::DrawWithTexture:
    {
        const auto key = static_cast<unsigned short>(v[0] * 256 + v[1]);
        if (key == s_prevTexture)
            break;
        if (!s_progHelper.setTexture(static_cast<Textures::Unit>(v[0]), v[1]))
            return false;
        s_prevTexture = key;
        break;
    }
    case DrawSubType::None:
    default:
        break;
    }
    return true;
}

} // namespace gui::gl
