#pragma once

#include <td/Types.h>

#include <cstddef>
#include <cstdio>
#include <memory>
#include <span>
#include <string>

namespace gui
{

/// Pixels as gui::Texture holds them: rows from the top down, 3 or 4 bytes per pixel, nothing between rows.
struct DecodedImage
{
    std::unique_ptr<td::BYTE[]> pixels;
    unsigned int nBytes = 0;
    int width = 0;
    int height = 0;
    td::BYTE bytesPerPixel = 0;

    /// Takes memory for an image, once its size is known to be sound. @param maxPixels  what a file of that length can
    /// hold
    /// @return false, with the cause and no memory taken, for a size beyond the limits that gui::Texture states
    bool allocate(unsigned int imageWidth, unsigned int imageHeight, td::BYTE pixelBytes, std::size_t maxPixels,
                  std::string& cause);

    td::BYTE* row(unsigned int y) const { return pixels.get() + std::size_t(y) * std::size_t(width) * bytesPerPixel; }
};

/// Decodes a PNG or JPEG file. @return false with the cause; image then holds anything
bool decodeImage(std::span<const td::BYTE> file, DecodedImage& image, std::string& cause);

// One for each format; decodeImage chooses. The file begins with the format's signature.
bool decodePNG(std::span<const td::BYTE> file, DecodedImage& image, std::string& cause);
bool decodeJPEG(std::span<const td::BYTE> file, DecodedImage& image, std::string& cause);

/// Writes a PNG file. @param bytesPerPixel  3 or 4. @return false with the cause
bool writePNG(std::FILE* pFile, const td::BYTE* pixels, int width, int height, unsigned int bytesPerPixel,
              std::string& cause);

} // namespace gui
