// One place in points, device pixels, model units and clip space: draws a ruler of each, and prints where a click is.
#include <gui/Application.h>
#include <gui/Window.h>
#include <gui/gl/gl.h>

#include <glm/gtc/matrix_transform.hpp>
#include <glm/vec4.hpp>

#include <cstdio>
#include <initializer_list>
#include <string>

using namespace gui::gl;

namespace
{

constexpr td::Point<float> cSail[] = {{90, 20}, {150, 20}, {120, 90}};

class RulerView : public OrthoView
{
public:
    // @param point  in points of the view, as events have it
    std::string describe(const td::Point<double>& point) const
    {
        td::Size<double> size;
        getSize(size);
        const double scale = static_cast<double>(getPixelHiDPIScale());
        const td::Point<double> pixel{point.x * scale, (size.height - point.y) * scale};
        const td::Point<double> model = getModelPoint(point);
        const glm::vec4 clip = getProjection() * glm::vec4(model.x, model.y, 0, 1);

        char text[160];
        std::snprintf(text, sizeof(text), "points %g, %g\npixels %g, %g\nmodel %g, %g\nclip %.2f, %.2f", point.x,
                      point.y, pixel.x, pixel.y, model.x, model.y, static_cast<double>(clip.x),
                      static_cast<double>(clip.y));
        return text;
    }

    // Where a place of the model is seen, in points of the view.
    td::Point<double> toView(const td::Point<float>& model) const
    {
        td::Size<double> size;
        getSize(size);
        const glm::vec4 clip = getProjection() * glm::vec4(model.x, model.y, 0, 1);
        return {(static_cast<double>(clip.x) + 1) / 2 * size.width,
                (1 - static_cast<double>(clip.y)) / 2 * size.height};
    }

protected:
    void onInit() override
    {
        setZoom(2.5);
        setModelRefPoint({-50, -20});
        _program.link();
        _text.init(":ruler.font");
    }

    void onResize(const td::Size<double>& size) override
    {
        OrthoView::onResize(size);
        _text.setFrameSize(size);
        _size = {static_cast<float>(size.width), static_cast<float>(size.height)};
    }

    void onPrimaryButtonPressed(const gui::InputDevice& device) override
    {
        OrthoView::onPrimaryButtonPressed(device);
        std::puts(describe(device.getFramePoint()).c_str());
    }

    void onDraw(const td::RectNormalized<double>&) override
    {
        layOut();
        Context::clear(Context::Clear::Color, td::ColorID::Gray9);
        _program.draw(_model, getProjection());                                    // model units
        _program.draw(_clip, glm::mat4(1));                                        // clip space
        _program.draw(_points, glm::ortho(0.0F, _size.width, _size.height, 0.0F)); // points
        _text.render(Text::Ctrl::BlendNoDepthTest);                                // points
    }

private:
    // Each in its own units; all of them meet on the screen.
    void layOut()
    {
        _text.getFont(0)->reset();
        _model.reset();
        for (int i = 0; i <= 8; ++i)
        {
            const auto at = static_cast<float>(20 * i);
            addLine(_model, {at, 0}, {at, 100}, 0.15F, td::ColorID::SteelBlue);
            if (i <= 5)
                addLine(_model, {0, at}, {160, at}, 0.15F, td::ColorID::SteelBlue);
        }
        _triang.triangulate(&_model, cSail, td::ColorID::DodgerBlue);
        write(toView({0, 0}), {-70, 2}, "model 0, 0", td::ColorID::LightSkyBlue);
        write(toView({160, 100}), {4, -8}, "160, 100", td::ColorID::LightSkyBlue);

        _clip.reset();
        addLine(_clip, {-1, 0}, {1, 0}, 0.002F, td::ColorID::LightGreen);
        addLine(_clip, {0, -1}, {0, 1}, 0.001F, td::ColorID::LightGreen);
        const double right = static_cast<double>(_size.width);
        const double bottom = static_cast<double>(_size.height);
        write({right / 2, bottom / 2}, {-64, 3}, "clip 0, 0", td::ColorID::LightGreen);
        write({right, bottom / 2}, {-40, 3}, "1, 0", td::ColorID::LightGreen);
        write({right / 2, 0}, {6, 30}, "0, 1", td::ColorID::LightGreen);

        _points.reset();
        addRulers(static_cast<double>(getPixelHiDPIScale()));
        const td::Point<double> tip = toView(cSail[2]);
        Triang2D::Points dot;
        generateSymPolygon({{static_cast<float>(tip.x), static_cast<float>(tip.y)}, 4}, 24, dot);
        _triang.triangulate(&_points, {dot.begin(), dot.size()}, td::ColorID::White);
        write(tip, {32, -12}, describe(tip).c_str(), td::ColorID::White);
    }

    // In points from the top left corner, and in device pixels from the bottom left one.
    void addRulers(double pixelsPerPoint)
    {
        for (int at = 100; static_cast<float>(at) < _size.width; at += 100)
        {
            const auto x = static_cast<float>(at);
            addLine(_points, {x, 0}, {x, 10}, 0.5F, td::ColorID::Gold);
            write({at * 1.0, 0}, {-10, 12}, std::to_string(at).c_str(), td::ColorID::Gold);
            addLine(_points, {x, _size.height}, {x, _size.height - 10}, 0.5F, td::ColorID::Salmon);
            const std::string pixel = std::to_string(static_cast<int>(at * pixelsPerPoint));
            write({at * 1.0, static_cast<double>(_size.height)}, {-10, -26}, pixel.c_str(), td::ColorID::Salmon);
        }
        for (int at = 100; static_cast<float>(at) < _size.height; at += 100)
        {
            const auto y = static_cast<float>(at);
            addLine(_points, {0, y}, {10, y}, 0.5F, td::ColorID::Gold);
            write({0, at * 1.0}, {13, -8}, std::to_string(at).c_str(), td::ColorID::Gold);
            addLine(_points, {_size.width, _size.height - y}, {_size.width - 10, _size.height - y}, 0.5F,
                    td::ColorID::Salmon);
            const std::string pixel = std::to_string(static_cast<int>(at * pixelsPerPoint));
            write({static_cast<double>(_size.width), static_cast<double>(_size.height - y)}, {-42, -8}, pixel.c_str(),
                  td::ColorID::Salmon);
        }
        write({0, 0}, {12, 12}, "points", td::ColorID::Gold);
        write({0, static_cast<double>(_size.height)}, {12, -26}, "pixels", td::ColorID::Salmon);
    }

    void addLine(Buffer& buffer, const td::Point<float>& from, const td::Point<float>& to, float width,
                 td::ColorID color)
    {
        const td::Point<float> ends[] = {from, to};
        _triang.triangulateLine(&buffer, ends, width, false, color);
    }

    void write(const td::Point<double>& at, const td::Point<float>& beside, const char* text, td::ColorID color)
    {
        const td::Point<float> place{static_cast<float>(at.x) + beside.x, static_cast<float>(at.y) + beside.y};
        _text.getFont(0)->addString(place, td::String(text), {.scale = 0.5F, .colorID = color});
    }

    Flat2DProgram _program;
    Buffer _model{DataType::Vec2};
    Buffer _clip{DataType::Vec2};
    Buffer _points{DataType::Vec2};
    Triang2D _triang{8};
    Text _text;
    td::Size<float> _size;
};

} // namespace

int main(int argc, char** argv)
{
    gui::Application app(argc, argv);
    RulerView view;
    view.createContext(false);
    gui::Window window("Coordinates", {640, 360});
    window.show(view);
    std::puts(view.describe(view.toView(cSail[2])).c_str());
    return app.run();
}
