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
    // Pixels on an edge, and how blended colours are rounded, are the driver's choice.
    EXPECT_TRUE(test::comparePictures(picture, "hello.png", {.max = 255, .mean = 0.5}));
}

} // namespace
