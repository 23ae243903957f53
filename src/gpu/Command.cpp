#include <gui/gl/Command.h>

#include "UniformPacking.h"

#include <gui/Color.h>
#include <td/Assert.h>
#include <vo/Log.h>

#include <climits>
#include <cstring>

namespace gui::gl
{

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
    const bool isOther = getType() != type || getDrawSubType() != subType;
    _type = static_cast<td::BYTE>(type) & 0xF;
    _drawSubType = static_cast<td::BYTE>(subType) & 0xF;
    // Not for each new colour of an encoded command.
    if (_fn != nullptr && isOther)
        chooseForSubType();
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

void Command::createDrawAll(Primitive primitive, std::size_t first)
{
    TD_ASSERT(_type == (td::BYTE) Type::None);
    TD_ASSERT(first <= INT_MAX);
    createDraw(Type::DrawAll, primitive, first, 0);
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
void Command::setColor(td::Color color)
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
    _drawData._values[0] = color.red();
    _drawData._values[1] = color.green();
    _drawData._values[2] = color.blue();
}

void Command::setColor(td::Color color, unsigned char alpha)
{
    TD_ASSERT(_type != 0);
    if (_fn == nullptr)
    {
        if (!isDraw())
            TD_ASSERT(false);
        TD_ASSERT(_drawSubType == (td::BYTE) DrawSubType::None || _drawSubType == (td::BYTE) DrawSubType::DrawWithClr4);
        // The other kinds keep their instance count, point size or patch size in the word that the colour would take.
        if (getType() != Type::DrawAll)
            TD_ASSERT(_type == (td::BYTE) Type::DrawArrays || _type == (td::BYTE) Type::DrawElements);
    }
    else
        TD_ASSERT(_drawSubType == (td::BYTE) DrawSubType::DrawWithClr4);

    setTypeInfo(getType(), DrawSubType::DrawWithClr4);
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
        TD_ASSERT(_drawSubType == (td::BYTE) DrawSubType::None ||
                  _drawSubType == (td::BYTE) DrawSubType::DrawWithTexture);
    }
    else
        TD_ASSERT(_drawSubType == (td::BYTE) DrawSubType::DrawWithTexture);

    setTypeInfo(getType(), DrawSubType::DrawWithTexture);
    _drawData._values[0] = static_cast<td::BYTE>(unit);
    _drawData._values[1] = static_cast<td::BYTE>(index);
}
// clang-format on

void Command::setColor(td::ColorID id) { setColor(td::Color(id)); }

void Command::setColor(td::ColorID id, unsigned char alpha) { setColor(td::Color(id), alpha); }

void Command::setColor(td::ColorID id, int alpha) { setColor(td::Color(id), alpha); }

void Command::setColor(td::ColorID id, float alpha) { setColor(td::Color(id), alpha); }

void Command::setColor(td::ColorID id, double alpha) { setColor(td::Color(id), alpha); }

void Command::setColor(td::Color color, int alpha)
{
    TD_ASSERT(alpha >= 0 && alpha <= 255);
    setColor(color, static_cast<unsigned char>(alpha));
}

void Command::setColor(td::Color color, float alpha)
{
    // Out of the integer's range the conversion is undefined: below it gives 0, above it the largest.
    const float scaled = alpha * 255.0f;
    unsigned int value = 0;
    if (scaled >= 4294967296.0f)
        value = UINT_MAX;
    else if (scaled > 0)
        value = static_cast<unsigned int>(scaled);
    setColor(color, static_cast<unsigned char>(value & 0xFF));
}

void Command::setColor(td::Color color, double alpha) { setColor(color, static_cast<float>(alpha)); }

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

} // namespace gui::gl
