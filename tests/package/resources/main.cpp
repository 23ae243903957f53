#include <gui/Res.h>

#include <cstdio>

// Prints a resource of its own.
int main()
{
    std::fputs(gui::getResText(":texts/greeting.txt").c_str(), stdout);
    return 0;
}
