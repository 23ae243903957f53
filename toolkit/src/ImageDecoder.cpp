#include "ImageDecoder.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <new>

namespace gui
{

namespace
{

constexpr unsigned int cMaxSide = 65535;
constexpr std::array<td::BYTE, 8> cPNGSignature{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
constexpr std::array<td::BYTE, 3> cJPEGSignature{0xFF, 0xD8, 0xFF};

template <std::size_t N>
bool beginsWith(std::span<const td::BYTE> file, const std::array<td::BYTE, N>& signature)
{
    return file.size() >= N && std::equal(signature.begin(), signature.end(), file.begin());
}

} // namespace

bool DecodedImage::allocate(unsigned int imageWidth, unsigned int imageHeight, td::BYTE pixelBytes,
                            std::size_t maxPixels, std::string& cause)
{
    const std::uint64_t nPixels = std::uint64_t(imageWidth) * imageHeight;
    if (imageWidth == 0 || imageHeight == 0)
        cause = "no pixels";
    else if (imageWidth > cMaxSide || imageHeight > cMaxSide ||
             nPixels * pixelBytes > std::numeric_limits<unsigned int>::max())
        cause = "image too large: " + std::to_string(imageWidth) + " x " + std::to_string(imageHeight);
    else if (nPixels > maxPixels)
        cause = "file too short for " + std::to_string(imageWidth) + " x " + std::to_string(imageHeight) + " pixels";
    else
    {
        nBytes = static_cast<unsigned int>(nPixels * pixelBytes);
        pixels.reset(new (std::nothrow) td::BYTE[nBytes]);
        if (pixels == nullptr)
        {
            cause = "out of memory";
            return false;
        }
        width = int(imageWidth);
        height = int(imageHeight);
        bytesPerPixel = pixelBytes;
        return true;
    }
    return false;
}

bool decodeImage(std::span<const td::BYTE> file, DecodedImage& image, std::string& cause)
{
    if (beginsWith(file, cPNGSignature))
        return decodePNG(file, image, cause);
    if (beginsWith(file, cJPEGSignature))
        return decodeJPEG(file, image, cause);
    cause = "neither PNG nor JPEG";
    return false;
}

} // namespace gui
