// Where text stands: the position, the size that addString returns, alignments, lines, scales, and what a font lacks.
#include <gui/Application.h>
#include <gui/gl/gl.h>

#include <glm/gtc/matrix_transform.hpp>

#include <string>

using namespace gui::gl;

namespace
{

class TypeView : public View
{
protected:
    void onInit() override
    {
        _program.link();
        _text.init(_size, Textures::Unit::T0);
        _text.allocFonts(3);
        _text.loadFont(0, ":small.font");
        _text.loadFont(1, ":large.font");
        _text.loadFont(2, ":small-twice.font");
        layOut();
    }

    void onResize(const td::Size<double>& size) override
    {
        _size = size;
        _text.setFrameSize(size);
        layOut();
    }

    void onDraw(const td::RectNormalized<double>&) override
    {
        const glm::mat4 points =
            glm::ortho(0.0F, static_cast<float>(_size.width), static_cast<float>(_size.height), 0.0F);
        Context::clear(Context::Clear::Color, td::ColorID::MidnightBlue);
        _program.draw(_boxes, points);
        _text.render(Text::Ctrl::BlendNoDepthTest);
    }

private:
    void layOut()
    {
        _boxes.reset();
        for (unsigned char i = 0; i < 3; ++i)
            _text.getFont(i)->reset();

        addBoxed({30, 40}, "Typography", {.scale = 0.5F, .colorID = td::ColorID::White});
        note({30, 100}, "The dot is the position,\nthe box what addString returns.");

        const float middle = 330;
        addBoxed({middle, 30}, "left", {.scale = 0.25F, .colorID = td::ColorID::Gold});
        addBoxed({middle, 60}, "centre", {.scale = 0.25F, .colorID = td::ColorID::Gold, .hAlignment = Font::cCentre});
        addBoxed({middle, 90}, "right", {.scale = 0.25F, .colorID = td::ColorID::Gold, .hAlignment = Font::cRight});
        note({middle - 60, 130}, "The position is an end\nof each line, or its middle.");

        Font& font = *_text.getFont(1);
        font.setSpaceBetweenLines(30);
        addBoxed({450, 30}, "Lines of\none string", {.scale = 0.25F, .colorID = td::ColorID::LightSkyBlue});
        font.setSpaceBetweenLines(1);
        note({450, 100}, "setSpaceBetweenLines\nsays how far apart they are.");

        showSizes();
        note({330, 205}, "Greek was not baked into this font:");
        _text.getFont(0)->addString({330, 230}, "Greek: \u0395\u03bb\u03bb\u03ac\u03b4\u03b1",
                                    {.colorID = td::ColorID::Salmon});
        note({330, 255}, "a character that it lacks shows its last one.");
    }

    // Whether letters are sharp depends on the screen's scale too.
    void showSizes()
    {
        _text.getFont(0)->addString({30, 190}, "14 pixels at scale 1", {.colorID = td::ColorID::White});
        _text.getFont(2)->addString({30, 213}, "28 pixels at scale 0.5",
                                    {.scale = 0.5F, .colorID = td::ColorID::White});
        _text.getFont(0)->addString({30, 236}, "14 pixels at 2", {.scale = 2, .colorID = td::ColorID::White});
    }

    void addBoxed(const td::Point<float>& position, const char* text, const Font::_format& format)
    {
        const td::Size<float> size = _text.getFont(1)->addString(position, td::String(text), format);
        float left = position.x;
        if (format.hAlignment == Font::cCentre)
            left -= size.width / 2;
        else if (format.hAlignment == Font::cRight)
            left -= size.width;
        const td::Point<float> box[] = {{left, position.y},
                                        {left + size.width, position.y},
                                        {left + size.width, position.y + size.height},
                                        {left, position.y + size.height}};
        _triang.triangulateLine(&_boxes, box, 0.5F, true, td::ColorID::SteelBlue);
        Triang2D::Points dot;
        generateSymPolygon({position, 3}, 16, dot);
        _triang.triangulate(&_boxes, {dot.begin(), dot.size()}, td::ColorID::Tomato);
    }

    void note(const td::Point<float>& position, const char* text)
    {
        _text.getFont(2)->addString(position, td::String(text),
                                    {.scale = 0.43F, .colorID = td::ColorID::LightSteelBlue});
    }

    Text _text;
    Flat2DProgram _program;
    Buffer _boxes{DataType::Vec2};
    Triang2D _triang{8};
    td::Size<double> _size{640, 290};
};

} // namespace

int main(int argc, char** argv)
{
    gui::Application app(argc, argv);
    TypeView view;
    view.createContext({DepthBuffer::Size::None, StencilBuffer::Size::None, Context::Profile::Core41});
    return app.run(view, "Text", {640, 290});
}
