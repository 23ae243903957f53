#include <gui/gl/port/PixelFormat.h>

#include <cstddef>

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
    NoRecovery = 72,
    Accelerated = 73,
    OpenGLProfile = 99
};

constexpr unsigned int cCore32 = 0x3200;
constexpr unsigned int cCore41 = 0x4100;

bool hasValue(unsigned int attribute)
{
    return attribute != DoubleBuffer && attribute != NoRecovery && attribute != Accelerated;
}

void take(PixelFormatSizes& sizes, unsigned int attribute, unsigned int value)
{
    switch (attribute)
    {
    case OpenGLProfile:
        sizes.is41 = value != cCore32;
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
    default:
        break;
    }
}

} // namespace

PixelFormat buildPixelFormat(const Context& context)
{
    const auto [colorBits, alphaBits] = context.getRGBSize();
    const unsigned int profile = context.getProfile() == Context::Profile::Core32 ? cCore32 : cCore41;
    return {OpenGLProfile, profile,
            ColorSize,     colorBits,
            AlphaSize,     alphaBits,
            DepthSize,     context.getDepthBufferSize(),
            StencilSize,   context.getStencilBufferSize(),
            DoubleBuffer,  Accelerated,
            NoRecovery,    End};
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

} // namespace gui::gl
