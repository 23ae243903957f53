// A plane with a crown and its name. Shift and a drag pan it, Ctrl and the wheel zoom it.
#include <gui/Application.h>
#include <gui/gl/gl.h>
using namespace gui::gl;
class CrownView : public OrthoView
{
    Flat2DProgram _program;
    Buffer _buffer{DataType::Vec2}; // x, y
    Text _text;
    void onInit() override
    {
        const td::Point<float> crown[] = {{70, 200}, {330, 200}, {360, 60}, {260, 95}, {200, 40}, {140, 95}, {40, 60}};
        Triang2D(7).triangulate(&_buffer, crown, td::ColorID::Gold);
        _program.link();
        _text.init(":sans.font").addString({200, 145}, "Crown", {.scale = 0.5F, .hAlignment = Font::cCentre});
    }
    void onDraw(const td::RectNormalized<double>&) override
    {
        Context::clear(Context::Clear::Color, td::ColorID::MidnightBlue);
        _program.draw(_buffer, getProjection());
        _text.render(Text::Ctrl::BlendNoDepthTest, getProjection());
    }
};
int main(int argc, char** argv)
{
    gui::Application app(argc, argv);
    CrownView view;
    view.createContext(true);
    return app.run(view, "Crown", {400, 250});
}
