// PNG and JPEG files.

#include "Fuzz.h"

#include <gui/Texture.h>

#include <numeric>

namespace fuzz::image
{

namespace
{

unsigned int sumOf(const gui::Texture& image)
{
    const std::size_t n = std::size_t(image.getWidth()) * std::size_t(image.getHeight()) * image.getBytesPerPixel();
    return std::accumulate(image.getBytes(), image.getBytes() + n, 0U);
}

void run(const std::uint8_t* bytes, std::size_t n)
{
    Quiet quiet;
    gui::Texture image;
    image.reserve(12);
    gui::TextureHelper(&image).updateInfo(2, 2, 3);
    const td::BYTE* const pBefore = image.getBytes();
    if (!image.loadFromMemory(bytes, n))
    {
        require(quiet.nLines == 1, "a line says why it was refused");
        require(image.getBytes() == pBefore && image.getWidth() * image.getHeight() == 4, "the image is what it was");
        return;
    }
    require(quiet.nLines == 0, "nothing is said about an image that was loaded");
    require(image.isOk() && (image.getBytesPerPixel() == 3 || image.getBytesPerPixel() == 4), "an image of pixels");
    // Reads all there should be.
    const unsigned int sum = sumOf(image);
    image.mirrorVertically();
    require(sumOf(image) == sum, "a mirrored image has the same pixels");
}

const Target cTarget("image", run);

} // namespace

} // namespace fuzz::image

#ifdef GUIGL_FUZZ
#include <png.h>
#include <zlib.h>

#include <algorithm>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* bytes, std::size_t n, std::size_t max);

// Every chunk of a PNG file has a checksum, which chance never meets.
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* bytes, std::size_t n, std::size_t max, unsigned int)
{
    n = LLVMFuzzerMutate(bytes, n, max);
    if (n < 8 || png_sig_cmp(bytes, 0, 8) != 0)
        return n;
    const auto number = [bytes](std::size_t at) { return png_get_uint_32(bytes + at); };
    for (std::size_t at = 8; n - at >= 12;)
    {
        // A chunk that is too long for the file is cut, so that those behind the header are reached.
        const std::size_t length = std::min<std::size_t>(number(at), n - at - 12);
        png_save_uint_32(bytes + at, static_cast<png_uint_32>(length));
        const uLong sum = crc32(0, bytes + at + 4, static_cast<uInt>(length + 4));
        png_save_uint_32(bytes + at + 8 + length, static_cast<png_uint_32>(sum));
        at += length + 12;
    }
    return n;
}
#endif
