#pragma once

#include <gtest/gtest.h>

#include <string>

namespace gui
{
class Texture;
}

namespace test
{

/// How far a picture may be from its reference. Say beside a limit above 0 what it is for.
struct PictureLimits
{
    int max = 0;     ///< the largest difference of a channel, 0 to 255
    double mean = 0; ///< the mean difference of all channels
};

/// Whether the environment asks for new references: GUIGL_RENEW_REFERENCES=1.
bool areReferencesRenewed();

/// Compares a picture with a PNG file in tests/references. On failure the actual picture and the difference (8 times
/// as bright) are left as files in the build folder, and the message says where.
/// When references are renewed, the picture becomes the reference instead.
testing::AssertionResult comparePictures(const gui::Texture& actual, const std::string& reference,
                                         const PictureLimits& limits = {});

} // namespace test
