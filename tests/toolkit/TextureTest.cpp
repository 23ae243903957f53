#include "support/CapturedLog.h"
#include "support/CaughtAsserts.h"
#include "support/Images.h"
#include "support/OpenFiles.h"

#include <gui/Texture.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <utility>
#include <vector>

namespace
{

namespace fs = std::filesystem;
using Bytes = std::vector<td::BYTE>;

Bytes pixelsOf(const gui::Texture& texture)
{
    const std::size_t nBytes =
        std::size_t(texture.getWidth()) * std::size_t(texture.getHeight()) * texture.getBytesPerPixel();
    return Bytes(texture.getBytes(), texture.getBytes() + nBytes);
}

gui::Texture textureOf(unsigned int width, unsigned int height, unsigned short bytesPerPixel)
{
    return test::image(int(width), int(height), bytesPerPixel);
}

Bytes gradient(unsigned int width, unsigned int height, unsigned short bytesPerPixel)
{
    return pixelsOf(textureOf(width, height, bytesPerPixel));
}

// Every kind that the formats have ends as 3 or 4 bytes per pixel: a missing conversion leaves rows of another length,
// or grey where colour was.
TEST(Texture, DecodesEveryKindOfPNG)
{
    const struct
    {
        std::string name;
        int width;
        unsigned int bytesPerPixel;
        Bytes pixels;
    } cases[] = {
        {"grey-1", 3, 3, {255, 255, 255, 0, 0, 0, 255, 255, 255}},
        {"grey-4", 2, 3, {17, 17, 17, 255, 255, 255}},
        {"grey-8", 1, 3, {9, 9, 9, 200, 200, 200}},
        {"grey-16", 1, 3, {0x13, 0x13, 0x13}}, // 0x12FF, which is nearer to 0x13 of 8 bits than to 0x12
        {"grey-transparent", 2, 4, {9, 9, 9, 0, 10, 10, 10, 255}},
        {"grey-alpha-8", 1, 4, {64, 64, 64, 32}},
        {"grey-alpha-16", 1, 4, {64, 64, 64, 32}},
        {"rgb-8", 1, 3, {1, 2, 3, 4, 5, 6}},
        {"rgb-16", 1, 3, {1, 2, 0x13}},
        {"rgb-transparent", 2, 4, {1, 2, 3, 0, 1, 2, 4, 255}},
        {"rgba-8", 1, 4, {1, 2, 3, 4}},
        {"rgba-16", 1, 4, {1, 2, 3, 4}},
        {"palette-2", 3, 3, {0, 255, 0, 0, 0, 255, 255, 255, 255}},
        {"palette-8-alpha", 2, 4, {0, 0, 255, 7, 255, 0, 0, 0}},
        {"interlaced", 9, 3, gradient(9, 11, 3)},
    };
    for (const auto& c : cases)
    {
        gui::Texture texture;
        ASSERT_TRUE(texture.loadFromFile((":kinds/" + c.name + ".png").c_str())) << c.name;
        EXPECT_TRUE(texture.isOk()) << c.name;
        EXPECT_EQ(texture.getWidth(), c.width) << c.name;
        EXPECT_EQ(texture.getBytesPerPixel(), c.bytesPerPixel) << c.name;
        EXPECT_EQ(pixelsOf(texture), c.pixels) << c.name;
    }
}

TEST(Texture, DecodesEveryKindOfJPEG)
{
    // With Adobe's marker the file has what is left of the paper's white: 200 of red * 128 / 255, and so on.
    const std::pair<std::string, std::array<int, 3>> cases[] = {
        {"grey", {100, 100, 100}},       {"ycbcr", {200, 100, 50}},     {"rgb", {200, 100, 50}},
        {"progressive", {200, 100, 50}}, {"cmyk-adobe", {100, 50, 25}}, {"ycck-adobe", {100, 50, 25}},
        {"cmyk-inks", {100, 50, 25}},
    };
    for (const auto& [name, color] : cases)
    {
        gui::Texture texture;
        ASSERT_TRUE(texture.loadFromFile((":kinds/" + name + ".jpg").c_str())) << name;
        EXPECT_EQ(texture.getWidth(), 10) << name;
        EXPECT_EQ(texture.getHeight(), 6) << name;
        ASSERT_EQ(texture.getBytesPerPixel(), 3u) << name;
        const Bytes pixels = pixelsOf(texture);
        int worst = 0;
        for (std::size_t i = 0; i < pixels.size(); ++i)
            worst = std::max(worst, std::abs(int(pixels[i]) - color[i % 3]));
        EXPECT_LE(worst, 2) << name; // luma and chroma are rounded before they are mixed again
    }
}

TEST(Texture, SavesWhatItLoadsAgain)
{
    const test::ImageFolder folder;
    const std::string path = folder.path("picture.png");
    test::CapturedLog log;
    const std::ptrdiff_t nBefore = test::nOpenFiles();
    for (const unsigned short bytesPerPixel : {std::uint16_t(3), std::uint16_t(4)})
    {
        const gui::Texture texture = textureOf(5, 3, bytesPerPixel);
        ASSERT_TRUE(texture.saveToFile(path.c_str())); // the second time over the first file
        gui::Texture loaded;
        ASSERT_TRUE(loaded.loadFromFile(path.c_str()));
        EXPECT_EQ(loaded.getBytesPerPixel(), bytesPerPixel);
        EXPECT_EQ(pixelsOf(loaded), gradient(5, 3, bytesPerPixel));
    }

    // A picture that can't take the place of what is there leaves nothing of itself behind.
    const std::string taken = folder.path("taken");
    fs::create_directories(fs::path(taken) / "inside");
    EXPECT_FALSE(textureOf(5, 3, 3).saveToFile(taken.c_str()));
    EXPECT_TRUE(log.said("ERROR! Texture::saveToFile cannot save file: " + taken + " (Is a directory)"));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path("")), fs::directory_iterator()), 2);

    EXPECT_FALSE(textureOf(5, 3, 3).saveToFile("/no-such-folder/x.png"));
    EXPECT_TRUE(log.said("ERROR! Texture::saveToFile cannot save file: /no-such-folder/x.png "
                         "(No such file or directory)"));
    EXPECT_FALSE(gui::Texture().saveToFile(path.c_str()));
    EXPECT_TRUE(log.said("ERROR! Texture::saveToFile cannot save file: " + path + " (no image)"));
    EXPECT_FALSE(textureOf(5, 3, 2).saveToFile(path.c_str()));
    EXPECT_TRUE(log.said("ERROR! Texture::saveToFile cannot save file: " + path + " (2 bytes per pixel)"));
    gui::Texture kept;
    EXPECT_TRUE(kept.loadFromFile(path.c_str()));
    EXPECT_EQ(test::nOpenFiles(), nBefore);
}

