#include "StrictGL.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

namespace test
{

namespace
{

using Kind = GLTrace::Kind;

constexpr const char* cKindNames[] = {"buffer", "vertex array", "texture", "shader", "program"};

struct NameUse
{
    std::string_view function;
    std::size_t argument;
    Kind kind;
};

// Where plain calls use a name.
constexpr NameUse cUses[] = {{"glAttachShader", 0, Kind::Program},        {"glAttachShader", 1, Kind::Shader},
                             {"glBindBuffer", 1, Kind::Buffer},           {"glBindTexture", 1, Kind::Texture},
                             {"glBindVertexArray", 0, Kind::VertexArray}, {"glCompileShader", 0, Kind::Shader},
                             {"glGetProgramInfoLog", 0, Kind::Program},   {"glGetProgramiv", 0, Kind::Program},
                             {"glGetShaderInfoLog", 0, Kind::Shader},     {"glGetShaderiv", 0, Kind::Shader},
                             {"glGetUniformLocation", 0, Kind::Program},  {"glLinkProgram", 0, Kind::Program},
                             {"glShaderSource", 0, Kind::Shader},         {"glUseProgram", 0, Kind::Program}};

std::string nameText(Kind kind, unsigned int name)
{
    return std::string(cKindNames[static_cast<int>(kind)]) + " " + std::to_string(name);
}

bool isDraw(std::string_view function) { return function.starts_with("glDraw"); }

bool isUniform(std::string_view function) { return function.starts_with("glUniform"); }

} // namespace

void StrictGL::makeCurrent(Context context)
{
    _current = context;
    _pState = context == 0 ? nullptr : &_contexts[context];
}

void StrictGL::destroy(Context context)
{
    if (context == _current)
        makeCurrent(0);
    _contexts.erase(context);
}

std::vector<std::string> StrictGL::takeFindings() { return std::exchange(_findings, {}); }

std::size_t StrictGL::nAlive() const
{
    std::size_t n = 0;
    for (const auto& [context, state] : _contexts)
        n += nAlive(context);
    return n;
}

std::size_t StrictGL::nAlive(Context context) const
{
    const auto found = _contexts.find(context);
    std::size_t n = 0;
    if (found != _contexts.end())
        for (const auto& [kind, names] : found->second.alive)
            n += names.size();
    return n;
}

std::size_t StrictGL::nAlive(Context context, Kind kind) const
{
    const auto found = _contexts.find(context);
    if (found == _contexts.end() || !found->second.alive.contains(kind))
        return 0;
    return found->second.alive.at(kind).size();
}

void StrictGL::found(const GLEntry& entry, const std::string& what)
{
    _findings.push_back(std::string(entry.function) + ": " + what);
}

void StrictGL::checkName(const GLEntry& entry, Kind kind, unsigned int name)
{
    if (name == 0 || _pState->alive[kind].contains(name))
        return;
    const bool isElsewhere = std::any_of(_contexts.begin(), _contexts.end(),
                                         [&](const auto& other)
                                         {
                                             const auto names = other.second.alive.find(kind);
                                             return names != other.second.alive.end() && names->second.contains(name);
                                         });
    found(entry, nameText(kind, name) + (isElsewhere         ? " belongs to another context"
                                         : name <= _lastName ? " was deleted"
                                                             : " was never made"));
}

bool StrictGL::answer(const GLEntry& entry, GLArguments arguments, long long& result)
{
    result = 0;
    if (_pState == nullptr)
    {
        found(entry, "no context is current");
        return true;
    }
    if (entry.role == GLEntry::Role::Generate || entry.role == GLEntry::Role::Create)
    {
        make(entry, arguments, result);
        return true;
    }
    if (entry.role == GLEntry::Role::Delete)
    {
        const GLuint single = arguments[0].name();
        for (const GLuint name : namesOf(arguments, single))
        {
            checkName(entry, entry.kind, name);
            forget(entry.kind, name);
        }
        return true;
    }
    const std::string_view function = entry.function;
    for (const NameUse& use : cUses)
        if (use.function == function)
            checkName(entry, use.kind, arguments[use.argument].name());
    checkState(entry, arguments);
    bind(function, arguments);
    answerQuery(function, arguments, result);
    return true;
}

void StrictGL::note(const GLEntry& entry, GLArguments arguments, long long)
{
    if (_pState == nullptr)
        return;
    const std::string_view function = entry.function;
    if (isUniform(function) && function.ends_with("fv"))
    {
        const auto n =
            entry.parameters[arguments.size() - 1] == 'm' ? 16 : entry.parameters[arguments.size() - 1] - '0';
        const auto* const pValues = arguments[arguments.size() - 1].data<float>();
        _pState->uniforms[_pState->program][static_cast<int>(arguments[0].integer)].assign(pValues, pValues + n);
    }
    if (!isDraw(function))
        return;
    const bool isIndexed = function.starts_with("glDrawElements");
    const std::size_t instances = isIndexed ? 4 : 3;
    Draw draw{.mode = arguments[0].name(),
              .first = isIndexed ? static_cast<unsigned int>(reinterpret_cast<std::uintptr_t>(arguments[3].pointer))
                                 : arguments[1].name(),
              .count = arguments[isIndexed ? 1 : 2].name(),
              .nInstances = arguments.size() > instances ? arguments[instances].name() : 1,
              .isIndexed = isIndexed,
              .texture = boundTexture(GL_TEXTURE_2D),
              .uniforms = _pState->uniforms[_pState->program]};
    if (draw.mode == GL_POINTS)
        draw.pointSize = _pState->pointSize;
    if (draw.mode == GL_PATCHES)
        draw.patchVertices = _pState->patchVertices;
    _draws.push_back(std::move(draw));
}

void StrictGL::make(const GLEntry& entry, GLArguments arguments, long long& result)
{
    const bool isRefused = _refuseIn != 0 && --_refuseIn == 0;
    const auto next = [&]
    {
        if (isRefused)
            return 0U;
        _pState->alive[entry.kind].insert(++_lastName);
        return _lastName;
    };
    if (entry.role == GLEntry::Role::Create)
        result = next();
    else
        for (long long i = 0; i < arguments[0].integer; ++i)
            arguments[1].result<GLuint>()[i] = next();
}

// What GL unbinds when a name is deleted.
void StrictGL::forget(Kind kind, unsigned int name)
{
    State& state = *_pState;
    state.alive[kind].erase(name);
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
    if (kind == Kind::Program)
        state.uniforms.erase(name);
}

unsigned int StrictGL::boundTexture(unsigned int target)
{
    const unsigned int bindTarget = target >= GL_TEXTURE_CUBE_MAP_POSITIVE_X && target <= GL_TEXTURE_CUBE_MAP_NEGATIVE_Z
                                        ? static_cast<unsigned int>(GL_TEXTURE_CUBE_MAP)
                                        : target;
    const auto found = _pState->textures.find({_pState->activeUnit, bindTarget});
    return found == _pState->textures.end() ? 0 : found->second;
}

void StrictGL::checkState(const GLEntry& entry, GLArguments arguments)
{
    const std::string_view function = entry.function;
    State& state = *_pState;
    const bool isOfVertexArray = function == "glVertexAttribPointer" || function == "glEnableVertexAttribArray" ||
                                 function == "glVertexAttribDivisor";
    const bool isOfElements =
        (function == "glBufferData" || function == "glBindBuffer") && arguments[0].name() == GL_ELEMENT_ARRAY_BUFFER;
    if ((isOfVertexArray || isOfElements || isDraw(function)) && state.vertexArray == 0)
        return found(entry, "no vertex array is bound");
    if (function == "glBufferData" &&
        (isOfElements ? state.vertexArrays[state.vertexArray].elementBuffer : state.arrayBuffer) == 0)
        found(entry, "no buffer is bound");
    if (function == "glVertexAttribPointer" && state.arrayBuffer == 0)
        found(entry, "no buffer is bound");
    if ((function.starts_with("glTex") || function == "glGenerateMipmap") && boundTexture(arguments[0].name()) == 0)
        found(entry, "no texture is bound");
    if (function == "glUseProgram" && arguments[0].name() != 0 && !state.linked.contains(arguments[0].name()))
        found(entry, "the program is not linked");
    if (isUniform(function) && state.program == 0)
        found(entry, "no program is in use");
    if (isDraw(function))
        checkDraw(entry, arguments);
}

void StrictGL::checkDraw(const GLEntry& entry, GLArguments arguments)
{
    State& state = *_pState;
    if (state.program == 0)
        found(entry, "no program is in use");
    checkName(entry, Kind::Program, state.program);
    VertexArray& vertexArray = state.vertexArrays[state.vertexArray];
    for (const unsigned int location : vertexArray.enabled)
        checkName(entry, Kind::Buffer, vertexArray.attributeBuffers[location]);
    checkName(entry, Kind::Buffer, vertexArray.elementBuffer);
    if (std::string_view(entry.function).starts_with("glDrawElements") && vertexArray.elementBuffer == 0)
        found(entry, "no buffer of indices is bound");
    for (const GLArgument& argument : arguments.subspan(0, 3))
        if (argument.integer < 0)
            found(entry, "a negative number");
}

void StrictGL::bind(std::string_view function, GLArguments arguments)
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
    if (function == "glLinkProgram")
        state.linked.insert(name(0));
    if (function == "glPointSize")
        state.pointSize = static_cast<float>(arguments[0].real);
    if (function == "glPatchParameteri")
        state.patchVertices = static_cast<int>(arguments[1].integer);
}

void StrictGL::answerQuery(std::string_view function, GLArguments arguments, long long& result)
{
    if (function == "glGetShaderiv" || function == "glGetProgramiv")
        *arguments[2].result<GLint>() = arguments[1].name() == GL_INFO_LOG_LENGTH ? 0 : GL_TRUE;
    if (function == "glGetIntegerv")
    {
        const GLenum limit = arguments[0].name();
        *arguments[1].result<GLint>() = limit == GL_MAX_TEXTURE_IMAGE_UNITS            ? 16
                                        : limit == GL_MAX_COMBINED_TEXTURE_IMAGE_UNITS ? 80
                                        : limit == GL_MAX_TEXTURE_SIZE                 ? 4096
                                                                                       : 0;
    }
    // The same name has the same location in every program.
    if (function == "glGetUniformLocation")
        result = _locations.emplace(arguments[1].data<char>(), static_cast<int>(_locations.size())).first->second;
}

} // namespace test
