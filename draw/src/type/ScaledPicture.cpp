#include "ScaledPicture.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace gui::draw
{

namespace
{

// One direction: n pixels at places from on, of a scale below 1, become the whole pixels from first on.
struct Reduction
{
    double scale;
    double from; // where the pixels begin, in pixels after reduction
    int first;
    unsigned int n;

    Reduction(int start, unsigned int nOld, double factor)
        : scale(factor)
        , from(start * factor)
        , first(static_cast<int>(std::floor(from)))
        , n(static_cast<unsigned int>(std::ceil((start + double(nOld)) * factor)) - static_cast<unsigned int>(first))
    {
    }

    // How much of the old pixel is in the new one, of which all makes 1.
    double share(unsigned int oldPixel, unsigned int newPixel) const
    {
        const double begin = from + oldPixel * scale, low = first + double(newPixel);
        return std::max(0.0, std::min(begin + scale, low + 1) - std::max(begin, low));
    }
};

// Rows of four components each, every row reduced on its own.
std::vector<float> reduceRows(const std::vector<float>& pixels, unsigned int width, unsigned int height,
                              const Reduction& reduction)
{
    std::vector<float> result(std::size_t(reduction.n) * height * 4);
    for (unsigned int x = 0; x < width; ++x)
    {
        const double begin = reduction.from + x * reduction.scale - reduction.first;
        const auto first = static_cast<unsigned int>(std::max(0.0, std::floor(begin)));
        for (unsigned int to = first; to < reduction.n && to <= first + 1; ++to)
        {
            const auto share = static_cast<float>(reduction.share(x, to));
            for (std::size_t y = 0; y < height; ++y)
                for (std::size_t i = 0; i < 4; ++i)
                    result[(y * reduction.n + to) * 4 + i] += share * pixels[(y * width + x) * 4 + i];
        }
    }
    return result;
}

std::vector<float> transposed(const std::vector<float>& pixels, unsigned int width, unsigned int height)
{
    std::vector<float> result(pixels.size());
    for (std::size_t y = 0; y < height; ++y)
        for (std::size_t x = 0; x < width; ++x)
            std::copy_n(&pixels[(y * width + x) * 4], 4, &result[(x * height + y) * 4]);
    return result;
}

} // namespace

void scaleDown(GlyphImage& image, double pixelsPerEm)
{
    if (image.width > 0 && image.height > 0)
    {
        const double factor = pixelsPerEm / image.pixelsPerEm;
        const Reduction across(image.left, image.width, factor), down(-image.top, image.height, factor);
        std::vector<float> pixels(image.pixels.begin(), image.pixels.end());
        pixels = reduceRows(pixels, image.width, image.height, across);
        pixels = reduceRows(transposed(pixels, across.n, image.height), image.height, across.n, down);
        pixels = transposed(pixels, down.n, across.n);
        image.pixels.resize(pixels.size());
        std::ranges::transform(pixels, image.pixels.begin(),
                               [](float value) { return static_cast<td::BYTE>(std::min(value + 0.5f, 255.0f)); });
        image.left = across.first;
        image.top = -down.first;
        image.width = across.n;
        image.height = down.n;
    }
    image.pixelsPerEm = pixelsPerEm;
}

} // namespace gui::draw
