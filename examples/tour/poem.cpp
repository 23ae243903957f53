// A poem: two fonts, colours, alignments, and a line as long as the title.
#include <gui/Application.h>
#include <gui/gl/gl.h>

#include <glm/ext/matrix_clip_space.hpp>

using namespace gui::gl;

class PoemView : public View
{
    Text _text;
    Flat2DProgram _program;
    Buffer _rule{DataType::Vec2};
    td::Size<double> _size{640, 400};

    void onInit() override
    {
        _text.init(_size, Textures::Unit::T0);
        _text.allocFonts(2);
        _text.loadFont(0, ":title.font");
        _text.loadFont(1, ":verse.font");
        _program.link();
        layOut();
    }

    void onResize(const td::Size<double>& size) override
    {
        _size = size;
        _text.setFrameSize(size);
        layOut();
    }

    void layOut()
    {
        const auto width = static_cast<float>(_size.width);
        Font* pTitle = _text.getFont(0);
        pTitle->reset();
        const td::Size<float> title = pTitle->addString({40, 30}, "The Eagle", td::ColorID::Gold, 1);

        Font* pVerse = _text.getFont(1);
        pVerse->reset();
        pVerse->setSpaceBetweenLines(6);
        pVerse->addString({40, 110},
                          "He clasps the crag with crooked hands;\n"
                          "Close to the sun in lonely lands,\n"
                          "Ring'd with the azure world, he stands.",
                          {.colorID = td::ColorID::White});
        pVerse->addString({width - 40, 230},
                          "The wrinkled sea beneath him crawls;\n"
                          "He watches from his mountain walls,\n"
                          "And like a thunderbolt he falls.",
                          {.colorID = td::ColorID::LightSkyBlue, .hAlignment = Font::cRight});
        pVerse->addString({width / 2, 350}, "Alfred Tennyson, 1851",
                          {.colorID = td::ColorID::DarkGray, .hAlignment = Font::cCentre});

        const td::Point<float> rule[] = {{40, 90}, {40 + title.width, 90}};
        _rule.reset();
        Triang2D(4).triangulateLine(&_rule, rule, 1, false, td::ColorID::Goldenrod);
    }

    void onDraw(const td::RectNormalized<double>&) override
    {
        Context::clear(Context::Clear::Color, td::ColorID::Gray12);
        const auto width = static_cast<float>(_size.width), height = static_cast<float>(_size.height);
        _program.draw(_rule, glm::ortho(0.0F, width, height, 0.0F));
        _text.render(Text::Ctrl::BlendNoDepthTest);
    }
};

int main(int argc, char** argv)
{
    gui::Application app(argc, argv);
    PoemView view;
    view.createContext({DepthBuffer::Size::None, StencilBuffer::Size::None, Context::Profile::Core41});
    return app.run(view, "Poem", {640, 400});
}
