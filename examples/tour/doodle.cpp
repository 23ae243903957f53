// A sheet to draw on. Drag to draw, turn the wheel for a thicker pen; C clears, Escape ends, S saves a picture.
#include <gui/Application.h>
#include <gui/InputDevice.h>
#include <gui/Key.h>
#include <gui/Texture.h>
#include <gui/gl/gl.h>

#include <vo/Log.h>

#include <algorithm>
#include <cmath>
#include <vector>

using namespace gui::gl;

class DoodleView : public OrthoView
{
    struct Stroke
    {
        std::vector<td::Point<float>> points;
        float width;
    };

    Flat2DProgram _program;
    Buffer _buffer{DataType::Vec2};
    Triang2D _triang{100};
    std::vector<Stroke> _strokes;
    gui::Texture _picture;
    float _width = 4;

    void onInit() override
    {
        _program.link();
        Stroke spiral{{}, _width};
        for (int i = 0; i < 250; ++i)
        {
            const float angle = 0.1F * static_cast<float>(i);
            spiral.points.push_back({320 + 7 * angle * std::cos(angle), 200 + 7 * angle * std::sin(angle)});
        }
        _strokes.push_back(spiral);
        refill();
    }

    void refill()
    {
        _buffer.reset();
        for (const Stroke& stroke : _strokes)
        {
            if (stroke.points.size() > 1)
                _triang.triangulateLine(&_buffer, stroke.points, stroke.width, false, td::ColorID::MidnightBlue);
        }
        reDraw();
    }

    void addPoint(const gui::InputDevice& device)
    {
        const td::Point<double> point = getModelPoint(device.getFramePoint());
        _strokes.back().points.push_back({static_cast<float>(point.x), static_cast<float>(point.y)});
        refill();
    }

    void onPrimaryButtonPressed(const gui::InputDevice& device) override
    {
        _strokes.push_back({{}, _width});
        addPoint(device);
    }

    void onCursorDragged(const gui::InputDevice& device) override { addPoint(device); }

    bool onScroll(const gui::InputDevice& device) override
    {
        const double change = device.getFramePoint().y / 10;
        _width = static_cast<float>(std::clamp(static_cast<double>(_width) + change, 1.0, 40.0));
        return true;
    }

    bool onKeyPressed(const gui::Key& key) override
    {
        if (key.getVirtual() == gui::Key::Virtual::Escape)
            gui::Application::quit();
        else if (key.getChar() == 'c')
            _strokes = {{{}, _width}};
        else if (key.getChar() == 's')
            savePicture();
        else
            return OrthoView::onKeyPressed(key); // zooms by Ctrl-plus and Ctrl-minus
        refill();
        return true;
    }

    void savePicture()
    {
        readFrameFrameBuffer(_picture,
                             [this]
                             {
                                 _picture.mirrorVertically(); // GL's first row is the bottom one
                                 if (_picture.saveToFile("doodle.png"))
                                     vo::dbgLog("Saved doodle.png");
                             });
    }

    void onDraw(const td::RectNormalized<double>&) override
    {
        Context::clear(Context::Clear::Color, td::ColorID::Cornsilk);
        _program.draw(_buffer, getProjection());
    }
};

int main(int argc, char** argv)
{
    gui::Application app(argc, argv);
    DoodleView view;
    view.createContext(true);
    return app.run(view, "Doodle", {640, 400});
}
