// Draws a picture without a window: postcard FILE.png
#include <gui/Texture.h>
#include <gui/gl/gl.h>

#include <cstdio>

using namespace gui::gl;

int main(int argc, char** argv)
{
    OffscreenContext context({640, 400},
                             {DepthBuffer::Size::None, StencilBuffer::Size::None, Context::Profile::Core41});
    if (argc != 2 || !context.isOk())
    {
        std::fputs("postcard FILE.png, on a machine with a GL driver\n", stderr);
        return 1;
    }

    const float corners[] = {-1, -1, 0.10F, 0.05F, 0.20F, 1, //
                             +1, -1, 0.35F, 0.10F, 0.25F, 1, //
                             -1, +1, 0.95F, 0.55F, 0.25F, 1, //
                             +1, +1, 1.00F, 0.85F, 0.45F, 1};
    const td::Point<float> hills[] = {{-1, -1},       {1, -1},        {1, -0.1F},     {0.6F, 0.1F}, {0.3F, -0.2F},
                                      {-0.1F, 0.25F}, {-0.4F, -0.1F}, {-0.7F, 0.05F}, {-1, -0.3F}};
    Buffer sky{DataType::Vec2, DataType::Vec4}, land{DataType::Vec2};
    sky.appendShape(Primitive::TriangleStrip, corners, 4);
    Triang2D(9).triangulate(&land, hills, td::ColorID::MidnightBlue);

    Color2DProgram blended;
    Flat2DProgram flat;
    if (!blended.link() || !flat.link())
        return 1;
    blended.draw(sky);
    flat.draw(land);

    gui::Texture picture;
    return context.readPixels(picture) && picture.saveToFile(argv[1]) ? 0 : 1;
}
