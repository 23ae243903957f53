// A window with a triangle whose colours blend from corner to corner.
#include <gui/Application.h>
#include <gui/Window.h>
#include <gui/gl/gl.h>
using namespace gui::gl;

class TriangleView : public View
{
    Color2DProgram _program;
    Buffer _buffer;

    void onInit() override
    {
        const float corners[] = {-0.7f, -0.6f, 1.0f, 0.4f, 0.3f, 1.0f, // x, y, red, green, blue, alpha
                                 +0.7f, -0.6f, 0.3f, 0.8f, 0.4f, 1.0f, //
                                 +0.0f, +0.7f, 0.3f, 0.5f, 1.0f, 1.0f};
        _buffer.init(1, 3, 0, {DataType::Vec2, DataType::Vec4});
        _buffer.appendVertices(corners, 3);
        Command* pCommand = _buffer.createCommand();
        pCommand->createDrawArrays(Primitive::Triangles, 0, 3);
        if (_program.link() && _buffer.encode(pCommand) && _buffer.commit())
            _program.setBuffer(&_buffer);
    }
    void onDraw(const td::RectNormalized<double>&) override
    {
        Context::clear(td::ColorID::White);
        Context::clear(Context::Clear::Color);
        _program.activate();
        _program.execute();
    }
};
int main(int argc, char** argv)
{
    gui::Application app(argc, argv);
    TriangleView view;
    view.createContext({DepthBuffer::Size::None, StencilBuffer::Size::None, Context::Profile::Core41});
    gui::Window window("Hello", {640, 400});
    return window.show(view) ? app.run() : 1;
}
