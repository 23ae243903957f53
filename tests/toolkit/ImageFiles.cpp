#include "ImageFiles.h"

#include <array>
#include <cstdio>
#include <cstdlib>

#include <jpeglib.h>
#include <png.h>

namespace test
{

namespace
{

unsigned int channels(int pngColorType)
{
    switch (pngColorType)
    {
    case PNG_COLOR_TYPE_GRAY_ALPHA:
        return 2;
    case PNG_COLOR_TYPE_RGB:
        return 3;
    case PNG_COLOR_TYPE_RGB_ALPHA:
        return 4;
    default:
        return 1;
    }
}

void append(png_structp png, png_bytep bytes, std::size_t nBytes)
{
    auto* const pFile = static_cast<Bytes*>(png_get_io_ptr(png));
    pFile->insert(pFile->end(), bytes, bytes + nBytes);
}

void setTransparency(png_structp png, png_infop info, const PNGFile& file)
{
    png_color_16 color = {};
    if (file.colorType == PNG_COLOR_TYPE_GRAY)
        color.gray = file.transparency[0];
    else if (file.colorType == PNG_COLOR_TYPE_RGB)
    {
        color.red = file.transparency[0];
        color.green = file.transparency[1];
        color.blue = file.transparency[2];
    }
    png_set_tRNS(png, info, file.transparency.data(), int(file.transparency.size()), &color);
}

} // namespace

Bytes encoded(const PNGFile& file)
{
    const std::size_t rowBytes = (file.width * channels(file.colorType) * unsigned(file.bitDepth) + 7) / 8;
    const auto height = static_cast<png_uint_32>(file.rows.size() / rowBytes);
    Bytes result;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(png, &result, append, nullptr);
    png_set_IHDR(png, info, file.width, height, file.bitDepth, file.colorType,
                 file.isInterlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    constexpr std::array<png_color, 4> cPalette{{{255, 0, 0}, {0, 255, 0}, {0, 0, 255}, {255, 255, 255}}};
    if (file.colorType == PNG_COLOR_TYPE_PALETTE)
        png_set_PLTE(png, info, cPalette.data(), int(cPalette.size()));
    if (!file.transparency.empty())
        setTransparency(png, info, file);
    png_write_info(png, info);
    const int nPasses = png_set_interlace_handling(png);
    for (int pass = 0; pass < nPasses; ++pass)
        for (std::size_t y = 0; y < height; ++y)
            png_write_row(png, file.rows.data() + y * rowBytes);
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return result;
}

Bytes encoded(const JPEGFile& file)
{
    jpeg_compress_struct info = {};
    jpeg_error_mgr errors = {};
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* pResult = nullptr;
    unsigned long nBytes = 0;
    jpeg_mem_dest(&info, &pResult, &nBytes);

    info.in_color_space = static_cast<J_COLOR_SPACE>(file.pixelSpace);
    info.input_components = file.pixelSpace == JCS_GRAYSCALE ? 1 : file.pixelSpace == JCS_CMYK ? 4 : 3;
    const std::size_t rowBytes = file.width * std::size_t(info.input_components);
    info.image_width = file.width;
    info.image_height = static_cast<JDIMENSION>(file.pixels.size() / rowBytes);
    jpeg_set_defaults(&info);
    jpeg_set_colorspace(&info, static_cast<J_COLOR_SPACE>(file.fileSpace));
    jpeg_set_quality(&info, 100, TRUE);
    info.comp_info[0].h_samp_factor = info.comp_info[0].v_samp_factor = 1;
    if (info.num_components == 4)
        info.comp_info[3].h_samp_factor = info.comp_info[3].v_samp_factor = 1;
    if (!file.hasAdobeMarker)
        info.write_Adobe_marker = FALSE;
    if (file.isProgressive)
        jpeg_simple_progression(&info);
    jpeg_start_compress(&info, TRUE);
    Bytes pixels = file.pixels;
    while (info.next_scanline < info.image_height)
    {
        JSAMPROW row = pixels.data() + info.next_scanline * rowBytes;
        jpeg_write_scanlines(&info, &row, 1);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    const Bytes result(pResult, pResult + nBytes);
    std::free(pResult);
    return result;
}

} // namespace test
