// A window with a triangle whose colours blend from corner to corner.
#include <gui/Application.h>
#include <gui/gl/gl.h>
using namespace gui::gl;

class TriangleView : public View
{
    Color2DProgram _program;
    Buffer _buffer{DataType::Vec2, DataType::Vec4}; // x, y; red, green, blue, alpha
    void onInit() override
    {
        const float corners[] = {-0.7f, -0.6f, 1.0f, 0.4f, 0.3f, 1.0f, //
                                 +0.7f, -0.6f, 0.3f, 0.8f, 0.4f, 1.0f, //
                                 +0.0f, +0.7f, 0.3f, 0.5f, 1.0f, 1.0f};
        _buffer.appendShape(Primitive::Triangles, corners, 3);
        _program.link();
    }
    void onDraw(const td::RectNormalized<double>&) override
    {
        Context::clear(Context::Clear::Color, td::ColorID::White);
        _program.draw(_buffer);
    }
};
int main(int argc, char** argv)
{
    gui::Application app(argc, argv);
    TriangleView view;
    view.createContext({DepthBuffer::Size::None, StencilBuffer::Size::None, Context::Profile::Core41});
    return app.run(view, "Hello", {640, 400});
}
