// compare_picture FILE REFERENCE: whether a program drew what tests/references holds.

#include "Pictures.h"

#include <gui/Texture.h>

#include <cstdio>

int main(int argc, char** argv)
{
    gui::Texture picture;
    if (argc != 3 || !picture.loadFromFile(argv[1]))
        return 2;
    // Pixels on an edge, and how blended colours are rounded, are the driver's choice.
    const testing::AssertionResult result = test::comparePictures(picture, argv[2], {.max = 255, .mean = 0.5});
    std::fputs(result.message(), stderr);
    return result ? 0 : 1;
}
