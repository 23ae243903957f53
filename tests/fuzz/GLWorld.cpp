#include "GLWorld.h"

#include <gui/Texture.h>
#include <gui/gl/CurrentContext.h>

#include <algorithm>
#include <cstdio>
#include <memory>

namespace fuzz
{

namespace
{

using gui::gl::Buffer;
using gui::gl::Command;
using gui::gl::CommandList;
using gui::gl::CurrentContext;
using gui::gl::DataType;
using gui::gl::Primitive;
using gui::gl::Textures;
using Kind = test::GLTrace::Kind;

constexpr char cTextureIndex = 2; // of textured commands

gui::Texture imageOf(int width, int height, unsigned short bytesPerPixel)
{
    gui::Texture image;
    image.reserve(static_cast<unsigned int>(width * height * bytesPerPixel));
    gui::TextureHelper(&image).updateInfo(width, height, bytesPerPixel);
    return image;
}

} // namespace

void GLWorld::ProgramObject::onLinked()
{
    _color3Location = getUniformLocation("color3");
    _color4Location = getUniformLocation("color4");
    _matrixLocation = getUniformLocation("mvp");
}

GLWorld::GLWorld()
{
    forEachSlot([](auto& slot) { slot.object.emplace(); });
    _list.emplace();
    makeCurrent(1);
}

void GLWorld::live(Input input)
{
    while (input.left() > 0)
    {
        doNext(input);
        check();
    }
    end();
}

void GLWorld::doNext(Input& input)
{
    switch (input.below(10))
    {
    case 0:
        return changeContext(input);
    case 1:
    case 2:
    case 3:
        return changeBuffer(input);
    case 4:
    case 5:
        return changeCommand(input);
    case 6:
        return changeProgram(input);
    case 7:
        return changeTextures(input);
    default:
        return draw(input);
    }
}

void GLWorld::check()
{
    for (const std::string& finding : _gl.takeFindings())
    {
        std::fprintf(stderr, "%s\n", finding.c_str());
        require(false, "every GL call is right");
    }
    for (const BufferSlot& slot : _buffers)
        require(slot.object->isCommitted() == slot.isCommitted, "a buffer's state");
    for (const ProgramSlot& slot : _programs)
        require(slot.object->isOK() == (slot.context != 0 && slot.context != cGone), "a program's state");
    for (std::size_t i = 0; i <= _buffers.size(); ++i)
        require(listOf(i).size() == plainListOf(i).n, "a list's commands");
}

// The objects go in any context or none; what they leave is deleted when its context is current again.
void GLWorld::end()
{
    _list.reset();
    forEachSlot([](auto& slot) { slot.object.reset(); });
    for (unsigned int context = 1; context <= cContexts; ++context)
        if (_isAlive[context])
            makeCurrent(context);
    require(_gl.takeFindings().empty(), "every GL call is right, at the end too");
    require(_gl.nAlive() == 0, "nothing is left");
    for (unsigned int context = 1; context <= cContexts; ++context)
        endContext(context);
}

void GLWorld::makeCurrent(unsigned int context)
{
    _current = context;
    _isAlive[context] = true;
    _gl.makeCurrent(context);
    CurrentContext::set(context == 0 ? nullptr : &_handles[context]);
}

void GLWorld::endContext(unsigned int context)
{
    if (context == _current)
        _current = 0;
    _isAlive[context] = false;
    CurrentContext::died(&_handles[context]);
    _gl.destroy(context);
    // Its names are of no use any more.
    for (BufferSlot& slot : _buffers)
        slot.isCommitted = slot.isCommitted && slot.context != context;
    forEachSlot(
        [context](auto& slot)
        {
            if (slot.context == context)
                slot.context = cGone;
        });
}

void GLWorld::changeContext(Input& input)
{
    const unsigned int what = input.below(8);
    if (what <= cContexts)
        makeCurrent(what);
    else if (what == 4)
        endContext(1 + input.below(cContexts));
    else if (what == 5 && _current != 0 && input.below(2) == 0)
        gui::gl::Program::useNone();
    else if (what == 5 && _current != 0)
        replaceContext(input);
    else
        _gl.refuseNth(1 + input.below(5));
}

// All that is in the current context is in another one afterwards, made for it.
void GLWorld::replaceContext(Input& input)
{
    _gl.refuseNth(0);
    const unsigned int old = _current, other = old % cContexts + 1;
    endContext(other);
    const CurrentContext::ID lost = CurrentContext::getID();
    if (input.below(2) == 0)
    {
        CurrentContext::retire();
        require(_gl.nAlive(old) == 0, "nothing stays in a context that was retired");
    }
    CurrentContext::died(&_handles[old]);
    _gl.destroy(old);
    _isAlive[old] = false;
    makeCurrent(other);
    CurrentContext::restoreFrom(lost);
    for (BufferSlot& slot : _buffers)
        if (slot.context == old && !slot.isCommitted)
            slot.context = 0;
    forEachSlot(
        [old, other](auto& slot)
        {
            if (slot.context == old)
                slot.context = other;
        });
}

void GLWorld::changeBuffer(Input& input)
{
    BufferSlot& slot = _buffers[input.below(3)];
    switch (input.below(8))
    {
    case 0:
        return initBuffer(slot, input);
    case 1:
        slot.isCommitted = false;
        slot.list = {};
        return slot.object->reset();
    case 2:
        slot.isCommitted = false;
        slot.list = {};
        slot.context = 0;
        return slot.object->release();
    case 3:
        std::destroy_at(&slot);
        std::construct_at(&slot)->object.emplace();
        return;
    case 4:
    case 5:
        return commit(slot);
    default:
        return appendTo(slot, input);
    }
}

void GLWorld::initBuffer(BufferSlot& slot, Input& input)
{
    Buffer& buffer = *slot.object;
    // The objects of a committed buffer would have another layout than the buffer.
    if (slot.isCommitted)
        return;
    const std::size_t nCommands = input.below(3), nIndices = input.below(3);
    bool isDone = false;
    switch (input.below(4))
    {
    case 0:
        isDone = buffer.init(nCommands, 4, nIndices, {DataType::Vec2});
        break;
    case 1:
        isDone = buffer.init(nCommands, 0, nIndices, {DataType::Vec3, DataType::Vec4});
        break;
    case 2:
        isDone = buffer.init(nCommands, 1, nIndices, 3, {DataType::Vec2}, {DataType::Vec4, DataType::Float}, {1, 2});
        break;
    default:
        return require(!buffer.init(1, 1, 1, {}), "no layout is refused");
    }
    require(isDone, "a layout is accepted");
    if (nCommands > 0)
        slot.list = {};
}

void GLWorld::appendTo(BufferSlot& slot, Input& input)
{
    Buffer& buffer = *slot.object;
    const std::vector<float> floats(8 * 7, 0.5f);
    const unsigned int indices[] = {0, 1, 2, 1, 0, 2, 0, 1};
    const unsigned int what = input.below(8), n = input.below(8);
    const bool holdsPoints = buffer.getVertexStride() == 2 * sizeof(float);
    if (what == 0)
        buffer.appendIndices(indices, n);
    else if (what == 1)
        buffer.appendIndex(n);
    else if (what == 2)
        buffer.appendVertices(floats.data(), n);
    else if (what == 3)
        buffer.appendVertexUnits(floats.data(), n);
    else if (what == 4)
        buffer.appendVertex({1, 2});
    else if (what == 5)
        buffer.appendInstances(floats.data(), n);
    else if (what == 6 && holdsPoints)
        buffer.insertVertex(n, {3, 4});
    else if (what == 7 && holdsPoints && n < buffer.getNoOfVertices())
        buffer.updateVertex(n, {5, 6});
}

void GLWorld::commit(BufferSlot& slot)
{
    const std::size_t nBefore = _gl.nAlive(_current, Kind::VertexArray);
    const bool isDone = slot.object->commit();
    require(isDone || !slot.object->isCommitted(), "a buffer that was not committed is not");
    if (_current == 0)
        return require(isDone == slot.isCommitted, "nothing is committed without a context");
    // A buffer that was reset may have deleted its vertex array and made another.
    slot.isCommitted = slot.object->isCommitted();
    if (_gl.nAlive(_current, Kind::VertexArray) > nBefore || (isDone && slot.context == 0))
        slot.context = _current;
    if (slot.isCommitted)
        slot.nIndicesInGL = slot.object->getNoOfIndices();
}

void GLWorld::changeProgram(Input& input)
{
    ProgramSlot& slot = _programs[input.below(2)];
    const unsigned int what = input.below(6);
    if (what < 3)
    {
        slot.object->release();
        const bool isLinked = what > 0 && slot.object->link("vertex", "fragment", what == 1 ? "geometry" : nullptr);
        slot.context = isLinked ? _current : 0;
        require(!isLinked || _current != 0, "nothing is linked without a context");
    }
    else if (what == 3)
    {
        std::destroy_at(&slot);
        std::construct_at(&slot)->object.emplace();
    }
    else
    {
        Textures* const pTextures = input.below(3) == 0 ? nullptr : &*_textures[input.below(2)].object;
        slot.object->setTextures(pTextures);
        slot.pTextures = pTextures;
    }
}

void GLWorld::changeTextures(Input& input)
{
    TextureSlot& slot = _textures[input.below(2)];
    const unsigned int what = input.below(6);
    if (what < 2)
        return append(slot, input);
    slot.context = 0;
    if (what == 2)
        return slot.object->release();
    if (what == 3)
        return slot.object->reserve(static_cast<unsigned short>(input.below(4)));
    for (ProgramSlot& program : _programs)
        if (program.pTextures == &*slot.object)
        {
            program.object->setTextures(nullptr);
            program.pTextures = nullptr;
        }
    slot.object.emplace();
}

void GLWorld::append(TextureSlot& slot, Input& input)
{
    static gui::Texture s_rgb = imageOf(2, 2, 3), s_rgba = imageOf(3, 1, 4), s_grey = imageOf(2, 2, 1), s_none;
    Textures& textures = *slot.object;
    const unsigned short before = textures.size();
    bool isDone = false;
    const unsigned int what = input.below(5);
    if (what == 0)
        isDone = textures.append({&s_rgb, &s_rgba, &s_rgb}, gui::gl::Texture::Type::Tex2D);
    else if (what == 1)
        isDone = textures.append({&s_rgba, &s_none}, gui::gl::Texture::Type::Tex2D);
    else if (what == 2)
        isDone = textures.append({&s_grey}, gui::gl::Texture::Type::Tex2D);
    else if (what == 3)
        isDone = textures.append({"/nowhere.png", nullptr}, gui::gl::Texture::Type::Tex2D);
    else
        isDone = textures.appendCubeMap(2, [](const glm::vec3& direction) { return direction; });
    const bool mayBe = _current != 0 && (before == 0 || slot.context == _current || slot.context == cGone);
    require(mayBe || (!isDone && textures.size() == before), "textures of one context make a set");
    if (mayBe && textures.size() > 0)
        slot.context = _current;
}

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
        ++plain.n;
        create(*plain.pLast, input);
    }
    else if (what == 5)
        list.encode();
    else if (what == 6 && plain.pLast != nullptr)
        decorate(*plain.pLast, input);
    else if (what == 8 || (what == 7 && plain.pLast != nullptr && !list.encode(plain.pLast)))
    {
        if (what == 8)
            list.remove(nullptr);
        plain.n -= plain.n > 0 ? 1 : 0;
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
    if (plain.pLast == nullptr)
        return;
    const Command::Type type = plain.pLast->getType();
    plain.isIndexed |= type == Command::Type::DrawElements || type == Command::Type::DrawElementsInstanced ||
                       type == Command::Type::DrawElementPoints || type == Command::Type::DrawElementPatches;
    plain.isTextured |= plain.pLast->getDrawSubType() == Command::DrawSubType::DrawWithTexture;
}

