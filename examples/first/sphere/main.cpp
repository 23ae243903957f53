// A ball in the evening, to fly around: keys w, a, s and d, the wheel, and Ctrl with the wheel.
#include <gui/Application.h>
#include <gui/gl/gl.h>
using namespace gui::gl;

class BallView : public CameraView
{
    Camera _camera{{0, 0, 4}};
    Lit3DProgram _program;
    Buffer _buffer{DataType::Vec3, DataType::Vec3}; // position, normal
    SkyBox _sky;
    static glm::vec3 dusk(const glm::vec3& ray) { return {0.9F - 4 * ray.y * ray.y, 0.5F - 2 * ray.y * ray.y, 0.4F}; }
    void onInit() override
    {
        _buffer.addSphere(1, 64, 32, Texture::Type::CubeMap)->setColor(td::ColorID::Linen);
        _program.link();
        _sky.init(&_perspective, &_camera, 256, dusk);
        setCamera(&_camera);
    }
    void onDraw(const td::RectNormalized<double>&) override
    {
        Context::clear({Context::Clear::Color, Context::Clear::Depth});
        Context::enable(Context::Flag::DepthTest);
        Context::setDepthBufferFunction(DepthBuffer::Function::LessOrEqual);
        _program.draw(_buffer, _perspective * getCameraMatrix());
        _sky.render(false);
    }
};
int main(int argc, char** argv)
{
    gui::Application app(argc, argv);
    BallView view;
    view.createContext({DepthBuffer::Size::Bits24, StencilBuffer::Size::None, Context::Profile::Core41});
    return app.run(view, "Ball", {640, 400});
}
