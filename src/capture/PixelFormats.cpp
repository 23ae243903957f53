#include "PixelFormats.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <iterator>

namespace gui::gl
{

namespace
{

constexpr std::int64_t cMostPixelsInRow = 1 << 16;

constexpr InternalFormat cInternalFormats[] = {
    {GL_RED, GL_RED, GL_UNSIGNED_BYTE, 1},
    {GL_RG, GL_RG, GL_UNSIGNED_BYTE, 2},
    {GL_RGB, GL_RGB, GL_UNSIGNED_BYTE, 4},
    {GL_RGBA, GL_RGBA, GL_UNSIGNED_BYTE, 4},
    {GL_R8, GL_RED, GL_UNSIGNED_BYTE, 1},
    {GL_RG8, GL_RG, GL_UNSIGNED_BYTE, 2},
    {GL_RGB8, GL_RGB, GL_UNSIGNED_BYTE, 4},
    {GL_RGBA8, GL_RGBA, GL_UNSIGNED_BYTE, 4},
    {GL_SRGB8, GL_RGB, GL_UNSIGNED_BYTE, 4},
    {GL_SRGB8_ALPHA8, GL_RGBA, GL_UNSIGNED_BYTE, 4},
    {GL_R16, GL_RED, GL_UNSIGNED_SHORT, 2},
    {GL_RG16, GL_RG, GL_UNSIGNED_SHORT, 4},
    {GL_RGBA16, GL_RGBA, GL_UNSIGNED_SHORT, 8},
    {GL_RGB10_A2, GL_RGBA, GL_UNSIGNED_INT_2_10_10_10_REV, 4},
    {GL_R11F_G11F_B10F, GL_RGB, GL_UNSIGNED_INT_10F_11F_11F_REV, 4},
    {GL_R16F, GL_RED, GL_HALF_FLOAT, 2},
    {GL_RG16F, GL_RG, GL_HALF_FLOAT, 4},
    {GL_RGB16F, GL_RGB, GL_HALF_FLOAT, 8},
    {GL_RGBA16F, GL_RGBA, GL_HALF_FLOAT, 8},
    {GL_R32F, GL_RED, GL_FLOAT, 4},
    {GL_RG32F, GL_RG, GL_FLOAT, 8},
    {GL_RGB32F, GL_RGB, GL_FLOAT, 16},
    {GL_RGBA32F, GL_RGBA, GL_FLOAT, 16},
    {GL_R8UI, GL_RED_INTEGER, GL_UNSIGNED_BYTE, 1},
    {GL_R16UI, GL_RED_INTEGER, GL_UNSIGNED_SHORT, 2},
    {GL_R32UI, GL_RED_INTEGER, GL_UNSIGNED_INT, 4},
    {GL_R32I, GL_RED_INTEGER, GL_INT, 4},
    {GL_RG32UI, GL_RG_INTEGER, GL_UNSIGNED_INT, 8},
    {GL_RG32I, GL_RG_INTEGER, GL_INT, 8},
    {GL_RGBA8UI, GL_RGBA_INTEGER, GL_UNSIGNED_BYTE, 4},
    {GL_RGBA32UI, GL_RGBA_INTEGER, GL_UNSIGNED_INT, 16},
    {GL_RGBA32I, GL_RGBA_INTEGER, GL_INT, 16},
    {GL_DEPTH_COMPONENT, GL_DEPTH_COMPONENT, GL_UNSIGNED_INT, 4},
    {GL_DEPTH_COMPONENT16, GL_DEPTH_COMPONENT, GL_UNSIGNED_SHORT, 2},
    {GL_DEPTH_COMPONENT24, GL_DEPTH_COMPONENT, GL_UNSIGNED_INT, 4},
    {GL_DEPTH_COMPONENT32, GL_DEPTH_COMPONENT, GL_UNSIGNED_INT, 4},
    {GL_DEPTH_COMPONENT32F, GL_DEPTH_COMPONENT, GL_FLOAT, 4},
    {GL_DEPTH_STENCIL, GL_DEPTH_STENCIL, GL_UNSIGNED_INT_24_8, 4},
    {GL_DEPTH24_STENCIL8, GL_DEPTH_STENCIL, GL_UNSIGNED_INT_24_8, 4},
    {GL_DEPTH32F_STENCIL8, GL_DEPTH_STENCIL, GL_FLOAT_32_UNSIGNED_INT_24_8_REV, 8},
    {GL_STENCIL_INDEX8, GL_STENCIL_INDEX, GL_UNSIGNED_BYTE, 1},
};

unsigned int nChannels(std::int64_t format)
{
    switch (format)
    {
    case GL_RED:
    case GL_GREEN:
    case GL_BLUE:
    case GL_RED_INTEGER:
    case GL_DEPTH_COMPONENT:
    case GL_STENCIL_INDEX:
        return 1;
    case GL_RG:
    case GL_RG_INTEGER:
        return 2;
    case GL_RGB:
    case GL_BGR:
    case GL_RGB_INTEGER:
        return 3;
    case GL_RGBA:
    case GL_BGRA:
    case GL_RGBA_INTEGER:
        return 4;
    default:
        return 0;
    }
}

} // namespace

bool PixelStore::set(std::int64_t name, std::int64_t value)
{
    switch (name)
    {
    case GL_UNPACK_ALIGNMENT:
        if (value != 1 && value != 2 && value != 4 && value != 8)
            return false;
        alignment = value;
        return true;
    case GL_UNPACK_ROW_LENGTH:
    case GL_UNPACK_SKIP_ROWS:
    case GL_UNPACK_SKIP_PIXELS:
        if (value < 0 || value > cMostPixelsInRow)
            return false;
        (name == GL_UNPACK_ROW_LENGTH ? rowLength : name == GL_UNPACK_SKIP_ROWS ? skipRows : skipPixels) = value;
        return true;
    default:
        return false;
    }
}

unsigned int bytesPerPixel(std::int64_t format, std::int64_t type)
{
    switch (type)
    {
    case GL_UNSIGNED_BYTE:
    case GL_BYTE:
        return nChannels(format);
    case GL_UNSIGNED_SHORT:
    case GL_SHORT:
    case GL_HALF_FLOAT:
        return 2 * nChannels(format);
    case GL_UNSIGNED_INT:
    case GL_INT:
    case GL_FLOAT:
        return 4 * nChannels(format);
    case GL_UNSIGNED_INT_2_10_10_10_REV:
    case GL_UNSIGNED_INT_8_8_8_8:
    case GL_UNSIGNED_INT_8_8_8_8_REV:
        return nChannels(format) == 4 ? 4 : 0;
    case GL_UNSIGNED_INT_10F_11F_11F_REV:
        return nChannels(format) == 3 ? 4 : 0;
    case GL_UNSIGNED_INT_24_8:
        return format == GL_DEPTH_STENCIL ? 4 : 0;
    case GL_FLOAT_32_UNSIGNED_INT_24_8_REV:
        return format == GL_DEPTH_STENCIL ? 8 : 0;
    default:
        return 0;
    }
}

std::optional<std::uint64_t> bytesOfImage(std::int64_t width, std::int64_t height, std::int64_t format,
                                          std::int64_t type, const PixelStore& store)
{
    const std::int64_t nBytes = bytesPerPixel(format, type);
    if (nBytes == 0 || width < 0 || height < 0 || width > cMostPixelsInRow || height > cMostPixelsInRow)
        return std::nullopt;
    if (width == 0 || height == 0)
        return 0;
    const std::int64_t nInRow = store.rowLength > 0 ? store.rowLength : width;
    const std::int64_t row = (nInRow * nBytes + store.alignment - 1) / store.alignment * store.alignment;
    return static_cast<std::uint64_t>((store.skipRows + height - 1) * row + (store.skipPixels + width) * nBytes);
}

const InternalFormat* InternalFormat::find(std::int64_t name)
{
    const auto* const it = std::ranges::find(cInternalFormats, name, &InternalFormat::name);
    return it != std::end(cInternalFormats) ? it : nullptr;
}

} // namespace gui::gl
