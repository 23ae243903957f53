#include "Images.h"

#include <gtest/gtest.h>

#include <stdlib.h>

#include <filesystem>

namespace test
{

gui::Texture image(int width, int height, unsigned short bytesPerPixel)
{
    gui::Texture picture;
    const unsigned int n =
        static_cast<unsigned int>(width) * static_cast<unsigned int>(height) * static_cast<unsigned int>(bytesPerPixel);
    gui::TextureHelper helper(&picture);
    helper.reserve(n);
    helper.updateInfo(width, height, bytesPerPixel);
    for (unsigned int i = 0; i < n; ++i)
        picture.getBytes()[i] = static_cast<unsigned char>(i % 255 + 1);
    return picture;
}

ImageFolder::ImageFolder()
    : _path((std::filesystem::temp_directory_path() / "guigl-images-XXXXXX").string())
{
    if (mkdtemp(_path.data()) == nullptr)
        ADD_FAILURE() << "no folder " << _path;
}

ImageFolder::~ImageFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(_path, ignored);
}

std::string ImageFolder::save(const std::string& fileName, const gui::Texture& picture) const
{
    EXPECT_TRUE(picture.saveToFile(path(fileName).c_str())) << fileName;
    return path(fileName);
}

} // namespace test
