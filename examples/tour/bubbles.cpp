// Soap bubbles before a pattern: an image that repeats, and one with alpha.
#include <gui/Application.h>
#include <gui/Texture.h>
#include <gui/gl/gl.h>

using namespace gui::gl;

class BubblesView : public OrthoView
{
    Texture2DProgram _program;
    Textures _textures;
    Buffer _buffer{DataType::Vec2, DataType::Vec2}; // position, and place in the image

    // The image as many times as said from left to right and from top to bottom.
    void addImage(char index, float left, float top, float width, float height, float timesX, float timesY)
    {
        const float right = left + width, bottom = top + height;
        const float corners[] = {left,  top,    0,      0,      //
                                 right, top,    timesX, 0,      //
                                 left,  bottom, 0,      timesY, //
                                 right, bottom, timesX, timesY};
        if (Command* pImage = _buffer.appendShape(Primitive::TriangleStrip, corners, 4))
            pImage->setTexture(Textures::Unit::T0, index);
    }

    void onInit() override
    {
        gui::Texture scales, bubble;
        if (!scales.loadFromFile(":scales.png") || !bubble.loadFromFile(":bubble.png"))
            return;
        _textures.append({&scales, &bubble}, Texture::Type::Tex2D);
        addImage(0, 0, 0, 640, 400, 2.5F, 3.125F);
        addImage(1, 60, 40, 280, 280, 1, 1);
        addImage(1, 320, 150, 200, 200, 1, 1);
        addImage(1, 470, 60, 120, 120, 1, 1);
        _program.link();
        _program.setTextures(&_textures);
    }

    void onDraw(const td::RectNormalized<double>&) override
    {
        Context::clear(Context::Clear::Color, td::ColorID::Black);
        Context::enable(Context::Flag::Blend);
        Context::setBlendFunction(Blend::Factor::SrcAlpha, Blend::Factor::OneMinusSrcAlpha);
        _program.draw(_buffer, getProjection());
        Context::disable(Context::Flag::Blend);
    }
};

int main(int argc, char** argv)
{
    gui::Application app(argc, argv);
    BubblesView view;
    view.createContext(true);
    return app.run(view, "Bubbles", {640, 400});
}
