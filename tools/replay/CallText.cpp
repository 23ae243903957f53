#include "CallText.h"

#include "Names.h"

#include <epoxy/gl.h>

#include <cinttypes>
#include <cstdio>
#include <cstring>

namespace replay
{

namespace
{

std::string number(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}

std::string argumentText(char letter, const gui::gl::CallArgument& argument)
{
    char text[32];
    switch (letter)
    {
    case 'e':
        return nameOf(argument.integer);
    case 'm':
        return nameOfMode(argument.integer);
    case 'c':
        return nameOfBuffers(argument.integer);
    case 'f':
    case 'd':
        return number(argument.real);
    case 'h':
        std::snprintf(text, sizeof text, "0x%" PRIx64, static_cast<std::uint64_t>(argument.integer));
        return text;
    case 'b':
        return argument.integer != 0 ? "true" : "false";
    case 'n':
    case 'p':
    case 'q':
        return argument.pointer == nullptr ? "null" : std::to_string(argument.nBytes) + " bytes";
    default:
        return std::to_string(argument.integer);
    }
}

// How many indices each of many draws takes: as the library calls it, mostly one.
std::string countsText(const gui::gl::CallArgument& argument)
{
    constexpr std::uint64_t cMost = 4;
    std::string text = "{";
    for (std::uint64_t i = 0; i < argument.nBytes / 4 && i < cMost; ++i)
    {
        std::int32_t n = 0;
        std::memcpy(&n, static_cast<const char*>(argument.pointer) + 4 * i, sizeof n);
        text += (i > 0 ? ", " : "") + std::to_string(n);
    }
    return text + (argument.nBytes / 4 > cMost ? ", ...}" : "}");
}

} // namespace

std::string textOf(const GLCall& call, CallArguments arguments)
{
    if (call.slot == &glMultiDrawElementsBaseVertex)
        return std::string(call.name) + "(" + nameOfMode(arguments[0].integer) + ", " + countsText(arguments[1]) +
               ", " + nameOf(arguments[2].integer) + ", " + std::to_string(arguments[4].integer) + ")";
    std::string text = std::string(call.name) + "(";
    for (std::size_t i = 0; i < arguments.size(); ++i)
        text += (i > 0 ? ", " : "") + argumentText(call.signature[i], arguments[i]);
    return text + ")";
}

std::string textOf(const DrawPlace& place)
{
    if (place.list == 0)
        return {};
    return "list " + std::to_string(place.list) + ", command " + std::to_string(place.command + 1) + " of " +
           std::to_string(place.nCommands);
}

} // namespace replay
