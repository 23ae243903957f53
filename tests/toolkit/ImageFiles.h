#pragma once

#include <td/Types.h>

#include <string>
#include <vector>

namespace test
{

using Bytes = std::vector<td::BYTE>;

/// A PNG file to be made.
struct PNGFile
{
    std::string name;
    int colorType = 0; ///< libpng's
    int bitDepth = 8;
    unsigned int width = 0;
    Bytes rows;           ///< as the file holds them before they are compressed; the height follows from them
    Bytes transparency{}; ///< the alpha of palette entries, or one transparent colour of 8 bits per channel
    bool isInterlaced = false;
};

/// Its palette is red, green, blue, white.
Bytes encoded(const PNGFile& file);

/// A JPEG file to be made, of the best quality and with colour at full resolution.
struct JPEGFile
{
    std::string name;
    int pixelSpace = 0; ///< libjpeg's colour space of the pixels given
    int fileSpace = 0;  ///< libjpeg's colour space in the file
    unsigned int width = 0;
    Bytes pixels;
    bool isProgressive = false;
    bool hasAdobeMarker = true; ///< CMYK and YCCK
};

Bytes encoded(const JPEGFile& file);

} // namespace test
