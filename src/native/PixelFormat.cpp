#include <gui/gl/port/PixelFormat.h>

#include "../context/Samples.h"

#include <vo/Log.h>

#include <charconv>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace gui::gl
{

namespace
{

enum Attribute : unsigned int
{
    End = 0,
    DoubleBuffer = 5,
    ColorSize = 8,
    AlphaSize = 11,
    DepthSize = 12,
    StencilSize = 13,
    SampleBuffers = 55,
    Samples = 56,
    NoRecovery = 72,
    Accelerated = 73,
    OpenGLProfile = 99,
    SurfaceOpacity = 236
};

constexpr unsigned int cCore32 = 0x3200;
constexpr unsigned int cCore41 = 0x4100;
constexpr unsigned int cES31 = 0xE310;

bool hasValue(unsigned int attribute)
{
    return attribute != DoubleBuffer && attribute != NoRecovery && attribute != Accelerated;
}

void take(PixelFormatSizes& sizes, unsigned int attribute, unsigned int value)
{
    switch (attribute)
    {
    case OpenGLProfile:
        sizes.isES = value == cES31;
        sizes.is41 = !sizes.isES && value != cCore32;
        break;
    case ColorSize:
        sizes.colorBits = static_cast<int>(value);
        break;
    case AlphaSize:
        sizes.alphaBits = static_cast<int>(value);
        break;
    case DepthSize:
        sizes.depthBits = static_cast<int>(value);
        break;
    case StencilSize:
        sizes.stencilBits = static_cast<int>(value);
        break;
    case Samples:
        sizes.nSamples = value > 1 ? static_cast<int>(value) : 1;
        break;
    case SurfaceOpacity:
        sizes.isTransparent = value == 0;
        break;
    default:
        break;
    }
}

bool isESWanted()
{
    const char* const text = std::getenv("GUIGL_ES");
    return text != nullptr && *text != '\0' && std::strcmp(text, "0") != 0;
}

// @param nSamples  in the place of the context's
PixelFormat build(const Context& context, int nSamples, bool isES)
{
    const auto [colorBits, alphaBits] = context.getRGBSize();
    const unsigned int profile = isES ? cES31 : context.getProfile() == Context::Profile::Core32 ? cCore32 : cCore41;
    PixelFormat format{OpenGLProfile, profile,
                       ColorSize,     colorBits,
                       AlphaSize,     alphaBits,
                       DepthSize,     context.getDepthBufferSize(),
                       StencilSize,   context.getStencilBufferSize()};
    std::size_t n = 10;
    if (nSamples > 1)
        for (const unsigned int word : {+SampleBuffers, 1U, +Samples, static_cast<unsigned int>(nSamples)})
            format[n++] = word;
    if (context.isTransparent())
        for (const unsigned int word : {+SurfaceOpacity, 0U})
            format[n++] = word;
    for (const unsigned int word : {DoubleBuffer, Accelerated, NoRecovery, End})
        format[n++] = word;
    return format;
}

bool isES(const Context& context) { return context.getProfile() == Context::Profile::ES31; }

} // namespace

PixelFormat buildPixelFormat(const Context& context) { return build(context, context.getSamples(), isES(context)); }

PixelFormat requestPixelFormat(const Context& context)
{
    const bool wantsES = isES(context) || isESWanted();
    const char* const text = std::getenv("GUIGL_SAMPLES");
    if (text == nullptr || *text == '\0')
        return build(context, context.getSamples(), wantsES);
    const char* const pEnd = text + std::strlen(text);
    int nSamples = 0;
    const auto result = std::from_chars(text, pEnd, nSamples);
    if (result.ec != std::errc() || result.ptr != pEnd || !isSampleCount(nSamples))
    {
        static bool s_isSaid = false;
        if (!std::exchange(s_isSaid, true))
            vo::dbgLog("Warning! GUIGL_SAMPLES=%s is none of 1, 2, 4, 8, 16 and will be ignored", text);
        nSamples = context.getSamples();
    }
    return build(context, nSamples, wantsES);
}

const char* nameOfOpenGL(const PixelFormatSizes& sizes)
{
    return sizes.isES ? "OpenGL ES 3.1" : sizes.is41 ? "OpenGL 4.1 core" : "OpenGL 3.2 core";
}

PixelFormatSizes decodePixelFormat(const PixelFormat& format)
{
    PixelFormatSizes sizes{};
    std::size_t i = 0;
    while (i + 1 < format.size() && format[i] != End)
    {
        take(sizes, format[i], format[i + 1]);
        i += hasValue(format[i]) ? 2 : 1;
    }
    return sizes;
}

bool fallBack(PixelFormatSizes& sizes)
{
    constexpr int cMaxDepthBits = 24;
    constexpr int cMaxStencilBits = 8;
    if (sizes.stencilBits > cMaxStencilBits)
        sizes.stencilBits = cMaxStencilBits;
    else if (sizes.depthBits > cMaxDepthBits)
        sizes.depthBits = cMaxDepthBits;
    else
        return false;
    return true;
}

bool fallBackSamples(PixelFormatSizes& sizes)
{
    if (sizes.nSamples <= 1)
        return false;
    sizes.nSamples /= 2;
    return true;
}

bool fallBackVersion(PixelFormatSizes& sizes) { return !sizes.isES && std::exchange(sizes.is41, false); }

} // namespace gui::gl
