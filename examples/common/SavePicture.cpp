#include "SavePicture.h"

#include <gui/gl/View.h>

#include <cstdio>

namespace examples
{

bool savePicture(gui::gl::View& view, const std::filesystem::path& file)
{
    std::error_code error;
    std::filesystem::create_directories(file.parent_path(), error);
    if (!view.savePicture(file.c_str()))
    {
        std::fprintf(stderr, "cannot write %s\n", file.c_str());
        return false;
    }
    std::puts(file.c_str());
    return true;
}

} // namespace examples
