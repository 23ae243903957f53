#include "GLTrace.h"

#include "GLHooks.h"
#include "Lines.h"

#include <epoxy/gl.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <sstream>

namespace test
{

namespace
{

constexpr const char* cKindsOfNames[] = {"buffers", "vertex arrays", "textures", "shaders", "programs"};

std::string numberText(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}

std::string enumerationText(long long value)
{
    char text[32];
    std::snprintf(text, sizeof text, value < 0x100 ? "%lld" : "0x%llx", value);
    return text;
}

std::string pointerText(const void* pointer)
{
    // No object lies in the lowest pages: a small value is an offset.
    const auto value = reinterpret_cast<std::uintptr_t>(pointer);
    return value < 0x10000 ? std::to_string(value) : "ptr";
}

template <typename T>
std::string listText(const T* values, long long n)
{
    std::string text = "[";
    for (long long i = 0; i < n; ++i)
        text += (i == 0 ? "" : " ") + numberText(static_cast<double>(values[i]));
    return text + "]";
}

std::string argumentText(const GLEntry& entry, GLArguments arguments, std::size_t i)
{
    const GLArgument& argument = arguments[i];
    const char letter = entry.parameters[i];
    switch (letter)
    {
    case 'e':
        return enumerationText(argument.integer);
    case 'i':
        return std::to_string(argument.integer);
    case 'f':
        return numberText(argument.real);
    case 'p':
        return pointerText(argument.pointer);
    case 's':
        return std::string("\"") + argument.data<char>() + "\"";
    case 'n':
        return listText(argument.data<GLuint>(), arguments[i - 1].integer);
    default:
        break;
    }
    const long long n = (letter == 'm' ? 16 : letter - '0') * arguments[1].integer;
    return std::string_view(entry.function).ends_with("fv") ? listText(argument.data<float>(), n)
                                                            : listText(argument.data<GLint>(), n);
}

std::string callText(const GLEntry& entry, GLArguments arguments)
{
    std::string text = std::string(entry.function) + "(";
    for (std::size_t i = 0; i < arguments.size(); ++i)
        text += (i == 0 ? "" : ", ") + argumentText(entry, arguments, i);
    return text + ")";
}

std::vector<unsigned char> bytesOf(const void* data, std::size_t n)
{
    const auto* bytes = static_cast<const unsigned char*>(data);
    return data == nullptr ? std::vector<unsigned char>{} : std::vector<unsigned char>(bytes, bytes + n);
}

std::vector<unsigned char> pixelsOf(const void* data, int width, int height, GLenum format)
{
    if (width <= 0 || height <= 0)
        return {};
    const std::size_t bytesPerPixel = format == GL_RGBA ? 4 : format == GL_RGB ? 3 : format == GL_RG ? 2 : 1;
    const std::size_t row = static_cast<std::size_t>(width) * bytesPerPixel;
    const std::size_t paddedRow = (row + 3) / 4 * 4;
    return bytesOf(data, paddedRow * static_cast<std::size_t>(height - 1) + row);
}

/// Answers a query for an info log: its text, cut to the buffer, and its length.
void answerLog(const std::string& log, GLArguments arguments)
{
    const auto size = static_cast<std::size_t>(arguments[1].integer);
    const std::size_t n = size == 0 ? 0 : std::min(log.size(), size - 1);
    if (auto* length = arguments[2].result<GLsizei>())
        *length = static_cast<GLsizei>(n);
    if (size == 0)
        return;
    char* text = arguments[3].result<char>();
    std::memcpy(text, log.data(), n);
    text[n] = '\0';
}

/// Answers a query for a status or for the length of an info log; a null log means success.
void answerStatus(const std::string* pLog, GLArguments arguments)
{
    GLint& value = *arguments[2].result<GLint>();
    if (arguments[1].name() == GL_INFO_LOG_LENGTH)
        value = pLog == nullptr ? 0 : static_cast<GLint>(pLog->size() + 1);
    else
        value = pLog == nullptr ? GL_TRUE : GL_FALSE;
}

} // namespace

bool GLTrace::State::mustFail(const GLEntry& entry)
{
    const auto found = failures.find(entry.function);
    if (found == failures.end())
        return false;
    std::vector<unsigned int>& countdowns = found->second;
    for (unsigned int& countdown : countdowns)
        --countdown;
    return std::erase(countdowns, 0u) != 0;
}

bool GLTrace::State::answer(const GLEntry& entry, GLArguments arguments, long long& result)
{
    if (mustFail(entry))
    {
        if (entry.role == GLEntry::Role::Generate)
            std::fill_n(arguments[1].result<GLuint>(), arguments[0].integer, 0u);
        result = 0;
        return true;
    }
    if (mode == Forward)
        return false;
    const bool makesNames = entry.role == GLEntry::Role::Generate || entry.role == GLEntry::Role::Create;
    result = makesNames ? handOutNames(entry, arguments) : nullResult(entry.function, arguments);
    return true;
}

long long GLTrace::State::handOutNames(const GLEntry& entry, GLArguments arguments)
{
    unsigned int& last = lastNames[entry.kind];
    if (entry.role == GLEntry::Role::Create)
        return ++last;
    for (long long i = 0; i < arguments[0].integer; ++i)
        arguments[1].result<GLuint>()[i] = ++last;
    return 0;
}

long long GLTrace::State::nullResult(std::string_view function, GLArguments arguments)
{
    if (function == "glGetError" && !errors.empty())
    {
        const unsigned int error = errors.front();
        errors.erase(errors.begin());
        return error;
    }
    if (function == "glGetIntegerv")
    {
        const auto found = limits.find(arguments[0].name());
        *arguments[1].result<GLint>() = found == limits.end() ? 0 : found->second;
    }
    if (function == "glGetUniformLocation")
    {
        const auto found = uniformLocations.find(arguments[1].data<char>());
        return found == uniformLocations.end() ? -1 : found->second;
    }
    if (function == "glGetShaderiv" || function == "glGetShaderInfoLog")
    {
        const auto found = compileLogs.find(stages[arguments[0].name()]);
        if (function == "glGetShaderiv")
            answerStatus(found == compileLogs.end() ? nullptr : &found->second, arguments);
        else
            answerLog(found == compileLogs.end() ? "" : found->second, arguments);
    }
    if (function == "glGetProgramiv")
        answerStatus(linkLog ? &*linkLog : nullptr, arguments);
    if (function == "glGetProgramInfoLog")
        answerLog(linkLog.value_or(""), arguments);
    return 0;
}

void GLTrace::State::note(const GLEntry& entry, GLArguments arguments, long long result)
{
    calls.push_back(callText(entry, arguments));
    if (entry.role == GLEntry::Role::Create && entry.kind == Kind::Shader)
        stages[static_cast<GLuint>(result)] = arguments[0].name();
    if (const GLuint name = noteNames(entry, arguments, result); name != 0 && mode == Null)
        ADD_FAILURE() << entry.function << " of " << name << ", which is not alive";
    keepData(entry.function, arguments);
}

void GLTrace::State::keepData(std::string_view function, GLArguments arguments)
{
    if (function == "glShaderSource")
    {
        std::string text;
        for (long long i = 0; i < arguments[1].integer; ++i)
        {
            const char* piece = arguments[2].data<const char*>()[i];
            const auto* lengths = arguments[3].data<GLint>();
            text += lengths == nullptr || lengths[i] < 0 ? std::string(piece)
                                                         : std::string(piece, static_cast<std::size_t>(lengths[i]));
        }
        sources[arguments[0].name()] = text;
    }
    if (function == "glBufferData")
        bufferData[arguments[0].name()] = bytesOf(arguments[2].pointer, static_cast<std::size_t>(arguments[1].integer));
    if (function == "glTexImage2D")
        lastImage = pixelsOf(arguments[8].pointer, static_cast<int>(arguments[3].integer),
                             static_cast<int>(arguments[4].integer), arguments[6].name());
}

GLTrace::GLTrace(Mode mode)
    : _state(std::make_unique<State>())
{
    _state->mode = mode;
    _state->limits = {{GL_MAX_TEXTURE_IMAGE_UNITS, 16}, {GL_MAX_COMBINED_TEXTURE_IMAGE_UNITS, 80}};
    _state->startListening();
}

GLTrace::~GLTrace() { _state->stopListening(); }

const std::vector<std::string>& GLTrace::calls() const { return _state->calls; }

void GLTrace::clear() { _state->calls.clear(); }

std::size_t GLTrace::count(std::string_view function) const
{
    const std::string start = std::string(function) + "(";
    return static_cast<std::size_t>(std::count_if(calls().begin(), calls().end(),
                                                  [&](const std::string& call) { return call.starts_with(start); }));
}

testing::AssertionResult GLTrace::only(const std::vector<std::string>& expected)
{
    return areLines("GL calls", std::exchange(_state->calls, {}), expected);
}

testing::AssertionResult GLTrace::inOrder(const std::vector<std::string>& expected) const
{
    auto at = calls().begin();
    for (const std::string& call : expected)
    {
        at = std::find(at, calls().end(), call);
        if (at == calls().end())
            return testing::AssertionFailure()
                   << "not called, or not in this place: " << call << "\nGL calls:" << listed(calls());
        ++at;
    }
    return testing::AssertionSuccess();
}

void GLTrace::failNext(std::string_view function, unsigned int nth)
{
    _state->failures[std::string(function)].push_back(nth);
}

std::vector<unsigned int> GLTrace::aliveNames(Kind kind) const
{
    const std::set<unsigned int>& names = _state->alive[kind];
    return {names.begin(), names.end()};
}

testing::AssertionResult GLTrace::nothingAlive() const
{
    std::string text;
    for (const auto& [kind, names] : _state->alive)
    {
        for (const unsigned int name : names)
            text += std::string(" ") + std::to_string(name) + " of " + cKindsOfNames[static_cast<int>(kind)];
    }
    if (text.empty())
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "still alive:" << text;
}

void GLTrace::failCompilation(unsigned int stage, std::string infoLog)
{
    _state->compileLogs[stage] = std::move(infoLog);
}

void GLTrace::failLinking(std::string infoLog) { _state->linkLog = std::move(infoLog); }

void GLTrace::compileAndLinkAll()
{
    _state->compileLogs.clear();
    _state->linkLog.reset();
}

void GLTrace::setUniformLocation(const std::string& name, int location) { _state->uniformLocations[name] = location; }

void GLTrace::setLimit(unsigned int name, int value) { _state->limits[name] = value; }

void GLTrace::setErrors(std::vector<unsigned int> errors) { _state->errors = std::move(errors); }

const std::string& GLTrace::shaderSource(unsigned int shader) const { return _state->sources.at(shader); }

const std::vector<unsigned char>& GLTrace::lastBufferData(unsigned int target) const
{
    return _state->bufferData.at(target);
}

const std::vector<unsigned char>& GLTrace::lastImage() const { return _state->lastImage; }

} // namespace test
