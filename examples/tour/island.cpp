// An island to pan and zoom: a filled polygon, its coast, a road, and the names of two towns.
#include <gui/Application.h>
#include <gui/gl/gl.h>

#include <cmath>
#include <vector>

using namespace gui::gl;

class IslandView : public OrthoView
{
    Flat2DProgram _program;
    Buffer _buffer{DataType::Vec2};
    Text _text;

    static std::vector<td::Point<float>> makeCoast(int nPoints)
    {
        std::vector<td::Point<float>> coast;
        for (int i = 0; i < nPoints; ++i)
        {
            const float angle = 6.2831853F * static_cast<float>(i) / static_cast<float>(nPoints);
            const float radius = 1 + 0.12F * std::sin(3 * angle + 1) + 0.09F * std::cos(7 * angle);
            coast.push_back({320 + 220 * radius * std::cos(angle), 200 + 130 * radius * std::sin(angle)});
        }
        return coast;
    }

    void onInit() override
    {
        Triang2D triang(180);
        const std::vector<td::Point<float>> coast = makeCoast(180);
        triang.triangulate(&_buffer, coast, td::ColorID::DarkSeaGreen);

        // The coast runs through the corners that the buffer holds already.
        if (Command* pCommand = triang.createRecycledLine(&_buffer, Primitive::LineLoop, coast.data(), 0, 180))
            pCommand->setColor(td::ColorID::White);

        const td::Point<float> road[] = {{215, 190}, {265, 145}, {330, 160}, {390, 240}, {440, 250}};
        triang.triangulateLine(&_buffer, road, 3, false, td::ColorID::Moccasin);
        for (const td::Point<float>& town : {road[0], road[4]})
        {
            Triang2D::Points corners;
            generateSymPolygon({town, 8}, 24, corners);
            triang.triangulate(&_buffer, corners, td::ColorID::FireBrick);
        }
        _program.link();

        Font& font = _text.init(":sans.font");
        font.addString({215, 200}, "Westing", {.scale = 0.4F, .hAlignment = Font::cCentre});
        font.addString({440, 260}, "Easting", {.scale = 0.4F, .hAlignment = Font::cCentre});
    }

    void onDraw(const td::RectNormalized<double>&) override
    {
        Context::clear(Context::Clear::Color, td::ColorID::SteelBlue);
        _program.draw(_buffer, getProjection());
        _text.render(Text::Ctrl::BlendNoDepthTest, getProjection());
    }
};

int main(int argc, char** argv)
{
    gui::Application app(argc, argv);
    IslandView view;
    view.createContext(true); // y grows downwards, so text stands upright
    return app.run(view, "Island", {640, 400});
}
