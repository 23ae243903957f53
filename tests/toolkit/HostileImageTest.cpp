#include "ImageFiles.h"
#include "support/CapturedLog.h"

#include <gui/Texture.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

#include <jpeglib.h>
#include <png.h>

namespace
{

using test::Bytes;

Bytes noise(std::size_t nBytes)
{
    Bytes bytes(nBytes);
    unsigned int state = 1;
    for (td::BYTE& byte : bytes)
        byte = td::BYTE((state = state * 1664525 + 1013904223) >> 24);
    return bytes;
}

std::vector<Bytes> pngFiles()
{
    return {
        encoded(test::PNGFile{"RGB", PNG_COLOR_TYPE_RGB, 8, 5, noise(5 * 5 * 3)}),
        encoded(test::PNGFile{"RGBA 16", PNG_COLOR_TYPE_RGB_ALPHA, 16, 5, noise(5 * 5 * 8), {}, true}),
        encoded(test::PNGFile{"palette", PNG_COLOR_TYPE_PALETTE, 2, 20, noise(5 * 20), {9, 8, 7}, true}),
    };
}

std::vector<Bytes> jpegFiles()
{
    return {
        encoded(test::JPEGFile{"grey", JCS_GRAYSCALE, JCS_GRAYSCALE, 12, noise(12 * 9)}),
        encoded(test::JPEGFile{"YCbCr", JCS_RGB, JCS_YCbCr, 12, noise(12 * 9 * 3)}),
        encoded(test::JPEGFile{"progressive", JCS_RGB, JCS_YCbCr, 12, noise(12 * 9 * 3), true}),
        encoded(test::JPEGFile{"YCCK", JCS_CMYK, JCS_YCCK, 9, noise(9 * 9 * 4)}),
    };
}

/// Loads damaged files into a texture that holds an image, and checks what each leaves.
class Victim
{
public:
    Victim()
    {
        const Bytes file = encoded(test::PNGFile{"kept", PNG_COLOR_TYPE_RGB, 8, 7, noise(7 * 3 * 3)});
        EXPECT_TRUE(_kept.loadFromMemory(file.data(), file.size()));
    }

