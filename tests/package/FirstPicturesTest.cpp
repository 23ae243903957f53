#include "support/Pictures.h"

#include <gui/Texture.h>

#include <gtest/gtest.h>

#include <string>

namespace
{

// What README and the tour say their first programs draw is the pictures they show.
TEST(FirstPictures, AreThoseShown)
{
    struct Program
    {
        const char* test;
        const char* picture;
        bool isThere;
    };
    for (const Program& program : {Program{"Readme", "hello.png", true},
                                   {"FirstPlane", "plane.png", GUIGL_HAS_TOOLS},
                                   {"FirstSphere", "sphere.png", true}})
    {
        if (!program.isThere)
            continue;
        gui::Texture picture;
        const std::string path = GUIGL_FIRST_PICTURES "/" + std::string(program.test) + "/frame-0001.png";
        ASSERT_TRUE(picture.loadFromFile(path.c_str()));
        // Pixels on an edge, and how blended colours are rounded, are the driver's choice.
        EXPECT_TRUE(test::comparePictures(picture, program.picture, {.max = 255, .mean = 0.5}));
    }
}

} // namespace
