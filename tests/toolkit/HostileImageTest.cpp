#include "fuzz/Fuzz.h"
#include "support/CapturedLog.h"
#include "support/Images.h"

#include <gui/Texture.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace
{

using Bytes = std::vector<td::BYTE>;

Bytes corpusFile(const std::string& name)
{
    std::ifstream file(GUIGL_IMAGE_CORPUS "/" + name, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(file), {});
}

// Beside what holds for every input.
bool isRefused(const Bytes& file)
{
    LLVMFuzzerTestOneInput(file.data(), file.size());
    test::CapturedLog log;
    const bool isRefused = !gui::Texture().loadFromMemory(file.data(), file.size());
    log.take();
    return isRefused;
}

// PNG has a checksum over everything; JPEG has none, and a flipped bit may just be another picture.
TEST(HostileImage, TruncatedFilesAreRefusedAndFlippedBitsAreHarmless)
{
    for (const char* const name :
         {"rgb.png", "rgba16i.png", "pal2i.png", "grey.jpg", "ycc.jpg", "prog.jpg", "ycck.jpg"})
    {
        SCOPED_TRACE(name);
        Bytes file = corpusFile(name);
        ASSERT_FALSE(isRefused(file));
        for (std::size_t length = 0; length < file.size(); ++length)
            EXPECT_TRUE(isRefused(Bytes(file.begin(), file.begin() + long(length)))) << length;
        for (std::size_t bit = 0; bit < file.size() * 8; ++bit)
        {
            file[bit / 8] ^= td::BYTE(1 << bit % 8);
            EXPECT_TRUE(isRefused(file) || std::string_view(name).ends_with(".jpg")) << bit;
            file[bit / 8] ^= td::BYTE(1 << bit % 8);
        }
    }
}

// The size is known before the pixels: memory must not be taken on the word of a few bytes.
TEST(HostileImage, SizesAreCheckedBeforeMemoryIsTaken)
{
    const auto pngOf = [](std::uint32_t width, std::uint32_t height)
    {
        Bytes file = corpusFile("rgb.png");
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
        Bytes file = corpusFile("grey.jpg");
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

// Of which a disk has next to nothing.
TEST(HostileImage, HugeFilesAreNotRead)
{
    const test::ImageFolder folder;
    const std::string path = folder.path("huge.png");
    std::ofstream(path).put('x');
    std::filesystem::resize_file(path, (std::uintmax_t(1) << 30) + 1);
    test::CapturedLog log;
    gui::Texture texture;
    EXPECT_FALSE(texture.loadFromFile(path.c_str()));
    const std::vector<std::string> lines = log.take();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_NE(lines[0].find("file too large"), std::string::npos) << lines[0];
}

// A small file can ask for as many passes over the image as it likes.
TEST(HostileImage, EndlessScansAreRefused)
{
    // The first scan of a progressive file can be decoded again and again.
    const Bytes file = corpusFile("prog.jpg");
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
