#include "CubeMapPainting.h"

#include <td/Types.h>

#include <glm/geometric.hpp>

#include <algorithm>
#include <cmath>

namespace gui::gl
{

namespace
{

/// Where a face lies, and which ways its columns and rows run.
struct Face
{
    glm::vec3 middle;
    glm::vec3 right;
    glm::vec3 down;
};

constexpr std::array<Face, 6> cFaces{{{{-1, 0, 0}, {0, 0, 1}, {0, -1, 0}},
                                      {{0, 0, 1}, {1, 0, 0}, {0, -1, 0}},
                                      {{1, 0, 0}, {0, 0, -1}, {0, -1, 0}},
                                      {{0, 0, -1}, {-1, 0, 0}, {0, -1, 0}},
                                      {{0, 1, 0}, {1, 0, 0}, {0, 0, 1}},
                                      {{0, -1, 0}, {1, 0, 0}, {0, 0, -1}}}};

constexpr int cBytesPerPixel = 3;

// NaN is black.
td::BYTE toByte(float value)
{
    return static_cast<td::BYTE>(std::lround(255 * (value > 0 ? std::min(value, 1.0F) : 0.0F)));
}

void paint(gui::Texture& image, int size, const Face& face, const std::function<glm::vec3(const glm::vec3&)>& color)
{
    TextureHelper helper(&image);
    helper.reserve(static_cast<unsigned int>(cBytesPerPixel * size * size));
    helper.updateInfo(size, size, cBytesPerPixel);
    const auto middleOf = [size](int pixel)
    { return static_cast<float>(2 * pixel + 1) / static_cast<float>(size) - 1; };
    td::BYTE* pByte = image.getBytes();
    for (int row = 0; row < size; ++row)
    {
        for (int column = 0; column < size; ++column)
        {
            const glm::vec3 direction = face.middle + middleOf(column) * face.right + middleOf(row) * face.down;
            const glm::vec3 seen = color(glm::normalize(direction));
            for (int i = 0; i < cBytesPerPixel; ++i)
                *pByte++ = toByte(seen[i]);
        }
    }
}

} // namespace

std::array<gui::Texture, 6> paintCubeMap(int size, const std::function<glm::vec3(const glm::vec3&)>& color)
{
    std::array<gui::Texture, 6> images;
    for (std::size_t i = 0; i < images.size(); ++i)
        paint(images[i], size, cFaces[i], color);
    return images;
}

} // namespace gui::gl
