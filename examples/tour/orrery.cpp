// Planets on their way around the sun, on the display's clock.
#include <gui/Application.h>
#include <gui/gl/gl.h>

#include <glm/ext/matrix_clip_space.hpp>
#include <glm/ext/matrix_transform.hpp>

#include <chrono>
#include <cmath>

using namespace gui::gl;

struct Planet
{
    td::ColorID color;
    float size;
    float distance;
    float turnsPerSecond;
    float start; // of a turn
};

constexpr Planet cPlanets[] = {{td::ColorID::Orange, 34, 0, 0, 0},
                               {td::ColorID::DarkGray, 6, 60, 0.41F, 0.1F},
                               {td::ColorID::Wheat, 10, 90, 0.16F, 0.65F},
                               {td::ColorID::DeepSkyBlue, 11, 125, 0.1F, 0.95F},
                               {td::ColorID::OrangeRed, 8, 160, 0.053F, 0.4F}};

class OrreryView : public View
{
    Flat2DProgram _program;
    Buffer _disc{DataType::Vec2};
    Buffer _orbit{DataType::Vec2};
    Command* _pDisc = nullptr;
    glm::mat4 _projection{1};
    std::chrono::steady_clock::time_point _start;

    void onInit() override
    {
        _program.link();
        Triang2D::Points corners;
        generateSymPolygon({{0, 0}, 1}, 120, corners);
        _pDisc = Triang2D(120).triangulate(&_disc, corners, td::ColorID::White);
        if (Command* pOrbit = _orbit.appendShape(Primitive::LineLoop, &corners.begin()->x, corners.size()))
            pOrbit->setColor(td::ColorID::DimGray);
        _start = std::chrono::steady_clock::now();
        startAnimation();
    }

    bool prepareNextFrame() override { return true; } // there is always a next one

    void onResize(const td::Size<double>& size) override
    {
        const auto width = static_cast<float>(size.width), height = static_cast<float>(size.height);
        _projection = glm::ortho(-width / 2, width / 2, -height / 2, height / 2);
    }

    void onDraw(const td::RectNormalized<double>&) override
    {
        const std::chrono::duration<float> time = std::chrono::steady_clock::now() - _start;
        Context::clear(Context::Clear::Color, td::ColorID::Gray6);
        for (const Planet& planet : cPlanets)
        {
            const float angle = 6.2831853F * (planet.start + planet.turnsPerSecond * time.count());
            const glm::vec3 place(planet.distance * std::cos(angle), planet.distance * std::sin(angle), 0);
            _program.draw(_orbit, glm::scale(_projection, glm::vec3(planet.distance)));
            _pDisc->setColor(planet.color);
            _program.draw(_disc, glm::scale(glm::translate(_projection, place), glm::vec3(planet.size)));
        }
    }
};

int main(int argc, char** argv)
{
    gui::Application app(argc, argv);
    OrreryView view;
    view.createContext({DepthBuffer::Size::None, StencilBuffer::Size::None, Context::Profile::Core41});
    return app.run(view, "Orrery", {640, 400});
}
