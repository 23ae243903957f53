#include "GLWorld.h"

#include <gui/Color.h>

#include <glm/gtc/type_ptr.hpp>

#include <algorithm>
#include <cstdio>
#include <sstream>

// The commands of a GLWorld: what is recorded, and what it should draw.

namespace fuzz
{

namespace
{

using gui::gl::Command;
using gui::gl::CommandList;
using gui::gl::Primitive;
using gui::gl::Textures;
using Draw = test::StrictGL::Draw;
using SubType = Command::DrawSubType;
using Type = Command::Type;

// Any numbers, for what no colour or matrix gets.
constexpr int cColor3 = 0, cColor4 = 1, cMatrix = 2;

constexpr unsigned int cPoints = 0, cPatches = 0xE;

// GL's own number of each primitive.
constexpr unsigned int cModes[] = {cPoints, 1, 3, 2, 4, 6, 5, cPatches};

bool isIndexed(Type type)
{
    return type == Type::DrawElements || type == Type::DrawElementsInstanced || type == Type::DrawElementPoints ||
           type == Type::DrawElementPatches;
}

std::string textOf(const Draw& draw)
{
    std::ostringstream text;
    text << (draw.isIndexed ? "elements" : "arrays") << ", mode " << draw.mode << ", " << draw.first << " + "
         << draw.count << " x " << draw.nInstances << ", texture " << draw.texture << ", size " << draw.pointSize
         << ", patch " << draw.patchVertices;
    for (const auto& [location, values] : draw.uniforms)
    {
        text << ", uniform " << location << ":";
        for (const float value : values)
            text << " " << value;
    }
    return text.str();
}

} // namespace

CommandList& GLWorld::listOf(std::size_t i) { return i < 3 ? _buffers[i].object->getCommandList() : *_list; }

GLWorld::PlainList& GLWorld::plainListOf(std::size_t i) { return i < 3 ? _buffers[i].list : _plainList; }

void GLWorld::changeCommand(Input& input)
{
    const std::size_t i = input.below(4);
    CommandList& list = listOf(i);
    PlainList& plain = plainListOf(i);
    const unsigned int what = input.below(10);
    if (what < 5)
    {
        plain.pLast = list.get();
        plain.commands.emplace_back();
        create(plain.commands.back(), *plain.pLast, input);
    }
    else if (what == 5)
    {
        list.encode();
        for (PlainCommand& command : plain.commands)
            command.isEncoded |= command.type != Type::None && command.type != Type::UniformSetter;
    }
    else if (what == 6 && plain.pLast != nullptr)
        decorate(plain.commands.back(), *plain.pLast, input);
    else if (what == 7 && plain.pLast != nullptr)
    {
        PlainCommand& command = plain.commands.back();
        const bool canBe = command.type != Type::None && command.type != Type::UniformSetter;
        require(list.encode(plain.pLast) == canBe, "commands of a kind can be encoded");
        command.isEncoded = canBe;
        if (!canBe)
        {
            plain.commands.pop_back();
            plain.pLast = nullptr;
        }
    }
    else if (what == 8)
    {
        list.remove(nullptr);
        if (!plain.commands.empty())
            plain.commands.pop_back();
        plain.pLast = nullptr;
    }
    else if (what == 9)
    {
        plain = {};
        const unsigned int how = input.below(3);
        if (how == 0)
            list.reset();
        else if (how == 1)
            list.release();
        else
            list.reserve(input.below(5));
    }
}

void GLWorld::create(PlainCommand& plain, Command& command, Input& input)
{
    const auto first = input.take<std::uint16_t>(), count = input.take<std::uint16_t>();
    const unsigned int mode = input.below(8), kind = input.below(11), n = 1 + input.below(4);
    const auto primitive = static_cast<Primitive>(mode);
    Draw& draw = plain.draw;
    draw.mode = cModes[mode];
    draw.first = first;
    draw.count = count;
    plain.type = static_cast<Type>(kind);
    if (plain.type == Type::DrawArrays)
        command.createDrawArrays(primitive, first, count);
    else if (plain.type == Type::DrawElements)
        command.createDrawElements(primitive, first, count);
    else if (plain.type == Type::DrawArraysInstanced)
        command.createDrawArraysInstanced(primitive, first, count, draw.nInstances = n);
    else if (plain.type == Type::DrawElementsInstanced)
        command.createDrawElementsInstanced(primitive, first, count, draw.nInstances = n);
    else if (plain.type == Type::DrawArrayPoints || plain.type == Type::DrawElementPoints)
    {
        draw.mode = cPoints;
        draw.pointSize = static_cast<float>(n);
        plain.type == Type::DrawArrayPoints ? command.createDrawArrayPoints(first, count, draw.pointSize)
                                            : command.createDrawElementPoints(first, count, draw.pointSize);
    }
    else if (plain.type == Type::DrawArrayPatches || plain.type == Type::DrawElementPatches)
    {
        draw.mode = cPatches;
        draw.patchVertices = static_cast<int>(n);
        plain.type == Type::DrawArrayPatches ? command.createDrawArrayPatches(first, count, draw.patchVertices)
                                             : command.createDrawElementPatches(first, count, draw.patchVertices);
        if (count % n != 0)
            plain.type = Type::None;
    }
    else
        createMatrix(plain, command, input);
    draw.isIndexed = isIndexed(plain.type);
    draw.first *= draw.isIndexed ? 4 : 1;
    require(command.getType() == plain.type, "a command is what it was created");
    // A second one leaves the first.
    if (plain.type != Type::None)
        command.createDrawArrays(Primitive::Lines, 0, 0);
}

void GLWorld::createMatrix(PlainCommand& plain, Command& command, Input& input)
{
    Command::_additinalUniform uniforms[3];
    for (Command::_additinalUniform& uniform : uniforms)
    {
        uniform.type = static_cast<td::BYTE>(input.below(22));
        uniform.location = static_cast<td::BYTE>(100 + input.below(2)); // no other's
    }
    const auto n = static_cast<unsigned char>(input.below(4));
    if (plain.type == Type::MVPSetter)
    {
        glm::mat4& matrix = _matrices[input.below(2)];
        matrix = glm::mat4(static_cast<float>(input.below(5)));
        plain.pMatrix = &matrix;
        command.createMVPSetter(&matrix, uniforms, n);
    }
    else if (plain.type == Type::UniformSetter)
        command.createUniformSetter(uniforms, n);
}

void GLWorld::decorate(PlainCommand& plain, Command& command, Input& input)
{
    const auto color = static_cast<td::ColorID>(input.below(184));
    const auto alpha = input.take<td::BYTE>();
    const unsigned int what = input.below(5);
    const bool isPlain = plain.type == Type::DrawArrays || plain.type == Type::DrawElements;
    // A sub-type is chosen before encoding, and only once.
    const auto takes = [&](SubType subType)
    {
        const bool isFree = command.isDraw() && !plain.isEncoded && plain.subType == SubType::None;
        if (!isFree && (plain.subType != subType || plain.type == Type::None))
            return false;
        plain.subType = subType;
        return true;
    };
    if (what == 0)
    {
        command.setColor(color);
        if (takes(SubType::DrawWithClr3))
            (plain.color = gui::Color::toTDColor(color)).setAlpha(255);
    }
    else if (what == 1)
    {
        command.setColor(color, alpha);
        if ((isPlain || plain.subType == SubType::DrawWithClr4) && takes(SubType::DrawWithClr4))
            (plain.color = gui::Color::toTDColor(color)).setAlpha(alpha);
    }
    else if (what < 4)
    {
        const unsigned int unit = alpha % 33;
        command.setTexture(static_cast<Textures::Unit>(unit), static_cast<char>(what));
        if (unit < 32 && takes(SubType::DrawWithTexture))
        {
            plain.unit = unit;
            plain.index = what;
        }
    }
    else
    {
        command.setNumberOfInstances(alpha);
        if (isPlain && plain.subType != SubType::DrawWithClr4)
        {
            plain.type = plain.type == Type::DrawArrays ? Type::DrawArraysInstanced : Type::DrawElementsInstanced;
            // It takes effect with the next encoding, but the number is already there.
            plain.draw.nInstances = alpha;
            if (plain.isEncoded)
                require(command.encode(), "an instanced command can be encoded");
        }
    }
    require(command.getDrawSubType() == plain.subType && command.getType() == plain.type,
            "a command is what it became");
}

bool GLWorld::canDraw(const PlainList& list, const BufferSlot& buffer, const ProgramSlot& program) const
{
    if (_current == 0 || program.context != _current || !buffer.isCommitted || buffer.context != _current)
        return false;
    const auto textures = std::find_if(_textures.begin(), _textures.end(),
                                       [&](const TextureSlot& slot) { return &*slot.object == program.pTextures; });
    return std::all_of(list.commands.begin(), list.commands.end(),
                       [&](const PlainCommand& command)
                       {
                           if (command.draw.isIndexed && buffer.nIndicesInGL == 0)
                               return false;
                           return command.subType != SubType::DrawWithTexture || textures == _textures.end() ||
                                  (textures->context == _current && textures->object->size() > command.index);
                       });
}

void GLWorld::draw(Input& input)
{
    const std::size_t i = input.below(4);
    BufferSlot& buffer = _buffers[i < 3 ? i : input.below(3)];
    ProgramSlot& program = _programs[input.below(2)];
    const PlainList& plain = plainListOf(i);
    const bool isActivated = input.below(2) == 0;
    const std::size_t first = input.below(4) == 0 ? input.below(8) : 0;
    const std::size_t count = input.below(4) == 0 ? input.below(8) : SIZE_MAX;
    if (!canDraw(plain, buffer, program))
        return;
    if (isActivated || _pActive != &program)
    {
        program.object->activate();
        _pActive = &program;
        _lastColor = {};
    }
    buffer.object->activate();
    _gl.takeDraws();
    const std::vector<Draw> expected = expectedDraws(plain, program, first, count);
    first == 0 && count == SIZE_MAX ? listOf(i).execute() : listOf(i).execute(first, count);
    std::vector<Draw> draws = _gl.takeDraws();
    require(draws.size() == expected.size(), "each command draws once");
    for (std::size_t j = 0; j < draws.size(); ++j)
    {
        Draw& actual = draws[j];
        if (expected[j].texture == 0)
            actual.texture = 0;
        if (expected[j].mode == cPoints && expected[j].pointSize == 0)
            actual.pointSize = 0;
        if (expected[j].mode == cPatches && expected[j].patchVertices == 0)
            actual.patchVertices = 0;
        std::erase_if(actual.uniforms, [](const auto& uniform) { return uniform.first >= 100; });
        if (!(actual == expected[j]))
            std::fprintf(stderr, "drawn:    %s\nexpected: %s\n", textOf(actual).c_str(), textOf(expected[j]).c_str());
        require(actual == expected[j], "a command draws what it says, with its colour, texture and matrix");
    }
    buffer.object->deActivate();
}

std::vector<Draw> GLWorld::expectedDraws(const PlainList& list, ProgramSlot& program, std::size_t first,
                                         std::size_t count)
{
    std::vector<Draw> draws;
    const auto channels = [](td::Color c, std::size_t n)
    {
        std::vector<float> all{c.red() / 255.0f, c.green() / 255.0f, c.blue() / 255.0f, c.alpha() / 255.0f};
        all.resize(n);
        return all;
    };
    for (std::size_t i = first; i < list.commands.size() && i - first < count; ++i)
    {
        const PlainCommand& command = list.commands[i];
        if (!command.isEncoded || (command.subType == SubType::DrawWithTexture && program.pTextures == nullptr))
            continue;
        if (command.type == Type::MVPSetter)
        {
            const float* const pMatrix = glm::value_ptr(*command.pMatrix);
            program.uniforms[cMatrix].assign(pMatrix, pMatrix + 16);
            continue;
        }
        const bool hasColor = command.subType == SubType::DrawWithClr3 || command.subType == SubType::DrawWithClr4;
        if (hasColor && !(command.color == _lastColor))
        {
            const bool isOpaque = command.subType == SubType::DrawWithClr3;
            program.uniforms[isOpaque ? cColor3 : cColor4] = channels(command.color, isOpaque ? 3 : 4);
            _lastColor = command.color;
        }
        Draw draw = command.draw;
        draw.uniforms = program.uniforms;
        if (command.subType == SubType::DrawWithTexture &&
            program.pTextures->getType(static_cast<unsigned short>(command.index)) != gui::gl::Texture::Type::CubeMap)
            draw.texture = program.pTextures->getID(static_cast<unsigned short>(command.index));
        // Points and patches of the plain kinds have the size of those before.
        const bool isSized = command.type == Type::DrawArrayPoints || command.type == Type::DrawElementPoints ||
                             command.type == Type::DrawArrayPatches || command.type == Type::DrawElementPatches;
        if (!isSized && draw.mode == cPoints)
            draw.pointSize = 0;
        if (!isSized && draw.mode == cPatches)
            draw.patchVertices = 0;
        draws.push_back(std::move(draw));
    }
    return draws;
}

} // namespace fuzz
