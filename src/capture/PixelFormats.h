#pragma once

#include <cstdint>
#include <optional>

namespace gui::gl
{

/// How GL reads images of a program's: what glPixelStorei says of it.
struct PixelStore
{
    std::int64_t alignment = 4;
    std::int64_t rowLength = 0;
    std::int64_t skipRows = 0;
    std::int64_t skipPixels = 0;

    /// What glPixelStorei was told. @return false for what captured frames don't have
    bool set(std::int64_t name, std::int64_t value);
};

/// The bytes of a pixel in memory; 0 for a format or type that captured frames don't have.
unsigned int bytesPerPixel(std::int64_t format, std::int64_t type);

/// How many bytes GL reads of an image, from its pointer on. Nothing where the numbers are no image's.
std::optional<std::uint64_t> bytesOfImage(std::int64_t width, std::int64_t height, std::int64_t format,
                                          std::int64_t type, const PixelStore& store);

/// A texture's or renderbuffer's format in GL's memory, and the one that its pixels are read and sent in without loss.
struct InternalFormat
{
    unsigned int name;
    unsigned int format;
    unsigned int type;
    unsigned int bytes; ///< of a pixel in GL's memory, at most

    /// @return null for one that captured frames don't have
    static const InternalFormat* find(std::int64_t name);
};

} // namespace gui::gl
