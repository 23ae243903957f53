#include "ImageDecoder.h"

#include <csetjmp>
#include <cstdio> // jpeglib.h needs it
#include <span>
#include <vector>

#include <jpeglib.h>

#include <jerror.h> // which codes there are depends on jpeglib.h

namespace gui
{

namespace
{

// A hostile progressive file can claim any number of scans, each as long to decode as the whole image.
constexpr int cMaxScans = 500;

// The library reports an error by a jump. It starts in a callback and ends in readHeader or readRows; no frame between
// and within has anything to destroy: what must be freed belongs to the reader, which stands in the frame above.
struct JPEGReader
{
    JPEGReader() = default;
    ~JPEGReader() { jpeg_destroy_decompress(&info); }
    JPEGReader(const JPEGReader&) = delete;
    JPEGReader& operator=(const JPEGReader&) = delete;

    bool isCMYK() const { return info.jpeg_color_space == JCS_CMYK || info.jpeg_color_space == JCS_YCCK; }

    jpeg_decompress_struct info = {};
    jpeg_error_mgr errors = {};
    jpeg_progress_mgr progress = {};
    std::jmp_buf escape;
    char error[JMSG_LENGTH_MAX] = "";
};

[[noreturn]] void onError(j_common_ptr pInfo)
{
    auto* const pReader = static_cast<JPEGReader*>(pInfo->client_data);
    pInfo->err->format_message(pInfo, pReader->error);
    std::longjmp(pReader->escape, 1);
}

/// Whether a warning means that pixels are missing or made up. The library would go on with a grey area.
bool isDamage(int messageCode)
{
    switch (messageCode)
    {
    case JWRN_ARITH_BAD_CODE:
    case JWRN_HIT_MARKER:
    case JWRN_HUFF_BAD_CODE:
    case JWRN_JPEG_EOF:
    case JWRN_MUST_RESYNC:
        return true;
    default:
        return false;
    }
}

void onMessage(j_common_ptr pInfo, int level)
{
    if (level < 0 && isDamage(pInfo->err->msg_code))
        onError(pInfo);
}

void onProgress(j_common_ptr pInfo)
{
    auto* const pReader = static_cast<JPEGReader*>(pInfo->client_data);
    if (pReader->info.input_scan_number <= cMaxScans)
        return;
    std::snprintf(pReader->error, sizeof pReader->error, "more than %d scans", cMaxScans);
    std::longjmp(pReader->escape, 1);
}

bool readHeader(JPEGReader& reader, std::span<const td::BYTE> file)
{
    reader.info.err = jpeg_std_error(&reader.errors);
    reader.errors.error_exit = onError;
    reader.errors.emit_message = onMessage;
    reader.info.client_data = &reader;
    if (setjmp(reader.escape) != 0)
        return false;
    jpeg_create_decompress(&reader.info);
    reader.progress.progress_monitor = onProgress;
    reader.info.progress = &reader.progress;
    jpeg_mem_src(&reader.info, file.data(), static_cast<unsigned long>(file.size()));
    jpeg_read_header(&reader.info, TRUE);
    return true;
}

/// Inks over white paper. Adobe's files hold the inks inverted.
void cmykToRGB(const td::BYTE* cmyk, td::BYTE* rgb, int width, bool isInverted)
{
    const unsigned int flip = isInverted ? 0 : 255;
    for (int x = 0; x < width; ++x, cmyk += 4, rgb += 3)
        for (int channel = 0; channel < 3; ++channel)
            rgb[channel] = td::BYTE(((cmyk[channel] ^ flip) * (cmyk[3] ^ flip) + 127) / 255);
}

/// @param cmykRow  room for a row of 4 bytes per pixel when the image is CMYK
bool readRows(JPEGReader& reader, const DecodedImage& image, td::BYTE* cmykRow)
{
    if (setjmp(reader.escape) != 0)
        return false;
    const bool isCMYK = reader.isCMYK();
    reader.info.out_color_space = isCMYK ? JCS_CMYK : JCS_RGB;
    jpeg_start_decompress(&reader.info);
    while (reader.info.output_scanline < reader.info.output_height)
    {
        td::BYTE* const pixels = image.row(reader.info.output_scanline);
        td::BYTE* row = isCMYK ? cmykRow : pixels;
        jpeg_read_scanlines(&reader.info, &row, 1);
        if (isCMYK)
            cmykToRGB(cmykRow, pixels, image.width, reader.info.saw_Adobe_marker != 0);
    }
    jpeg_finish_decompress(&reader.info); // finds out whether the file is complete
    return true;
}

} // namespace

bool decodeJPEG(std::span<const td::BYTE> file, DecodedImage& image, std::string& cause)
{
    JPEGReader reader;
    if (!readHeader(reader, file))
    {
        cause = reader.error;
        return false;
    }
    // A block of 8 by 8 pixels takes a bit at least, half of one when both components of the finest are halved.
    // Arithmetic coding has no such bound; such files are rare and must have something to show for their size.
    const std::size_t maxPixels = file.size() * 8 * 64 * 2;
    if (!image.allocate(reader.info.image_width, reader.info.image_height, 3, maxPixels, cause))
        return false;
    std::vector<td::BYTE> cmykRow(reader.isCMYK() ? std::size_t(image.width) * 4 : 0);
    if (!readRows(reader, image, cmykRow.data()))
    {
        cause = reader.error;
        return false;
    }
    return true;
}

} // namespace gui