TEST(Texture, RefusedFilesSayWhyAndLeaveTheTexture)
{
    const test::ImageFolder folder;
    const std::string text = folder.path("text.png");
    std::ofstream(text) << "no picture";
    gui::Texture texture = textureOf(4, 4, 4);
    test::CapturedLog log;
    const std::pair<std::string, std::string> cases[] = {
        {folder.path("missing.png"), "No such file or directory"},
        {folder.path(""), "not a regular file"},
        {text, "neither PNG nor JPEG"},
        {":no/such.png", "no such resource"},
        {":../text.png", "not a resource name"},
        {":", "not a resource name"},
    };
    for (const auto& [name, cause] : cases)
    {
        EXPECT_FALSE(texture.loadFromFile(name.c_str()));
        EXPECT_TRUE(log.said("ERROR! Texture::loadFromFile cannot load file: " + name + " (" + cause + ")"));
    }
    test::CaughtAsserts asserts;
    EXPECT_FALSE(texture.loadFromFile(nullptr));
    EXPECT_TRUE(asserts.caught("fileName != nullptr"));
    EXPECT_EQ(pixelsOf(texture), gradient(4, 4, 4));
}

TEST(Texture, MirrorsRowsInPlace)
{
    for (const unsigned int height : {1u, 2u, 5u})
    {
        gui::Texture texture = textureOf(3, height, 3);
        texture.mirrorVertically();
        const Bytes upright = gradient(3, height, 3);
        Bytes expected;
        for (unsigned int y = height; y-- > 0;)
            expected.insert(expected.end(), upright.begin() + y * 9, upright.begin() + (y + 1) * 9);
        EXPECT_EQ(pixelsOf(texture), expected);
    }
    gui::Texture none;
    none.mirrorVertically();
    EXPECT_FALSE(none.isOk());
}

// A frame is read back into as many bytes as the record says: sizes that wrap around, or exceed the room, must not
// pass.
TEST(Texture, ReadBackNeverExceedsTheRoom)
{
    gui::Texture texture = textureOf(4, 4, 4);
    gui::TextureHelper helper(&texture);
    test::CaughtAsserts asserts;
    const struct
    {
        int width, height;
        unsigned short bytesPerPixel;
    } cases[] = {{5, 4, 4}, {-4, -4, 4}, {65536, 65536, 1}, {0x40000000, 0x40000000, 16}, {1, 1, 256}, {4, 4, 5}};
    for (const auto& c : cases)
    {
        helper.updateInfo(c.width, c.height, c.bytesPerPixel);
        EXPECT_TRUE(asserts.caught("isRoomFor(width, height, bytesPerPixel)"));
        EXPECT_EQ(pixelsOf(texture), gradient(4, 4, 4));
    }
    helper.reserve(10); // less than there is
    EXPECT_EQ(pixelsOf(texture), gradient(4, 4, 4));
    helper.reserve(100);
    EXPECT_EQ(pixelsOf(texture), gradient(4, 4, 4));
    helper.updateInfo(25, 1, 4);
    EXPECT_EQ(pixelsOf(texture).back(), 0);
    helper.updateInfo(0, 25, 4);
    EXPECT_FALSE(texture.isOk());
}

TEST(Texture, MovingLeavesNoImageBehind)
{
    gui::Texture source = textureOf(2, 2, 3);
    gui::Texture target = textureOf(9, 9, 4);
    target = std::move(source);
    EXPECT_EQ(pixelsOf(target), gradient(2, 2, 3));
    EXPECT_FALSE(source.isOk());
    EXPECT_EQ(source.getBytes(), nullptr);
    EXPECT_EQ(source.getWidth(), 0);
    gui::Texture& same = target;
    target = std::move(same);
    EXPECT_TRUE(target.isOk());
}

} // namespace
