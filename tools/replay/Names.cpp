#include "Names.h"

#include <epoxy/gl.h>

#include <array>
#include <cstdio>

namespace replay
{

namespace
{

struct Named
{
    std::int64_t value;
    const char* text;
};

constexpr Named cNames[] = {
    {GL_ZERO, "ZERO"},
    {GL_ONE, "ONE"},
    {GL_SRC_COLOR, "SRC_COLOR"},
    {GL_ONE_MINUS_SRC_COLOR, "ONE_MINUS_SRC_COLOR"},
    {GL_SRC_ALPHA, "SRC_ALPHA"},
    {GL_ONE_MINUS_SRC_ALPHA, "ONE_MINUS_SRC_ALPHA"},
    {GL_DST_ALPHA, "DST_ALPHA"},
    {GL_ONE_MINUS_DST_ALPHA, "ONE_MINUS_DST_ALPHA"},
    {GL_DST_COLOR, "DST_COLOR"},
    {GL_ONE_MINUS_DST_COLOR, "ONE_MINUS_DST_COLOR"},
    {GL_SRC_ALPHA_SATURATE, "SRC_ALPHA_SATURATE"},
    {GL_CONSTANT_COLOR, "CONSTANT_COLOR"},
    {GL_ONE_MINUS_CONSTANT_COLOR, "ONE_MINUS_CONSTANT_COLOR"},
    {GL_CONSTANT_ALPHA, "CONSTANT_ALPHA"},
    {GL_ONE_MINUS_CONSTANT_ALPHA, "ONE_MINUS_CONSTANT_ALPHA"},
    {GL_SRC1_COLOR, "SRC1_COLOR"},
    {GL_ONE_MINUS_SRC1_COLOR, "ONE_MINUS_SRC1_COLOR"},
    {GL_SRC1_ALPHA, "SRC1_ALPHA"},
    {GL_ONE_MINUS_SRC1_ALPHA, "ONE_MINUS_SRC1_ALPHA"},
    {GL_FUNC_ADD, "FUNC_ADD"},
    {GL_MIN, "MIN"},
    {GL_MAX, "MAX"},
    {GL_FUNC_SUBTRACT, "FUNC_SUBTRACT"},
    {GL_FUNC_REVERSE_SUBTRACT, "FUNC_REVERSE_SUBTRACT"},
    {GL_NEVER, "NEVER"},
    {GL_LESS, "LESS"},
    {GL_EQUAL, "EQUAL"},
    {GL_LEQUAL, "LEQUAL"},
    {GL_GREATER, "GREATER"},
    {GL_NOTEQUAL, "NOTEQUAL"},
    {GL_GEQUAL, "GEQUAL"},
    {GL_ALWAYS, "ALWAYS"},
    {GL_KEEP, "KEEP"},
    {GL_REPLACE, "REPLACE"},
    {GL_INCR, "INCR"},
    {GL_DECR, "DECR"},
    {GL_INVERT, "INVERT"},
    {GL_INCR_WRAP, "INCR_WRAP"},
    {GL_DECR_WRAP, "DECR_WRAP"},
    {GL_FRONT, "FRONT"},
    {GL_BACK, "BACK"},
    {GL_FRONT_AND_BACK, "FRONT_AND_BACK"},
    {GL_BACK_LEFT, "BACK_LEFT"},
    {GL_FRONT_LEFT, "FRONT_LEFT"},
    {GL_CW, "CW"},
    {GL_CCW, "CCW"},
    {GL_POINT, "POINT"},
    {GL_LINE, "LINE"},
    {GL_FILL, "FILL"},
    {GL_BYTE, "BYTE"},
    {GL_UNSIGNED_BYTE, "UNSIGNED_BYTE"},
    {GL_SHORT, "SHORT"},
    {GL_UNSIGNED_SHORT, "UNSIGNED_SHORT"},
    {GL_INT, "INT"},
    {GL_UNSIGNED_INT, "UNSIGNED_INT"},
    {GL_FLOAT, "FLOAT"},
    {GL_HALF_FLOAT, "HALF_FLOAT"},
    {GL_DOUBLE, "DOUBLE"},
    {GL_COLOR, "COLOR"},
    {GL_DEPTH, "DEPTH"},
    {GL_STENCIL, "STENCIL"},
    {GL_DEPTH_STENCIL, "DEPTH_STENCIL"},
    {GL_RED, "RED"},
    {GL_RG, "RG"},
    {GL_RGB, "RGB"},
    {GL_RGBA, "RGBA"},
    {GL_BGR, "BGR"},
    {GL_BGRA, "BGRA"},
    {GL_DEPTH_COMPONENT, "DEPTH_COMPONENT"},
    {GL_NEAREST, "NEAREST"},
    {GL_LINEAR, "LINEAR"},
    {GL_NEAREST_MIPMAP_NEAREST, "NEAREST_MIPMAP_NEAREST"},
    {GL_LINEAR_MIPMAP_NEAREST, "LINEAR_MIPMAP_NEAREST"},
    {GL_NEAREST_MIPMAP_LINEAR, "NEAREST_MIPMAP_LINEAR"},
    {GL_LINEAR_MIPMAP_LINEAR, "LINEAR_MIPMAP_LINEAR"},
    {GL_CLEAR, "CLEAR"},
    {GL_AND, "AND"},
    {GL_COPY, "COPY"},
    {GL_NOOP, "NOOP"},
    {GL_XOR, "XOR"},
    {GL_OR, "OR"},
    {GL_SET, "SET"},
    {GL_LOWER_LEFT, "LOWER_LEFT"},
    {GL_UPPER_LEFT, "UPPER_LEFT"},
    {GL_NEGATIVE_ONE_TO_ONE, "NEGATIVE_ONE_TO_ONE"},
    {GL_ZERO_TO_ONE, "ZERO_TO_ONE"},
    {GL_FIRST_VERTEX_CONVENTION, "FIRST_VERTEX_CONVENTION"},
    {GL_LAST_VERTEX_CONVENTION, "LAST_VERTEX_CONVENTION"},
    {GL_VERTEX_SHADER, "VERTEX_SHADER"},
    {GL_FRAGMENT_SHADER, "FRAGMENT_SHADER"},
    {GL_GEOMETRY_SHADER, "GEOMETRY_SHADER"},
    {GL_TESS_CONTROL_SHADER, "TESS_CONTROL_SHADER"},
    {GL_TESS_EVALUATION_SHADER, "TESS_EVALUATION_SHADER"},
    {GL_R8, "R8"},
    {GL_RG8, "RG8"},
    {GL_RGB8, "RGB8"},
    {GL_RGBA8, "RGBA8"},
    {GL_SRGB8, "SRGB8"},
    {GL_SRGB8_ALPHA8, "SRGB8_ALPHA8"},
    {GL_R16, "R16"},
    {GL_RG16, "RG16"},
    {GL_RGBA16, "RGBA16"},
    {GL_RGB10_A2, "RGB10_A2"},
    {GL_R11F_G11F_B10F, "R11F_G11F_B10F"},
    {GL_R16F, "R16F"},
    {GL_RG16F, "RG16F"},
    {GL_RGB16F, "RGB16F"},
    {GL_RGBA16F, "RGBA16F"},
    {GL_R32F, "R32F"},
    {GL_RG32F, "RG32F"},
    {GL_RGB32F, "RGB32F"},
    {GL_RGBA32F, "RGBA32F"},
    {GL_R8UI, "R8UI"},
    {GL_R16UI, "R16UI"},
    {GL_R32UI, "R32UI"},
    {GL_R32I, "R32I"},
    {GL_RG32UI, "RG32UI"},
    {GL_RG32I, "RG32I"},
    {GL_RGBA8UI, "RGBA8UI"},
    {GL_RGBA32UI, "RGBA32UI"},
    {GL_RGBA32I, "RGBA32I"},
    {GL_DEPTH_COMPONENT16, "DEPTH_COMPONENT16"},
    {GL_DEPTH_COMPONENT24, "DEPTH_COMPONENT24"},
    {GL_DEPTH_COMPONENT32, "DEPTH_COMPONENT32"},
    {GL_DEPTH_COMPONENT32F, "DEPTH_COMPONENT32F"},
    {GL_DEPTH24_STENCIL8, "DEPTH24_STENCIL8"},
    {GL_DEPTH32F_STENCIL8, "DEPTH32F_STENCIL8"},
    {GL_STENCIL_INDEX8, "STENCIL_INDEX8"},
};

constexpr std::array cModes{"POINTS",
                            "LINES",
                            "LINE_LOOP",
                            "LINE_STRIP",
                            "TRIANGLES",
                            "TRIANGLE_STRIP",
                            "TRIANGLE_FAN",
                            "QUADS",
                            "QUAD_STRIP",
                            "POLYGON",
                            "LINES_ADJACENCY",
                            "LINE_STRIP_ADJACENCY",
                            "TRIANGLES_ADJACENCY",
                            "TRIANGLE_STRIP_ADJACENCY",
                            "PATCHES"};

std::string hexadecimal(std::int64_t value)
{
    char text[24];
    std::snprintf(text, sizeof text, "0x%llx", static_cast<unsigned long long>(value));
    return text;
}

} // namespace

std::string nameOf(std::int64_t value)
{
    for (const Named& named : cNames)
        if (named.value == value)
            return named.text;
    return hexadecimal(value);
}

std::string nameOfMode(std::int64_t mode)
{
    return mode >= 0 && mode < static_cast<std::int64_t>(cModes.size()) ? cModes[static_cast<std::size_t>(mode)]
                                                                        : hexadecimal(mode);
}

std::string nameOfBuffers(std::int64_t bits)
{
    std::string text;
    for (const auto& [bit, name] : {Named{GL_COLOR_BUFFER_BIT, "COLOR"}, Named{GL_DEPTH_BUFFER_BIT, "DEPTH"},
                                    Named{GL_STENCIL_BUFFER_BIT, "STENCIL"}})
        if ((bits & bit) != 0)
            text += (text.empty() ? "" : " | ") + std::string(name);
    return text.empty() ? hexadecimal(bits) : text;
}

} // namespace replay
