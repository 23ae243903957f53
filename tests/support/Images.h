#pragma once

#include <gui/Texture.h>

#include <string>

namespace test
{

/// An image whose bytes are all different from their neighbours: 1, 2, 3, ... in the order of memory, skipping 0.
gui::Texture image(int width, int height, unsigned short bytesPerPixel);

/// A folder of image files that goes away with this object.
class ImageFolder
{
public:
    ImageFolder();
    ~ImageFolder();
    ImageFolder(const ImageFolder&) = delete;
    ImageFolder& operator=(const ImageFolder&) = delete;

    std::string path(const std::string& fileName) const { return _path + "/" + fileName; }

    std::string save(const std::string& fileName, const gui::Texture& picture) const;

private:
    std::string _path;
};

} // namespace test
