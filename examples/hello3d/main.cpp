// A lit ball under a sky, to fly around: keys w, a, s, d, the wheel, Ctrl and the wheel.
#include <gui/Application.h>
#include <gui/gl/gl.h>
using namespace gui::gl;

class BallView : public CameraView
{
    Camera _camera{{0, 0.3f, 4}};
    Lit3DProgram _program;
    Buffer _buffer{DataType::Vec3, DataType::Vec3}; // position, normal
    Textures _textures;
    SkyBox _sky;
    void onInit() override
    {
        Command* ball = _buffer.addSphere(1, 64, 32, Texture::Type::CubeMap);
        ball->setColor(td::ColorID::Tomato);
        _buffer.encode(ball);
        _program.link();
        _textures.appendCubeMap({":left.png", ":back.png", ":right.png", ":front.png", ":top.png", ":bottom.png"});
        _sky.init(&_perspective, _textures.getID(0), Textures::Unit::T0);
        _sky.setCamera(&_camera);
        _sky.commit(1);
        setCamera(&_camera);
    }
    void onDraw(const td::RectNormalized<double>&) override
    {
        Context::clear({Context::Clear::Color, Context::Clear::Depth});
        const glm::mat4 toClip = _perspective * getCameraMatrix();
        _sky.render(true); // without the depth test: behind all that follows
        Context::enable(Context::Flag::DepthTest);
        _program.draw(_buffer, toClip);
    }
};
int main(int argc, char** argv)
{
    gui::Application app(argc, argv);
    BallView view;
    view.createContext({DepthBuffer::Size::Bits24, StencilBuffer::Size::None, Context::Profile::Core41});
    return app.run(view, "Ball", {640, 400});
}
