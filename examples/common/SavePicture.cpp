#include "SavePicture.h"

#include <gui/Application.h>
#include <gui/Texture.h>
#include <gui/gl/View.h>

#include <cstdio>

namespace examples
{

bool savePicture(gui::Application& app, gui::gl::View& view, const std::filesystem::path& file)
{
    gui::Texture picture;
    bool isRead = false;
    view.readFrameFrameBuffer(picture, [&isRead] { isRead = true; });
    while (!isRead && app.step(1))
        ;
    if (!isRead)
        return false;           // the program ends
    picture.mirrorVertically(); // the first row that was read is the bottom
    for (int i = 0; i < picture.getWidth() * picture.getHeight(); ++i)
        picture.getBytes()[4 * i + 3] = 255; // what blending left of the alpha means nothing

    std::error_code error;
    std::filesystem::create_directories(file.parent_path(), error);
    if (!picture.saveToFile(file.c_str()))
    {
        std::fprintf(stderr, "cannot write %s\n", file.c_str());
        return false;
    }
    std::puts(file.c_str());
    return true;
}

} // namespace examples
