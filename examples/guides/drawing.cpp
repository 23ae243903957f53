// An island to pan and zoom: fills, strokes and names, a mill in a group, and the shape under the pointer in another
// colour. With the argument "offscreen" it writes island.png instead, without a view.
#include <gui/Application.h>
#include <gui/InputDevice.h>
#include <gui/draw/draw.h>
#include <gui/gl/gl.h>

#include <cstring>

using namespace gui::draw;

namespace
{

// The island's parts that change later.
struct Island
{
    Drawing::ID land = 0;
    Drawing::ID mill = 0;
};

Island addIsland(Drawing& drawing)
{
    Island island;

    const Path coast = Path::fromSVG("M60 210C60 110 180 60 300 55S590 110 585 215S450 350 320 350S60 310 60 210Z");
    const Path lagoon = Path::fromSVG("M370 240C370 195 430 180 470 200S520 275 470 295S370 285 370 240Z");
    island.land = drawing.fill(Path(coast).addPath(lagoon), "#d9c58b", FillRule::EvenOdd);
    drawing.stroke(coast, {.width = 3}, "#fff4d0");
    drawing.stroke(lagoon, {.width = 1.5}, "#fff4d0");

    const Path road = Path::fromSVG("M110 230C170 300 260 300 290 240S400 90 530 150");
    drawing.stroke(road, {.width = 12, .unit = Unit::Model, .cap = Cap::Round, .join = Join::Round}, "#8a6f47");
    drawing.stroke(road, {.width = 1.5, .dashes = {8, 6}}, "#fff4d0");

    Path houses;
    for (const double x : {120, 150, 180})
        houses.addRect({x, 170, x + 20, 190});
    drawing.fill(houses, td::ColorID::FireBrick);

    island.mill = drawing.beginGroup(Affine::translation(240, 160));
    drawing.fill(Path().addCircle({0, 0}, 12), "#5b4a33");
    for (const double angle : {0.4, 1.97, 3.54, 5.11})
    {
        const Drawing::ID blade = drawing.fill(Path::fromSVG("M-3 0L-8-46H8L3 0Z"), "#ffffffc0");
        drawing.setTransform(blade, Affine::rotation(angle));
    }
    drawing.endGroup();

    drawing.text({437, 243}, "Lagoon", {.size = 16, .paint = "#ffffff"}, {.anchor = Anchor::Center});
    drawing.text({240, 208}, "Old mill", {.size = 14, .halo = {2, "#d9c58b"}}, {.anchor = Anchor::Top});
    return island;
}

class IslandView : public gui::gl::OrthoView
{
    Drawing _drawing;
    Island _island = addIsland(_drawing);
    double _angle = 0;

    void onDraw(const td::RectNormalized<double>&) override
    {
        gui::gl::Context::clear(gui::gl::Context::Clear::Color, td::ColorID::SteelBlue);
        _drawing.draw(*this);
    }

    void onCursorMoved(const gui::InputDevice& device) override
    {
        const td::Point<double> place = getModelPoint(device.getFramePoint());
        const Drawing::ID hit = _drawing.pick(place, 2 / getZoom());
        _drawing.setColor(_island.land, hit == _island.land ? "#ecdca8" : "#d9c58b");
        reDraw();
    }

    void onPrimaryButtonPressed(const gui::InputDevice& device) override
    {
        _angle += 0.2;
        _drawing.setTransform(_island.mill, Affine::translation(240, 160) * Affine::rotation(_angle));
        reDraw();
        OrthoView::onPrimaryButtonPressed(device);
    }
};

bool saveIsland(const char* fileName)
{
    using namespace gui::gl;
    OffscreenContext context({640, 400},
                             {DepthBuffer::Size::None, StencilBuffer::Size::None, Context::Profile::Core41});
    Context::clear(Context::Clear::Color, td::ColorID::SteelBlue);
    Drawing drawing;
    addIsland(drawing);
    return drawing.draw(Affine()) && context.savePicture(fileName);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc > 1 && std::strcmp(argv[1], "offscreen") == 0)
        return saveIsland("island.png") ? 0 : 1;
    gui::Application app(argc, argv);
    IslandView view;
    view.createContext(true); // y grows downwards
    return app.run(view, "Island", {640, 400});
}