void GLWorld::create(Command& command, Input& input)
{
    const auto first = input.take<std::uint16_t>(), count = input.take<std::uint16_t>();
    const auto primitive = static_cast<Primitive>(input.below(8));
    const unsigned int kind = input.below(11), n = 1 + input.below(4);
    Command::_additinalUniform uniforms[3];
    for (Command::_additinalUniform& uniform : uniforms)
    {
        uniform.type = static_cast<td::BYTE>(input.below(22));
        uniform.location = static_cast<td::BYTE>(input.below(2));
    }
    const auto nUniforms = static_cast<unsigned char>(input.below(4));
    switch (static_cast<Command::Type>(kind))
    {
    case Command::Type::DrawArrays:
        return command.createDrawArrays(primitive, first, count);
    case Command::Type::DrawElements:
        return command.createDrawElements(primitive, first, count);
    case Command::Type::DrawArraysInstanced:
        return command.createDrawArraysInstanced(primitive, first, count, n);
    case Command::Type::DrawElementsInstanced:
        return command.createDrawElementsInstanced(primitive, first, count, n);
    case Command::Type::DrawArrayPoints:
        return command.createDrawArrayPoints(first, count, static_cast<float>(n));
    case Command::Type::DrawElementPoints:
        return command.createDrawElementPoints(first, count, static_cast<float>(n));
    case Command::Type::DrawArrayPatches:
        return command.createDrawArrayPatches(first, count, static_cast<int>(n));
    case Command::Type::DrawElementPatches:
        return command.createDrawElementPatches(first, count, static_cast<int>(n));
    case Command::Type::MVPSetter:
        return command.createMVPSetter(&_matrix, uniforms, nUniforms);
    default:
        command.createUniformSetter(uniforms, nUniforms);
    }
}

