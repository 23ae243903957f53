#include <gui/gl/Command.h>

#include "../context/StateOfES.h"
#include "ActiveBuffer.h"
#include "CommandCounter.h"
#include "CommandListener.h"
#include "CountedGL.h"
#include "OutlinedDraw.h"
#include "ProgHelper.h"
#include "UniformPacking.h"

#include <gui/gl/Program.h>
#include <td/Assert.h>
#include <td/Color.h>
#include <vo/Log.h>

#include <epoxy/gl.h>
#include <glm/vec3.hpp>
#include <glm/vec4.hpp>

#include <algorithm>
#include <array>
#include <cstddef>

// Encoding and executing. There is one function for each kind and sub-type together, so that executing decides nothing
// that was known when the command was encoded, and each goes on by itself while the next command of the list is its
// own: lists are mostly long runs of one kind. The primitive stays a number in the record: functions for each primitive
// too, eight times as many, made mixed lists slower, for the processor remembers only so many branches.

namespace gui::gl
{

namespace
{

// What was sent in one context is not there in another.
[[maybe_unused]] const bool s_isListening = (CurrentContext::onChange(
                                                 []
                                                 {
                                                     setCurrentProgram(nullptr);
                                                     s_activeBuffer = {};
                                                 }),
                                             true);

// By Primitive.
constexpr std::array<GLenum, 8> cModes{GL_POINTS,    GL_LINES,        GL_LINE_STRIP,     GL_LINE_LOOP,
                                       GL_TRIANGLES, GL_TRIANGLE_FAN, GL_TRIANGLE_STRIP, GL_PATCHES};

// Each value of a channel divided by 255.
constexpr std::array<float, 256> makeChannels()
{
    std::array<float, 256> channels{};
    for (std::size_t i = 0; i < channels.size(); ++i)
        channels[i] = static_cast<float>(i) / 255.0f;
    return channels;
}

constexpr std::array<float, 256> cChannelValues = makeChannels();

const void* indexOffset(unsigned int first)
{
    return reinterpret_cast<const void*>(static_cast<std::size_t>(first) << s_activeBuffer.indexShift);
}

bool sendColor3(td::Color color)
{
    TD_ASSERT(s_pCurrentProgram != nullptr, false);
    s_prevColor = color;
    ProgHelper::setColor3({cChannelValues[color.red()], cChannelValues[color.green()], cChannelValues[color.blue()]});
    return true;
}

bool sendColor4(td::Color color)
{
    TD_ASSERT(s_pCurrentProgram != nullptr, false);
    s_prevColor = color;
    ProgHelper::setColor4({cChannelValues[color.red()], cChannelValues[color.green()], cChannelValues[color.blue()],
                           cChannelValues[color.alpha()]});
    return true;
}

bool sendTexture(td::BYTE unit, td::BYTE index, unsigned short key)
{
    if (!ProgHelper::setTexture(static_cast<Textures::Unit>(unit), index))
        return false;
    s_prevTexture = key;
    return true;
}

} // namespace

// Programs that are not current get it when they are activated.
[[maybe_unused]] const bool s_sendsPointSize = (s_onPointSizeOfES = ProgHelper::setPointSize, true);

void setCurrentProgram(Program* pProgram)
{
    s_pCurrentProgram = pProgram;
    forgetTexture();
    s_prevColor = td::Color(0, 0, 0, 0);
}

struct Command::Functions
{
    using SubType = DrawSubType;
    using Draw = bool (*)(const Command*);
    // The functions for one kind, by sub-type.
    using Row = std::array<Function, 4>;

    static GLenum mode(const Command* c) { return cModes[c->_drawData._primitive]; }

    static bool drawArrays(const Command* c) { return drawArrays(c, mode(c)); }
    static bool drawArrays(const Command* c, GLenum mode)
    {
        glDrawArrays(mode, static_cast<GLint>(c->_drawData._first), static_cast<GLsizei>(c->_drawData._count));
        return true;
    }

    static bool drawElements(const Command* c) { return drawElements(c, mode(c)); }
    static bool drawElements(const Command* c, GLenum mode)
    {
        glDrawElements(mode, static_cast<GLsizei>(c->_drawData._count), s_activeBuffer.indexType,
                       indexOffset(c->_drawData._first));
        return true;
    }

