#include "GLTrace.h"

#include "Lines.h"

#include <epoxy/gl.h>

#include <cstdint>
#include <cstring>

namespace test
{

namespace
{

constexpr const char* cKindNames[] = {"buffer", "vertex array", "texture", "shader", "program"};
constexpr std::string_view cKindLetters = "BATSP";

constexpr std::string_view cNeedMemory[] = {"glBufferData", "glGenerateMipmap", "glReadPixels", "glTexImage2D",
                                            "glTexSubImage2D"};

std::string nameText(GLKind kind, unsigned int name)
{
    return std::string(cKindNames[static_cast<int>(kind)]) + " " + std::to_string(name);
}

bool isDraw(std::string_view function) { return function.starts_with("glDraw"); }

bool compilesOrLinks(std::string_view function) { return function == "glCompileShader" || function == "glLinkProgram"; }

/// The names of a call that generates or deletes some, also of those that take just one.
std::span<const GLuint> namesOf(GLArguments arguments, const GLuint& single)
{
    if (arguments.size() == 1)
        return {&single, 1};
    return {arguments[1].data<GLuint>(), static_cast<std::size_t>(arguments[0].integer)};
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

} // namespace

GLTrace::GLTrace(Mode mode)
    : _mode(mode)
    , _isRecording(mode != Strict)
    , _limits{{GL_MAX_TEXTURE_IMAGE_UNITS, 16}, {GL_MAX_COMBINED_TEXTURE_IMAGE_UNITS, 80}}
{
    makeCurrent(mode == Strict ? 0 : 1);
    startListening();
}

std::size_t GLTrace::count(std::string_view function) const
{
    const std::string start = std::string(function) + "(";
    return static_cast<std::size_t>(std::count_if(calls().begin(), calls().end(),
                                                  [&](const std::string& call) { return call.starts_with(start); }));
}

testing::AssertionResult GLTrace::only(const std::vector<std::string>& expected)
{
    return areLines("GL calls", std::exchange(_calls, {}), expected);
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

void GLTrace::failNext(std::string_view function, unsigned int nth) { _failures[std::string(function)].push_back(nth); }

void GLTrace::refuseNth(unsigned int n)
{
    _refuseAt = n;
    _nRefusable = 0;
    _refused.clear();
    _errors.clear();
}

std::vector<unsigned int> GLTrace::aliveNames(Kind kind) const
{
    const auto found = _pState->alive.find(kind);
    return found == _pState->alive.end() ? std::vector<unsigned int>{}
                                         : std::vector<unsigned int>(found->second.begin(), found->second.end());
}

testing::AssertionResult GLTrace::nothingAlive() const
{
    testing::AssertionResult result = testing::AssertionFailure() << "still alive:";
    for (const auto& [kind, names] : _pState->alive)
        for (const unsigned int name : names)
            result << " " << nameText(kind, name);
    return nAlive() == 0 ? testing::AssertionSuccess() : result;
}

std::size_t GLTrace::nAlive() const
{
    std::size_t n = 0;
    for (const auto& [context, state] : _contexts)
        n += nAlive(context);
    return n;
}

std::size_t GLTrace::nAlive(Context context) const
{
    std::size_t n = 0;
    for (const Kind kind : {Kind::Buffer, Kind::VertexArray, Kind::Texture, Kind::Shader, Kind::Program})
        n += nAlive(context, kind);
    return n;
}

std::size_t GLTrace::nAlive(Context context, Kind kind) const
{
    const auto found = _contexts.find(context);
    return found == _contexts.end() || !found->second.alive.contains(kind) ? 0 : found->second.alive.at(kind).size();
}

void GLTrace::makeCurrent(Context context)
{
    _current = context;
    _pState = context == 0 ? nullptr : &_contexts[context];
}

void GLTrace::destroy(Context context)
{
    if (context == _current)
        makeCurrent(0);
    _contexts.erase(context);
}

bool GLTrace::answer(const GLEntry& entry, GLArguments arguments, long long& result)
{
    result = 0;
    if (_pState == nullptr)
    {
        found(entry, "no context is current");
        return true;
    }
    if (isRefused(entry))
    {
        refuse(entry, arguments);
        return true;
    }
    if (answerForRefused(entry.function, arguments, result))
        return true;
    if (_mode == Forward)
        return false;
    if (_mode == Strict && entry.role == GLEntry::Role::Plain)
        check(entry, arguments);
    result = entry.makesNames() ? handOutNames(entry, arguments) : answerNull(entry.function, arguments);
    return true;
}

void GLTrace::note(const GLEntry& entry, GLArguments arguments, long long result)
{
    if (_isRecording)
        _calls.push_back(textOf(entry, arguments));
    if (_pState == nullptr)
        return;
    noteNames(entry, arguments, result);
    if (_mode == Strict)
        bind(entry.function, arguments);
    else if (_isRecording)
        keepData(entry.function, arguments);
}

bool GLTrace::isRefused(const GLEntry& entry)
{
    const bool needsMemory = std::ranges::find(cNeedMemory, std::string_view(entry.function)) != std::end(cNeedMemory);
    const bool isRefusable = entry.makesNames() || compilesOrLinks(entry.function) || needsMemory;
    if (isRefusable && ++_nRefusable == _refuseAt)
    {
        _refused = entry.function;
        return true;
    }
    const auto found = _failures.find(entry.function);
    if (found == _failures.end())
        return false;
    for (unsigned int& countdown : found->second)
        --countdown;
    return std::erase(found->second, 0u) != 0;
}

void GLTrace::refuse(const GLEntry& entry, GLArguments arguments)
{
    if (entry.role == GLEntry::Role::Generate)
        std::fill_n(arguments[1].result<GLuint>(), arguments[0].integer, 0U);
    else if (compilesOrLinks(entry.function)) // which the driver will not call compiled or linked
        _badNames[{std::string_view(entry.function) == "glLinkProgram" ? Kind::Program : Kind::Shader,
                   arguments[0].name()}] = "refused";
    else if (!entry.makesNames())
        _errors.push_back(GL_OUT_OF_MEMORY);
}

/// Queries for what was refused; the answers of a driver that refused nothing are others.
bool GLTrace::answerForRefused(std::string_view function, GLArguments arguments, long long& result)
{
    if (function == "glGetError" && !_errors.empty())
    {
        result = _errors.front();
        _errors.erase(_errors.begin());
        return true;
    }
    const bool isShader = function.starts_with("glGetShader");
    if (!isShader && !function.starts_with("glGetProgram"))
        return false;
    const auto bad = _badNames.find({isShader ? Kind::Shader : Kind::Program, arguments[0].name()});
    if (bad == _badNames.end())
        return false;
    const std::string& log = bad->second;
    if (arguments.size() == 4)
        answerLog(log, arguments);
    else if (arguments[1].name() == GL_INFO_LOG_LENGTH)
        *arguments[2].result<GLint>() = static_cast<GLint>(log.size() + 1);
    else
        *arguments[2].result<GLint>() = GL_FALSE;
    return true;
}

long long GLTrace::handOutNames(const GLEntry& entry, GLArguments arguments)
{
    unsigned int& last = _lastNames[_mode == Strict ? Kind::Buffer : entry.kind];
    if (entry.role == GLEntry::Role::Create)
        return ++last;
    for (long long i = 0; i < arguments[0].integer; ++i)
        arguments[1].result<GLuint>()[i] = ++last;
    return 0;
}

long long GLTrace::answerNull(std::string_view function, GLArguments arguments)
{
    if (function == "glGetIntegerv")
    {
        const auto limit = _limits.find(arguments[0].name());
        *arguments[1].result<GLint>() = limit == _limits.end() ? 0 : limit->second;
    }
    if (function == "glGetUniformLocation")
    {
        const std::string name = arguments[1].data<char>();
        const auto next = static_cast<int>(_uniformLocations.size());
        const auto location =
            _mode == Strict ? _uniformLocations.emplace(name, next).first : _uniformLocations.find(name);
        return location == _uniformLocations.end() ? -1 : location->second;
    }
    if (function == "glGetShaderiv" || function == "glGetProgramiv")
        *arguments[2].result<GLint>() = arguments[1].name() == GL_INFO_LOG_LENGTH ? 0 : GL_TRUE;
    if (!compilesOrLinks(function))
        return 0;
    const bool isLinking = function == "glLinkProgram";
    if (const auto bad = _badStages.find(isLinking ? cLinking : _stages[arguments[0].name()]); bad != _badStages.end())
        _badNames[{isLinking ? Kind::Program : Kind::Shader, arguments[0].name()}] = bad->second;
    return 0;
}

void GLTrace::noteNames(const GLEntry& entry, GLArguments arguments, long long result)
{
    std::set<unsigned int>& names = _pState->alive[entry.kind];
    if (entry.role == GLEntry::Role::Create && result != 0)
        names.insert(static_cast<GLuint>(result));
    if (entry.role == GLEntry::Role::Create && entry.kind == Kind::Shader)
        _stages[static_cast<GLuint>(result)] = arguments[0].name();
    if (entry.role != GLEntry::Role::Generate && entry.role != GLEntry::Role::Delete)
        return;
    const GLuint single = arguments[0].name();
    for (const GLuint name : namesOf(arguments, single))
    {
        if (name != 0 && entry.role == GLEntry::Role::Generate)
            names.insert(name);
        if (entry.role != GLEntry::Role::Delete)
            continue;
        if (_mode != Forward)
            checkName(entry, entry.kind, name);
        forget(entry.kind, name);
    }
}

void GLTrace::keepData(std::string_view function, GLArguments arguments)
{
    if (function == "glBufferData")
        _bufferData[arguments[0].name()] =
            bytesOf(arguments[2].pointer, static_cast<std::size_t>(arguments[1].integer));
    if (function == "glTexImage2D")
        _lastImage = pixelsOf(arguments[8].pointer, static_cast<int>(arguments[3].integer),
                              static_cast<int>(arguments[4].integer), arguments[6].name());
}

void GLTrace::found(const GLEntry& entry, const std::string& what)
{
    if (_mode == Strict)
        _findings.push_back(std::string(entry.function) + ": " + what);
    else
        ADD_FAILURE() << entry.function << ": " << what;
}

void GLTrace::checkName(const GLEntry& entry, Kind kind, unsigned int name)
{
    if (name == 0 || _pState->alive[kind].contains(name))
        return;
    bool isElsewhere = false;
    for (auto& [context, state] : _contexts)
        isElsewhere |= state.alive[kind].contains(name);
    found(entry, nameText(kind, name) + (isElsewhere ? " belongs to another context" : " is not alive"));
}

// What GL unbinds when a name is deleted.
void GLTrace::forget(Kind kind, unsigned int name)
{
    State& state = *_pState;
    state.alive[kind].erase(name);
    _badNames.erase({kind, name});
    if (kind == Kind::VertexArray)
    {
        state.vertexArrays.erase(name);
        if (state.vertexArray == name)
            state.vertexArray = 0;
    }
    if (kind == Kind::Buffer && state.arrayBuffer == name)
        state.arrayBuffer = 0;
    if (kind == Kind::Buffer && state.vertexArray != 0 && state.vertexArrays[state.vertexArray].elementBuffer == name)
        state.vertexArrays[state.vertexArray].elementBuffer = 0;
    if (kind == Kind::Texture)
        std::erase_if(state.textures, [name](const auto& bound) { return bound.second == name; });
}

unsigned int GLTrace::boundTexture(unsigned int target)
{
    const bool isFace = target >= GL_TEXTURE_CUBE_MAP_POSITIVE_X && target <= GL_TEXTURE_CUBE_MAP_NEGATIVE_Z;
    const auto found = _pState->textures.find({_pState->activeUnit, isFace ? GL_TEXTURE_CUBE_MAP : target});
    return found == _pState->textures.end() ? 0 : found->second;
}

void GLTrace::check(const GLEntry& entry, GLArguments arguments)
{
    const std::string_view function = entry.function;
    State& state = *_pState;
    for (std::size_t i = 0; i < arguments.size(); ++i)
        if (const std::size_t kind = cKindLetters.find(entry.parameters[i]); kind != std::string_view::npos)
            checkName(entry, static_cast<Kind>(kind), arguments[i].name());
    const bool isOfVertexArray = function.find("VertexAttrib") != std::string_view::npos;
    const bool isOfElements =
        (function == "glBufferData" || function == "glBindBuffer") && arguments[0].name() == GL_ELEMENT_ARRAY_BUFFER;
    if ((isOfVertexArray || isOfElements || isDraw(function)) && state.vertexArray == 0)
        return found(entry, "no vertex array is bound");
    if ((function == "glBufferData" || function == "glVertexAttribPointer") &&
        (isOfElements ? state.vertexArrays[state.vertexArray].elementBuffer : state.arrayBuffer) == 0)
        found(entry, "no buffer is bound");
    if ((function.starts_with("glTex") || function == "glGenerateMipmap") && boundTexture(arguments[0].name()) == 0)
        found(entry, "no texture is bound");
    if (function == "glUseProgram" && arguments[0].name() != 0 && !state.linked.contains(arguments[0].name()))
        found(entry, "the program is not linked");
    if ((function.starts_with("glUniform") || isDraw(function)) && state.program == 0)
        found(entry, "no program is in use");
    if (isDraw(function))
        checkDraw(entry, arguments);
}

void GLTrace::checkDraw(const GLEntry& entry, GLArguments arguments)
{
    checkName(entry, Kind::Program, _pState->program);
    VertexArray& vertexArray = _pState->vertexArrays[_pState->vertexArray];
    for (const unsigned int location : vertexArray.enabled)
        checkName(entry, Kind::Buffer, vertexArray.attributeBuffers[location]);
    checkName(entry, Kind::Buffer, vertexArray.elementBuffer);
    if (std::string_view(entry.function).starts_with("glDrawElements") && vertexArray.elementBuffer == 0)
        found(entry, "no buffer of indices is bound");
    for (const GLArgument& argument : arguments.subspan(0, 3))
        if (argument.integer < 0)
            found(entry, "a negative number");
}

void GLTrace::bind(std::string_view function, GLArguments arguments)
{
    State& state = *_pState;
    const auto name = [&](std::size_t i) { return arguments[i].name(); };
    if (function == "glBindVertexArray")
        state.vertexArray = name(0);
    if (function == "glBindBuffer" && name(0) == GL_ARRAY_BUFFER)
        state.arrayBuffer = name(1);
    if (function == "glBindBuffer" && name(0) == GL_ELEMENT_ARRAY_BUFFER && state.vertexArray != 0)
        state.vertexArrays[state.vertexArray].elementBuffer = name(1);
    if (function == "glEnableVertexAttribArray")
        state.vertexArrays[state.vertexArray].enabled.insert(name(0));
    if (function == "glVertexAttribPointer")
        state.vertexArrays[state.vertexArray].attributeBuffers[name(0)] = state.arrayBuffer;
    if (function == "glActiveTexture")
        state.activeUnit = name(0);
    if (function == "glBindTexture")
        state.textures[{state.activeUnit, name(0)}] = name(1);
    if (function == "glUseProgram")
        state.program = name(0);
    if (function == "glLinkProgram" && !_badNames.contains({Kind::Program, name(0)}))
        state.linked.insert(name(0));
}

} // namespace test