void GLWorld::decorate(Command& command, Input& input)
{
    const auto color = static_cast<td::ColorID>(input.below(184));
    const auto value = input.take<td::BYTE>();
    const unsigned int what = input.below(4);
    if (what == 0)
        command.setColor(color);
    else if (what == 1)
        command.setColor(color, value);
    else if (what == 2)
        command.setTexture(static_cast<Textures::Unit>(value % 33), cTextureIndex);
    else
        command.setNumberOfInstances(value);
}

bool GLWorld::canDraw(const PlainList& list, const BufferSlot& buffer, const ProgramSlot& program) const
{
    if (_current == 0 || program.context != _current || !buffer.isCommitted || buffer.context != _current)
        return false;
    if (list.isIndexed && buffer.nIndicesInGL == 0)
        return false;
    const auto textures = std::find_if(_textures.begin(), _textures.end(),
                                       [&](const TextureSlot& slot) { return &*slot.object == program.pTextures; });
    return !list.isTextured || textures == _textures.end() ||
           (textures->context == _current && textures->object->size() > cTextureIndex);
}

void GLWorld::draw(Input& input)
{
    const std::size_t i = input.below(4);
    BufferSlot& buffer = _buffers[i < 3 ? i : input.below(3)];
    ProgramSlot& program = _programs[input.below(2)];
    const std::size_t first = input.below(8), count = input.below(8);
    // What its context took with it is refused, and leaves the names alone that are others' now.
    const auto mayBeActivated = [this](unsigned int context) { return context == _current || context > cContexts; };
    if (_current == 0 || !mayBeActivated(program.context) || !mayBeActivated(buffer.context))
        return;
    program.object->activate();
    buffer.object->activate();
    if (!canDraw(plainListOf(i), buffer, program))
        return buffer.object->deActivate();
    count == 0 ? listOf(i).execute() : listOf(i).execute(first, count);
    buffer.object->deActivate();
}

} // namespace fuzz
