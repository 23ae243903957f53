#include "ImageDecoder.h"

#include <csetjmp>
#include <cstring>
#include <span>

#include <png.h>

namespace gui
{

namespace
{

// The library reports an error by a jump. It starts in a callback and ends in readHeader or readRows; no frame between
// and within has anything to destroy: what must be freed belongs to the reader, which stands in the frame above.
struct PNGReader
{
    explicit PNGReader(std::span<const td::BYTE> file)
        : rest(file)
    {
    }
    ~PNGReader() { png_destroy_read_struct(&png, &info, nullptr); }
    PNGReader(const PNGReader&) = delete;
    PNGReader& operator=(const PNGReader&) = delete;

    png_structp png = nullptr;
    png_infop info = nullptr;
    std::span<const td::BYTE> rest; // of the file
    char error[128] = "out of memory";

    unsigned int width = 0;
    unsigned int height = 0;
    unsigned int fileBitsPerPixel = 0;
    td::BYTE bytesPerPixel = 0;
};

[[noreturn]] void onError(png_structp png, png_const_charp message)
{
    auto* const pReader = static_cast<PNGReader*>(png_get_error_ptr(png));
    std::snprintf(pReader->error, sizeof pReader->error, "%s", message);
    png_longjmp(png, 1);
}

void onWarning(png_structp, png_const_charp) {}

void onRead(png_structp png, png_bytep bytes, std::size_t nBytes)
{
    auto* const pReader = static_cast<PNGReader*>(png_get_io_ptr(png));
    if (nBytes > pReader->rest.size())
        png_error(png, "file ends too soon");
    std::memcpy(bytes, pReader->rest.data(), nBytes);
    pReader->rest = pReader->rest.subspan(nBytes);
}

bool readHeader(PNGReader& reader)
{
    reader.png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &reader, onError, onWarning);
    if (reader.png == nullptr || setjmp(png_jmpbuf(reader.png)) != 0)
        return false;
    reader.info = png_create_info_struct(reader.png);
    if (reader.info == nullptr)
        return false;
    png_set_read_fn(reader.png, &reader, onRead);
    png_set_user_limits(reader.png, PNG_UINT_31_MAX, PNG_UINT_31_MAX); // ours are checked with the cause in the log
    png_set_crc_action(reader.png, PNG_CRC_ERROR_QUIT, PNG_CRC_ERROR_QUIT);
    png_read_info(reader.png, reader.info);

    reader.width = png_get_image_width(reader.png, reader.info);
    reader.height = png_get_image_height(reader.png, reader.info);
    const unsigned int bitDepth = png_get_bit_depth(reader.png, reader.info);
    reader.fileBitsPerPixel = png_get_channels(reader.png, reader.info) * bitDepth;
    const bool hasAlpha = (png_get_color_type(reader.png, reader.info) & PNG_COLOR_MASK_ALPHA) != 0 ||
                          png_get_valid(reader.png, reader.info, PNG_INFO_tRNS) != 0;
    reader.bytesPerPixel = hasAlpha ? 4 : 3;
    return true;
}

bool readRows(PNGReader& reader, const DecodedImage& image)
{
    if (setjmp(png_jmpbuf(reader.png)) != 0)
        return false;
    png_set_expand(reader.png);
    png_set_scale_16(reader.png);
    png_set_gray_to_rgb(reader.png);
    const int nPasses = png_set_interlace_handling(reader.png);
    png_read_update_info(reader.png, reader.info);
    if (png_get_rowbytes(reader.png, reader.info) != std::size_t(image.width) * image.bytesPerPixel)
        png_error(reader.png, "unexpected row length");
    for (int pass = 0; pass < nPasses; ++pass)
        for (unsigned int y = 0; y < reader.height; ++y)
            png_read_row(reader.png, image.row(y), nullptr);
    png_read_end(reader.png, nullptr); // finds out whether the file is complete
    return true;
}

} // namespace

bool decodePNG(std::span<const td::BYTE> file, DecodedImage& image, std::string& cause)
{
    PNGReader reader(file);
    if (!readHeader(reader))
    {
        cause = reader.error;
        return false;
    }
    // Deflate makes at most 1032 bytes of one.
    const std::size_t maxPixels = file.size() * 1032 * 8 / reader.fileBitsPerPixel;
    if (!image.allocate(reader.width, reader.height, reader.bytesPerPixel, maxPixels, cause))
        return false;
    if (!readRows(reader, image))
    {
        cause = reader.error;
        return false;
    }
    return true;
}

bool writePNG(std::FILE* pFile, const td::BYTE* pixels, int width, int height, unsigned int bytesPerPixel,
              std::string& cause)
{
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    image.format = bytesPerPixel == 4 ? PNG_FORMAT_RGBA : PNG_FORMAT_RGB;
    if (png_image_write_to_stdio(&image, pFile, 0, pixels, 0, nullptr) != 0)
        return true;
    cause = image.message;
    return false;
}

} // namespace gui
