#include <gui/Res.h>

#include <epoxy/gl.h>

#include <cstdio>

// Prints a resource of its own, and is built with GL as the package brings it.
int main()
{
    if (glFinish == nullptr)
        return 1;
    std::fputs(gui::getResText(":texts/greeting.txt").c_str(), stdout);
    return 0;
}
