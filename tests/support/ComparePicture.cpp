// compare_picture FILE REFERENCE: whether a program drew what tests/references holds.
// compare_picture FILE OTHER --measure: how far two pictures are from each other: the mean and the largest difference
// of channels, of 255, and how many of 1,000 pixels differ by more than 8.

#include "Pictures.h"

#include <gui/Texture.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace
{

int measure(const gui::Texture& a, const gui::Texture& b)
{
    constexpr int cSmall = 8;
    const std::size_t nChannels = a.getBytesPerPixel();
    const auto nPixels = static_cast<std::size_t>(a.getWidth()) * static_cast<std::size_t>(a.getHeight());
    if (a.getWidth() != b.getWidth() || a.getHeight() != b.getHeight() || nChannels != b.getBytesPerPixel())
        return 1;
    double sum = 0;
    int largest = 0;
    std::size_t nOther = 0;
    for (std::size_t i = 0; i < nPixels; ++i)
    {
        int most = 0;
        for (std::size_t k = i * nChannels; k < (i + 1) * nChannels; ++k)
        {
            const int difference = std::abs(a.getBytes()[k] - b.getBytes()[k]);
            sum += difference;
            most = std::max(most, difference);
        }
        largest = std::max(largest, most);
        nOther += most > cSmall ? 1 : 0;
    }
    const auto n = static_cast<double>(nPixels);
    std::printf("%.3f %d %.2f\n", sum / (n * static_cast<double>(nChannels)), largest,
                1000.0 * static_cast<double>(nOther) / n);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    gui::Texture picture, other;
    if (argc == 4 && argv[3] == std::string_view("--measure") && picture.loadFromFile(argv[1]) &&
        other.loadFromFile(argv[2]))
        return measure(picture, other);
    if (argc != 3 || !picture.loadFromFile(argv[1]))
        return 2;
    // Pixels on an edge, and how blended colours are rounded, are the driver's choice.
    const testing::AssertionResult result = test::comparePictures(picture, argv[2], {.max = 255, .mean = 0.5});
    std::fputs(result.message(), stderr);
    return result ? 0 : 1;
}