    /// @return whether it was refused; that takes one line in the log and changes nothing
    bool refuses(const Bytes& file)
    {
        const td::BYTE* const before = _kept.getBytes();
        if (!_kept.loadFromMemory(file.data(), file.size()))
        {
            EXPECT_EQ(_log.take().size(), 1u);
            EXPECT_EQ(_kept.getBytes(), before);
            EXPECT_EQ(_kept.getWidth() * 1000 + _kept.getHeight(), _width * 1000 + _height);
            return true;
        }
        EXPECT_TRUE(_log.take().empty());
        _width = _kept.getWidth();
        _height = _kept.getHeight();
        const std::size_t nBytes = std::size_t(_width) * std::size_t(_height) * _kept.getBytesPerPixel();
        _sum += std::accumulate(_kept.getBytes(), _kept.getBytes() + nBytes, 0u); // reads all there should be
        return false;
    }

private:
    test::CapturedLog _log;
    gui::Texture _kept;
    int _width = 7;
    int _height = 3;
    unsigned int _sum = 0;
};

TEST(HostileImage, TruncatedFilesAreRefused)
{
    Victim victim;
    for (const std::vector<Bytes>& files : {pngFiles(), jpegFiles()})
        for (const Bytes& file : files)
        {
            ASSERT_FALSE(victim.refuses(file));
            for (std::size_t length = 0; length < file.size(); ++length)
                EXPECT_TRUE(victim.refuses(Bytes(file.begin(), file.begin() + long(length)))) << length;
        }
}

// PNG has a checksum over everything; JPEG has none, and a flipped bit may just be another picture.
TEST(HostileImage, FlippedBitsAreRefusedOrHarmless)
{
    Victim victim;
    for (const bool isPNG : {true, false})
        for (Bytes file : isPNG ? pngFiles() : jpegFiles())
            for (std::size_t bit = 0; bit < file.size() * 8; ++bit)
            {
                file[bit / 8] ^= td::BYTE(1 << bit % 8);
                const bool isRefused = victim.refuses(file);
                EXPECT_TRUE(isRefused || !isPNG) << bit;
                file[bit / 8] ^= td::BYTE(1 << bit % 8);
            }
}

// The size is known before the pixels: memory must not be taken on the word of a few bytes.
TEST(HostileImage, SizesAreCheckedBeforeMemoryIsTaken)
{
    const auto pngOf = [](std::uint32_t width, std::uint32_t height)
    {
        Bytes file = encoded(test::PNGFile{"", PNG_COLOR_TYPE_RGB, 8, 1, {1, 2, 3}});
        for (unsigned int i = 0; i < 4; ++i)
        {
            file[16 + i] = td::BYTE(width >> (24 - 8 * i));
            file[20 + i] = td::BYTE(height >> (24 - 8 * i));
        }
        // The header's checksum, so that nothing but the size is wrong.
        std::uint32_t crc = 0xFFFFFFFF;
        for (std::size_t i = 12; i < 29; ++i)
            for (unsigned int bit = 0; bit < 8; ++bit)
                crc = (crc >> 1) ^ (((crc ^ file[i] >> bit) & 1) != 0 ? 0xEDB88320 : 0);
        for (unsigned int i = 0; i < 4; ++i)
            file[29 + i] = td::BYTE(~crc >> (24 - 8 * i));
        return file;
    };
    const auto jpegOf = [](unsigned int width, unsigned int height)
    {
        Bytes file = jpegFiles()[0];
        constexpr td::BYTE cFrame[] = {0xFF, 0xC0};
        const auto frame = std::search(file.begin(), file.end(), std::begin(cFrame), std::end(cFrame));
        frame[5] = td::BYTE(height >> 8);
        frame[6] = td::BYTE(height);
        frame[7] = td::BYTE(width >> 8);
        frame[8] = td::BYTE(width);
        return file;
    };
    const std::pair<Bytes, std::string> cases[] = {
        {pngOf(0x80000000, 0x80000000), "PNG unsigned integer out of range"},
        {pngOf(0x7FFFFFFF, 0x7FFFFFFF), "image too large: 2147483647 x 2147483647"},
        {pngOf(65536, 1), "image too large: 65536 x 1"},
        {pngOf(60000, 60000), "image too large: 60000 x 60000"},
        {pngOf(30000, 30000), "file too short for 30000 x 30000 pixels"},
        {jpegOf(40000, 40000), "image too large: 40000 x 40000"},
        {jpegOf(30000, 30000), "file too short for 30000 x 30000 pixels"},
    };
    for (const auto& [file, cause] : cases)
    {
        test::CapturedLog log;
        gui::Texture texture;
        EXPECT_FALSE(texture.loadFromMemory(file.data(), file.size()));
        EXPECT_TRUE(log.said("ERROR! Texture::loadFromMemory cannot load image (" + cause + ")"));
    }
}

// A small file can ask for as many passes over the image as it likes.
TEST(HostileImage, EndlessScansAreRefused)
{
    // The first scan of a progressive file can be decoded again and again.
    const Bytes file = jpegFiles()[2];
    constexpr td::BYTE cScan[] = {0xFF, 0xDA}, cTable[] = {0xFF, 0xC4};
    const auto scan = std::search(file.begin(), file.end(), std::begin(cScan), std::end(cScan));
    const auto scanEnd = std::search(scan, file.end(), std::begin(cTable), std::end(cTable));
    Bytes endless(file.begin(), scan);
    for (int i = 0; i < 600; ++i)
        endless.insert(endless.end(), scan, scanEnd);
    endless.insert(endless.end(), scanEnd, file.end());
    test::CapturedLog log;
    gui::Texture texture;
    EXPECT_FALSE(texture.loadFromMemory(endless.data(), endless.size()));
    EXPECT_TRUE(log.said("ERROR! Texture::loadFromMemory cannot load image (more than 500 scans)"));
}

} // namespace