    static bool drawArraysInstanced(const Command* c)
    {
        glDrawArraysInstanced(mode(c), static_cast<GLint>(c->_drawData._first),
                              static_cast<GLsizei>(c->_drawData._count),
                              static_cast<GLsizei>(c->_drawData._nInstances));
        return true;
    }
    static bool drawElementsInstanced(const Command* c)
    {
        glDrawElementsInstanced(mode(c), static_cast<GLsizei>(c->_drawData._count), s_activeBuffer.indexType,
                                indexOffset(c->_drawData._first), static_cast<GLsizei>(c->_drawData._nInstances));
        return true;
    }

    static bool drawArraysPointsWithSize(const Command* c)
    {
        setPointSize(c->_drawData._pointSize);
        return drawArrays(c, GL_POINTS);
    }
    static bool drawElementPointsWithSize(const Command* c)
    {
        setPointSize(c->_drawData._pointSize);
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

    static bool drawAll(const Command* c)
    {
        const ActiveBuffer& buffer = s_activeBuffer;
        const bool isIndexed = buffer.isIndexed != 0;
        const unsigned int nAll = isIndexed ? buffer.nIndices : buffer.nVertices, first = c->_drawData._first;
        if (first >= nAll || buffer.nInstances == 0)
            return true;
        const bool isInstanced = buffer.nInstances != ActiveBuffer::cNotInstanced;
        const auto n = static_cast<GLsizei>(nAll - first), nInstances = static_cast<GLsizei>(buffer.nInstances);
        const auto begin = static_cast<GLint>(first);
        if (isIndexed && isInstanced)
            glDrawElementsInstanced(mode(c), n, buffer.indexType, indexOffset(first), nInstances);
        else if (isIndexed)
            glDrawElements(mode(c), n, buffer.indexType, indexOffset(first));
        else if (isInstanced)
            glDrawArraysInstanced(mode(c), begin, n, nInstances);
        else
            glDrawArrays(mode(c), begin, n);
        return true;
    }

    // The same in the sides or corners of triangles, for OpenGL ES.
    template <Draw draw>
    static bool outline(const Command* c)
    {
        if (!isOfTriangles(mode(c)))
            return draw(c);
        constexpr Draw cElements = drawElements; // of two of the name
        const ActiveBuffer& buffer = s_activeBuffer;
        TriangleDraw triangles{mode(c), 0, static_cast<GLsizei>(c->_drawData._count)};
        triangles.indexType = buffer.indexType;
        triangles.isIndexed =
            draw == cElements || draw == &drawElementsInstanced || (draw == &drawAll && buffer.isIndexed != 0);
        if (draw == &drawArraysInstanced || draw == &drawElementsInstanced)
        {
            triangles.nInstances = static_cast<GLsizei>(c->_drawData._nInstances);
            if (triangles.nInstances == 0)
                return draw(c);
        }
        if (draw == &drawAll)
        {
            const unsigned int nAll = triangles.isIndexed ? buffer.nIndices : buffer.nVertices;
            if (c->_drawData._first >= nAll || buffer.nInstances == 0)
                return true;
            triangles.count = static_cast<GLsizei>(nAll - c->_drawData._first);
            if (buffer.nInstances != ActiveBuffer::cNotInstanced)
                triangles.nInstances = static_cast<GLsizei>(buffer.nInstances);
        }
        if (triangles.isIndexed)
            triangles.offset = indexOffset(c->_drawData._first);
        else
            triangles.first = static_cast<GLint>(c->_drawData._first);
        return drawOutlined(triangles);
    }

    static bool s_setUniformMatrix(const Command* c)
    {
        TD_ASSERT(s_pCurrentProgram != nullptr, false);
        ProgHelper::setMVP(*c->_mvpData._pMatrix);
        return sendUniforms(*s_pCurrentProgram, c->_mvpData._uniforms, c->_mvpData._uniforms + cMVPUniformBytes);
    }

    // Sends the colour or the texture of a command, unless it is the one that was sent last.
    template <SubType subType>
    static bool send(const Command* c)
    {
        const td::BYTE* const v = c->_drawData._values;
        if constexpr (subType == SubType::DrawWithClr3)
        {
            // The primitive lies before red: the four bytes are one word, and an opaque colour what is left of it.
            const td::Color color(td::GLRGBA(c->_drawData._primitive, v[0], v[1], v[2]) >> 8 |
                                  td::Color(0, 0, 0, 255).rgba());
            return color == s_prevColor || sendColor3(color);
        }
        else if constexpr (subType == SubType::DrawWithClr4)
        {
            const td::Color color(c->_drawData._rgba);
            return color == s_prevColor || sendColor4(color);
        }
        else if constexpr (subType == SubType::DrawWithTexture)
        {
            const auto key = static_cast<unsigned short>(v[0] * 256 + v[1]);
            return key == s_prevTexture || sendTexture(v[0], v[1], key);
        }
        else
            return true;
    }

    template <Draw draw, SubType subType>
    static Progress run(const Command* p, const Command* pEnd)
    {
        const Function fn = p->_fn;
        bool isDone = true;
        const auto goesOn = [&]
        {
            isDone = send<subType>(p) && draw(p);
            ++p;
            if (!isDone || p == pEnd || p->_fn != fn) [[unlikely]]
                return false;
            return true;
        };
        // A draw alone takes no longer than to jump back: several in a row are a tenth faster.
        if constexpr (subType == SubType::None)
            while (goesOn() && goesOn() && goesOn() && goesOn())
            {
            }
        else
            while (goesOn())
            {
            }
        return {p, isDone};
    }

    template <Draw draw>
    static constexpr Row cRow{run<draw, SubType::None>, run<draw, SubType::DrawWithClr3>,
                              run<draw, SubType::DrawWithClr4>, run<draw, SubType::DrawWithTexture>};

    static constexpr std::array cRows{cRow<drawArrays>,
                                      cRow<drawElements>,
                                      cRow<drawArraysInstanced>,
                                      cRow<drawElementsInstanced>,
                                      cRow<drawArraysPointsWithSize>,
                                      cRow<drawElementPointsWithSize>,
                                      cRow<drawArraysPatchesWithSize>,
                                      cRow<drawElementPatchesWithSize>,
                                      cRow<s_setUniformMatrix>,
                                      cRow<drawAll>};

    // Of triangles as sides or corners, in the same order.
    static constexpr std::array cOutlinedRows{cRow<outline<drawArrays>>,          cRow<outline<drawElements>>,
                                              cRow<outline<drawArraysInstanced>>, cRow<outline<drawElementsInstanced>>,
                                              cRow<drawArraysPointsWithSize>,     cRow<drawElementPointsWithSize>,
                                              cRow<drawArraysPatchesWithSize>,    cRow<drawElementPatchesWithSize>,
                                              cRow<s_setUniformMatrix>,           cRow<outline<drawAll>>};
    static Function outlined(Function fn)
    {
        for (std::size_t i = 0; i < cRows.size(); ++i)
            if (const auto it = std::ranges::find(cRows[i], fn); it != cRows[i].end())
                return cOutlinedRows[i][static_cast<std::size_t>(it - cRows[i].begin())];
        return fn;
    }

    // A primitive that is none cannot be encoded.
    static const Row* encodeDrawArrays(td::BYTE primitive)
    {
        if (primitive >= cModes.size())
            TD_ASSERT(false, nullptr);
        return &cRow<drawArrays>;
    }
    static const Row* encodeDrawElements(td::BYTE primitive)
    {
        if (primitive >= cModes.size())
            TD_ASSERT(false, nullptr);
        return &cRow<drawElements>;
    }
    static const Row* encodeDrawArraysInstanced(td::BYTE primitive)
    {
        if (primitive >= cModes.size())
            TD_ASSERT(false, nullptr);
        return &cRow<drawArraysInstanced>;
    }
    static const Row* encodeDrawElementsInstanced(td::BYTE primitive)
    {
        if (primitive >= cModes.size())
            TD_ASSERT(false, nullptr);
        return &cRow<drawElementsInstanced>;
    }

    static const Row* encodeDrawAll(td::BYTE primitive)
    {
        if (primitive >= cModes.size())
            TD_ASSERT(false, nullptr);
        return &cRow<drawAll>;
    }

    static Function choose(const Row& row, const Command& command)
    {
        if (command.isDraw())
            switch (command.getDrawSubType())
            {
            case SubType::DrawWithClr3:
                return row[1];
            case SubType::DrawWithClr4:
                return row[2];
            case SubType::DrawWithTexture:
                return row[3];
            case SubType::None:
            default:
                break;
            }
        return row[0];
    }
};

bool Command::encode()
{
    const Functions::Row* pRow = nullptr;
    switch (getType())
    {
    case Type::DrawArrays:
        pRow = Functions::encodeDrawArrays(_drawData._primitive);
        break;
    case Type::DrawElements:
        pRow = Functions::encodeDrawElements(_drawData._primitive);
        break;
    case Type::DrawArraysInstanced:
        pRow = Functions::encodeDrawArraysInstanced(_drawData._primitive);
        break;
    case Type::DrawElementsInstanced:
        pRow = Functions::encodeDrawElementsInstanced(_drawData._primitive);
        break;
    case Type::DrawArrayPoints:
        pRow = &Functions::cRow<Functions::drawArraysPointsWithSize>;
        break;
    case Type::DrawElementPoints:
        pRow = &Functions::cRow<Functions::drawElementPointsWithSize>;
        break;
    case Type::DrawArrayPatches:
        pRow = &Functions::cRow<Functions::drawArraysPatchesWithSize>;
        break;
    case Type::DrawElementPatches:
        pRow = &Functions::cRow<Functions::drawElementPatchesWithSize>;
        break;
    case Type::DrawAll:
        pRow = Functions::encodeDrawAll(_drawData._primitive);
        break;
    case Type::MVPSetter:
        pRow = &Functions::cRow<Functions::s_setUniformMatrix>;
        break;
    case Type::None:
    case Type::UniformSetter:
    default:
        TD_ASSERT(false, false);
    }
    if (pRow == nullptr)
        return false;
    _fn = Functions::choose(*pRow, *this);
    return true;
}

// What is drawn stays as it was encoded, even when the type is another by now.
void Command::chooseForSubType()
{
    for (const Functions::Row& row : Functions::cRows)
        if (std::ranges::find(row, _fn) != row.end())
        {
            _fn = Functions::choose(row, *this);
            return;
        }
}

// What OpenGL ES has no state for is asked for once a list, not for each draw.
Command::Progress Command::executeAlone() const
{
    const Function fn = s_trianglesAs != 0 ? Functions::outlined(_fn) : _fn;
    return fn(this, this + 1);
}

// Executes one command for somebody who counts.
Command::Progress Command::executeCounted() const
{
    CommandCounter& counter = *CommandCounter::s_pCurrent;
    const unsigned int nBefore = CountedGL::counts().nStates;
    const Progress progress = executeAlone();
    const Type type = getType();
    ++counter.nCommands[std::min<std::size_t>(_type, counter.nCommands.size() - 1)];
    // Points and patches set their size each time.
    const bool hasSize = type >= Type::DrawArrayPoints && type <= Type::DrawElementPatches;
    const unsigned int nSent = CountedGL::counts().nStates - nBefore - (hasSize ? 1 : 0);
    if (progress.isDone && isDraw() && getDrawSubType() != DrawSubType::None && nSent == 0)
        ++counter.nSaved;
    return progress;
}

bool Command::execute() const
{
    if (_fn == nullptr)
    {
        vo::dbgLog("Error! Command not encoded!");
        TD_ASSERT(false, false);
    }
    if (CommandListener::s_pCurrent != nullptr) [[unlikely]]
        CommandListener::s_pCurrent->onCommand(this);
    if (CommandCounter::s_pCurrent != nullptr) [[unlikely]]
        return executeCounted().isDone;
    return executeAlone().isDone;
}

void Command::execute(const Command* p, const Command* pEnd)
{
    const bool isWatched =
        CommandCounter::s_pCurrent != nullptr || CommandListener::s_pCurrent != nullptr || s_trianglesAs != 0;
    while (p != pEnd)
    {
        if (p->_fn == nullptr || isWatched) [[unlikely]]
            p++->execute();
        else
            p = p->_fn(p, pEnd).pNext;
    }
}

} // namespace gui::gl
