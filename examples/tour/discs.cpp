// Three discs that shine through each other: recorded commands, each with a colour that has an alpha.
#include <gui/Application.h>
#include <gui/gl/gl.h>

#include <glm/ext/matrix_clip_space.hpp>

using namespace gui::gl;

class DiscsView : public View
{
    Flat2DProgram _program;
    Buffer _buffer;
    glm::mat4 _projection{1};

    void addDisc(const td::Point<float>& middle, td::ColorID color)
    {
        Triang2D::Points corners;
        generateSymPolygon({middle, 110}, 120, corners);

        Command* pDisc = _buffer.createCommand();
        pDisc->createDrawArrays(Primitive::TriangleFan, _buffer.getNoOfVertices(), 120);
        pDisc->setColor(color, 0.6);
        _buffer.encode(pDisc);
        _buffer.appendVertices(corners);
    }

    void onInit() override
    {
        _program.link(Flat2DProgram::Colors::WithAlpha);
        _buffer.init(3, 360, 0, {DataType::Vec2}); // room for three commands, 360 vertices, no indices
        addDisc({320, 135}, td::ColorID::Tomato);
        addDisc({255, 245}, td::ColorID::Gold);
        addDisc({385, 245}, td::ColorID::DodgerBlue);
        _buffer.commit();
    }

    void onResize(const td::Size<double>& size) override
    {
        const auto width = static_cast<float>(size.width);
        const auto height = static_cast<float>(size.height);
        _projection = glm::ortho(0.0F, width, height, 0.0F);
    }

    void onDraw(const td::RectNormalized<double>&) override
    {
        Context::clear(Context::Clear::Color, td::ColorID::GhostWhite);
        Context::enable(Context::Flag::Blend);
        Context::setBlendFunction(Blend::Factor::SrcAlpha, Blend::Factor::OneMinusSrcAlpha);
        _program.draw(_buffer, _projection);
        Context::disable(Context::Flag::Blend);
    }
};

int main(int argc, char** argv)
{
    gui::Application app(argc, argv);
    DiscsView view;
    view.createContext({DepthBuffer::Size::None, StencilBuffer::Size::None, Context::Profile::Core41});
    return app.run(view, "Discs", {640, 400});
}
