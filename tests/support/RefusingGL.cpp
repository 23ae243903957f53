#include "RefusingGL.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <cstring>
#include <string_view>

namespace test
{

namespace
{

using Role = GLEntry::Role;

constexpr std::string_view cNeedMemory[] = {"glBufferData", "glGenerateMipmap", "glReadPixels", "glTexImage2D",
                                            "glTexSubImage2D"};
constexpr std::string_view cCompileOrLink[] = {"glCompileShader", "glLinkProgram"};

// What a driver has to say about a refused shader or program.
constexpr char cInfoLog[] = "refused";

bool contains(std::span<const std::string_view> functions, std::string_view function)
{
    return std::ranges::find(functions, function) != functions.end();
}

bool makesNames(const GLEntry& entry) { return entry.role == Role::Generate || entry.role == Role::Create; }

} // namespace

void RefusingGL::refuseNth(unsigned int n)
{
    _refuseAt = n;
    _n = 0;
    _refused.clear();
    _failedName = 0;
    _isMemoryShort = false;
}

std::size_t RefusingGL::nAlive() const
{
    std::size_t n = 0;
    for (const auto& [kind, names] : alive)
        n += names.size();
    return n;
}

bool RefusingGL::answer(const GLEntry& entry, GLArguments arguments, long long& result)
{
    ++_nCalls;
    const bool isRefusable =
        makesNames(entry) || contains(cNeedMemory, entry.function) || contains(cCompileOrLink, entry.function);
    if (isRefusable && ++_n == _refuseAt)
    {
        _refused = entry.function;
        refuse(entry, arguments);
        result = 0;
        return true;
    }
    return answerForRefused(entry.function, arguments, result);
}

void RefusingGL::refuse(const GLEntry& entry, GLArguments arguments)
{
    if (entry.role == Role::Generate)
        std::fill_n(arguments[1].result<GLuint>(), arguments[0].integer, 0U);
    else if (contains(cCompileOrLink, entry.function))
        _failedName = arguments[0].name(); // which the driver will not call compiled or linked
    else if (!makesNames(entry))
        _isMemoryShort = true;
}

bool RefusingGL::answerForRefused(std::string_view function, GLArguments arguments, long long& result)
{
    if (function == "glGetError" && std::exchange(_isMemoryShort, false))
    {
        result = GL_OUT_OF_MEMORY;
        return true;
    }
    if (_failedName == 0 || arguments.empty() || arguments[0].name() != _failedName)
        return false;
    const bool isStatus = function == "glGetShaderiv" || function == "glGetProgramiv";
    if (isStatus && arguments[1].name() == GL_INFO_LOG_LENGTH)
    {
        *arguments[2].result<GLint>() = sizeof cInfoLog;
        return true;
    }
    if (function == "glGetShaderInfoLog" || function == "glGetProgramInfoLog")
    {
        std::memcpy(arguments[3].result<char>(), cInfoLog, sizeof cInfoLog);
        return true;
    }
    return false;
}

void RefusingGL::note(const GLEntry& entry, GLArguments arguments, long long result)
{
    noteNames(entry, arguments, result);
}

} // namespace test
