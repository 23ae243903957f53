#include "FrameRecording.h"

#include "../context/GLNumber.h"
#include "Callers.h"
#include "StateCapture.h"

#include <gui/gl/Command.h>

#include <epoxy/gl.h>

#include <optional>
#include <utility>
#include <vector>

namespace gui::gl
{

namespace
{

CallWriter& part(std::array<CallWriter, 3>& parts, FrameFile::Part part)
{
    return parts[static_cast<std::size_t>(part)];
}

bool isPixelTarget(std::int64_t target) { return target == GL_PIXEL_PACK_BUFFER || target == GL_PIXEL_UNPACK_BUFFER; }

// What a call binds or changes where the target is its first argument.
bool hasBufferTarget(const GLCall& call)
{
    return call.slot == &glBindBuffer || call.slot == &glBufferData || call.slot == &glBufferSubData;
}

} // namespace

FrameRecording::FrameRecording(const ProgramTexts& texts)
    : _texts(texts)
    , _objects(texts, part(_parts, FrameFile::Part::Objects))
{
    CallWriter& state = part(_parts, FrameFile::Part::State);
    writeState(state, _objects);
    part(_parts, FrameFile::Part::Frame).store() = state.store();
}

// Reading back pixels changes no picture, and what a buffer has for it none of the frame's.
bool FrameRecording::isLeftOut(const GLCall& call, CallArguments arguments) const
{
    if (call.role == GLCall::Role::Draw && call.slot != &glBlitFramebuffer && _isDiscarded)
        return true;
    if (call.slot == &glCopyBufferSubData)
        return isPixelTarget(arguments[0].integer) || isPixelTarget(arguments[1].integer);
    // How GL writes pixels to memory.
    if (call.slot == &glPixelStorei)
        return !PixelStore().set(arguments[0].integer, arguments[1].integer);
    return hasBufferTarget(call) && isPixelTarget(arguments[0].integer);
}

void FrameRecording::needObjects(const GLCall& call, CallArguments arguments)
{
    for (std::size_t i = 0; i < arguments.size(); ++i)
    {
        const GLCall::Kind kind = GLCall::kindOf(call.signature[i]);
        if (kind == GLCall::Kind::None)
            continue;
        auto target = static_cast<GLenum>(i > 0 ? arguments[i - 1].integer : 0);
        if (target >= GL_TEXTURE_CUBE_MAP_POSITIVE_X && target <= GL_TEXTURE_CUBE_MAP_NEGATIVE_Z)
            target = GL_TEXTURE_CUBE_MAP;
        _objects.need(kind, static_cast<unsigned int>(arguments[i].integer), target);
    }
}

void FrameRecording::before(const GLCall& call, CallArguments arguments)
{
    using Role = GLCall::Role;
    CallWriter& frame = part(_parts, FrameFile::Part::Frame);
    if (call.slot == &glDeleteProgram)
    {
        const auto program = static_cast<unsigned int>(arguments[0].integer);
        if (_objects.deleted(GLCall::Kind::Program, program))
            frame.note("guiglDeleteProgram", {program});
        return;
    }
    if (call.slot == &glBeginConditionalRender)
    {
        GLuint result = 1;
        glGetQueryObjectuiv(static_cast<GLuint>(arguments[0].integer), GL_QUERY_RESULT, &result);
        _isDiscarded = result == 0;
    }
    else if (call.slot == &glEndConditionalRender)
        _isDiscarded = false;
    if (call.role == Role::Heard || call.role == Role::Generate || isLeftOut(call, arguments))
        return;
    if (call.role == Role::Delete)
        return writeDeleted(call, arguments);
    needObjects(call, arguments);
    if (call.role == Role::Draw)
        writeCallers();
    if ((call.slot == &glTexImage2D || call.slot == &glTexSubImage2D) &&
        glNumber(GL_PIXEL_UNPACK_BUFFER_BINDING) != 0 && writeFromBuffer(call, arguments))
        return;
    if (!frame.write(call, arguments))
        _objects.setMissing(std::string("a ") + call.name + " of that kind");
}

void FrameRecording::after(const GLCall& call, CallArguments arguments)
{
    if (call.slot == &glLinkProgram)
        writeProgram(static_cast<unsigned int>(arguments[0].integer));
    if (call.role != GLCall::Role::Generate)
        return;
    const auto* const names = static_cast<const GLuint*>(arguments[1].pointer);
    for (std::int64_t i = 0; i < arguments[0].integer; ++i)
        _objects.made(call.kind, names[i]);
    part(_parts, FrameFile::Part::Frame).write(call, arguments);
}

void FrameRecording::writeProgram(unsigned int program)
{
    ByteWriter text;
    if (!_texts.write(program, text))
        return;
    _objects.made(GLCall::Kind::Program, program);
    part(_parts, FrameFile::Part::Frame).note("guiglProgram", {program}, text.bytes());
}

void FrameRecording::writeDeleted(const GLCall& call, CallArguments arguments)
{
    const auto* const names = static_cast<const GLuint*>(arguments[1].pointer);
    for (std::int64_t i = 0; i < arguments[0].integer; ++i)
    {
        if (!_objects.deleted(call.kind, names[i]))
            continue;
        std::array<CallArgument, 2> one;
        one[0].integer = 1;
        one[1].pointer = &names[i];
        part(_parts, FrameFile::Part::Frame).write(call, one);
    }
}

// An image that GL takes from a buffer, as if it came from memory.
bool FrameRecording::writeFromBuffer(const GLCall& call, CallArguments arguments)
{
    CallWriter& frame = part(_parts, FrameFile::Part::Frame);
    const std::size_t last = arguments.size() - 1;
    const std::optional<std::uint64_t> nBytes = call.bytes(arguments, last, frame.store());
    GLint64 size = 0;
    glGetBufferParameteri64v(GL_PIXEL_UNPACK_BUFFER, GL_BUFFER_SIZE, &size);
    const auto offset = reinterpret_cast<std::uintptr_t>(arguments[last].pointer);
    if (!nBytes || offset > static_cast<std::uint64_t>(size) || *nBytes > static_cast<std::uint64_t>(size) - offset)
        return false;
    std::vector<unsigned char> pixels(*nBytes + 1);
    glGetBufferSubData(GL_PIXEL_UNPACK_BUFFER, static_cast<GLintptr>(offset), static_cast<GLsizeiptr>(*nBytes),
                       pixels.data());
    std::vector<CallArgument> changed(arguments.begin(), arguments.end());
    changed[last].pointer = pixels.data();
    return frame.write(call, changed);
}

void FrameRecording::writeCallers()
{
    std::string callers = callersText();
    if (callers == _callers)
        return;
    _callers = std::move(callers);
    part(_parts, FrameFile::Part::Frame).note("guiglCallers", {}, _callers);
}

void FrameRecording::onCommand(const Command* pCommand)
{
    const ListAtWork& list = CommandListener::s_list;
    if (list.pList == nullptr || pCommand < list.pFirst || pCommand >= list.pFirst + list.n)
        return;
    const auto number = _lists.try_emplace(list.pList, static_cast<std::uint32_t>(_lists.size() + 1)).first->second;
    part(_parts, FrameFile::Part::Frame)
        .note("guiglCommand",
              {number, static_cast<std::uint32_t>(pCommand - list.pFirst), static_cast<std::uint32_t>(list.n)});
}

std::size_t FrameRecording::nBytes() const
{
    std::size_t n = 0;
    for (const CallWriter& writer : _parts)
        n += writer.bytes().size();
    return n;
}

std::string FrameRecording::save(const std::string& path, const FrameFile::Info& info)
{
    if (info.framebuffer != 0)
        _objects.need(GLCall::Kind::Framebuffer, info.framebuffer);
    return FrameFile::write(path, info, {_parts[0].bytes(), _parts[1].bytes(), _parts[2].bytes()});
}

} // namespace gui::gl
