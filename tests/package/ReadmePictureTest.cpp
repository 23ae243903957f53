#include "support/Pictures.h"

#include <gui/Texture.h>

#include <gtest/gtest.h>

namespace
{

// What README says its program draws is the picture it shows.
TEST(Readme, ProgramDrawsThePictureShown)
{
    gui::Texture picture;
    ASSERT_TRUE(picture.loadFromFile(GUIGL_README_PICTURE));
    // Pixels on an edge are another driver's choice: at most 1,500 of 256,000.
    EXPECT_TRUE(test::comparePictures(picture, "boat.png", {.max = 255, .mean = 0.5}));
}

} // namespace
