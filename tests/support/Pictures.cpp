#include "Pictures.h"

#include <gui/Texture.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string_view>

namespace test
{

namespace
{

namespace fs = std::filesystem;

std::size_t byteCount(const gui::Texture& picture)
{
    return static_cast<std::size_t>(picture.getWidth()) * static_cast<std::size_t>(picture.getHeight()) *
           picture.getBytesPerPixel();
}

std::string shapeText(const gui::Texture& picture)
{
    return std::to_string(picture.getWidth()) + " x " + std::to_string(picture.getHeight()) + " x " +
           std::to_string(picture.getBytesPerPixel());
}

/// Saves a picture beside the build's other test output. @return where, or why not
std::string keep(const gui::Texture& picture, const std::string& fileName)
{
    const fs::path folder = GUIGL_TEST_OUTPUT;
    fs::create_directories(folder);
    const fs::path path = folder / fileName;
    return picture.saveToFile(path.c_str()) ? path.string() : "cannot write " + path.string();
}

} // namespace

bool areReferencesRenewed()
{
    const char* renew = std::getenv("GUIGL_RENEW_REFERENCES");
    return renew != nullptr && std::string_view(renew) == "1";
}

testing::AssertionResult comparePictures(const gui::Texture& actual, const std::string& reference,
                                         const PictureLimits& limits)
{
    const fs::path path = fs::path(GUIGL_TEST_REFERENCES) / reference;
    if (areReferencesRenewed())
    {
        fs::create_directories(path.parent_path());
        if (actual.saveToFile(path.c_str()))
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << "cannot renew " << path;
    }
    gui::Texture expected;
    if (!fs::exists(path) || !expected.loadFromFile(path.c_str()))
        return testing::AssertionFailure() << "no reference " << path << "; actual: " << keep(actual, reference)
                                           << "\nGUIGL_RENEW_REFERENCES=1 makes it one";
    if (shapeText(actual) != shapeText(expected))
        return testing::AssertionFailure() << reference << " is " << shapeText(expected) << ", the picture "
                                           << shapeText(actual) << ": " << keep(actual, reference);

    const std::size_t n = byteCount(actual);
    int max = 0;
    double sum = 0;
    gui::Texture& difference = expected; // no longer needed as such
    for (std::size_t i = 0; i < n; ++i)
    {
        const int distance = std::abs(actual.getBytes()[i] - expected.getBytes()[i]);
        max = std::max(max, distance);
        sum += distance;
        const bool isAlpha = actual.getBytesPerPixel() == 4 && i % 4 == 3;
        difference.getBytes()[i] = static_cast<unsigned char>(isAlpha ? 255 : std::min(255, distance * 8));
    }
    const double mean = sum / static_cast<double>(n);
    if (max <= limits.max && mean <= limits.mean)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << reference << " differs by up to " << max << " (limit " << limits.max
                                       << "), on average by " << mean << " (limit " << limits.mean
                                       << ")\nactual: " << keep(actual, reference)
                                       << "\ndifference: " << keep(difference, "difference-" + reference);
}

} // namespace test
