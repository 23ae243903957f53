// Tells what is called when, in the life of a view: requests for frames, an animation that ends, a frame that is read.
#include <gui/Application.h>
#include <gui/Texture.h>
#include <gui/Window.h>
#include <gui/gl/gl.h>

#include <glm/gtc/matrix_transform.hpp>

#include <cstdio>

using namespace gui::gl;

namespace
{

class DialView : public View
{
public:
    void turnTo(float degrees)
    {
        _angle = degrees;
        reDraw();
    }

    void swing()
    {
        _nFramesToGo = 3;
        startAnimation();
    }

    void takePicture()
    {
        _isPictureTaken = false;
        readFrameFrameBuffer(_picture,
                             [this]
                             {
                                 std::printf("  read: %d x %d pixels\n", _picture.getWidth(), _picture.getHeight());
                                 _isPictureTaken = true;
                             });
    }

    bool isBusy() const { return isAnimated() || !_isPictureTaken; }

protected:
    void onInit() override
    {
        std::puts("  onInit");
        const float hand[] = {-0.02F, 0, 0.02F, 0, 0, 0.8F};
        if (Command* pHand = _buffer.appendShape(Primitive::Triangles, hand, 3))
            pHand->setColor(td::ColorID::Crimson);
        _program.link();
    }

    void onResize(const td::Size<double>& size) override
    {
        std::printf("  onResize: %g x %g points\n", size.width, size.height);
    }

    bool prepareNextFrame() override
    {
        std::puts("  prepareNextFrame");
        _angle += 5;
        return --_nFramesToGo > 0;
    }

    void onDraw(const td::RectNormalized<double>&) override
    {
        std::printf("  onDraw: %g degrees\n", static_cast<double>(_angle));
        Context::clear(Context::Clear::Color, td::ColorID::Ivory);
        _program.draw(_buffer, glm::rotate(glm::mat4(1), glm::radians(_angle), glm::vec3(0, 0, 1)));
    }

    void cleanResources() override { std::puts("  cleanResources"); }

private:
    Flat2DProgram _program;
    Buffer _buffer{DataType::Vec2};
    gui::Texture _picture;
    float _angle = 0;
    int _nFramesToGo = 0;
    bool _isPictureTaken = true;
};

} // namespace

int main(int argc, char** argv)
{
    gui::Application app(argc, argv);
    DialView view;
    gui::Window window("Frames", {320, 200});
    const auto finish = [&app, &view]
    {
        while (app.step(0.05) && view.isBusy())
        {
        }
    };

    std::puts("createContext");
    view.createContext({DepthBuffer::Size::None, StencilBuffer::Size::None, Context::Profile::Core41});
    finish();
    std::puts("show");
    window.show(view);
    finish();
    std::puts("three changes");
    view.turnTo(10);
    view.turnTo(20);
    view.turnTo(30);
    finish();
    std::puts("an animation");
    view.swing();
    finish();
    std::puts("a frame to read");
    view.takePicture();
    finish();
    std::puts("nothing");
    finish();
    std::puts("another size");
    window.setSize({400, 200});
    finish();
    std::puts("close");
    window.close();
    return 0;
}
