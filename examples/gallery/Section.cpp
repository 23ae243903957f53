// Look for: faces of the cut closed and hatched, each part to its own side; lines about them; shaft, rod and plug
// whole.

#include "Engine.h"
#include "Orbiting.h"
#include "Scenes.h"

#include <gui/draw/Dimensions3.h>
#include <gui/draw/Labels3.h>
#include <gui/draw/Model.h>
#include <gui/gl/Context.h>

namespace gallery
{

namespace
{

using gui::draw::Behind;
using gui::draw::Clipping;
using gui::draw::DimensionStyle;
using gui::draw::Eye;
using gui::draw::Leader;
using gui::gl::Context;

class SectionScene : public Orbiting
{
public:
    SectionScene()
        : Orbiting(gui::draw::OrbitCamera::Up::Z)
    {
    }

    bool init() override
    {
        _train.setEdges({.width = 1});
        _model.setEdges({.width = 1});
        _model.setSection({.outline = {.width = 1.8}, .hatch = {.spacing = 7}});
        _camera.setDirection(38, 22);
        if (!setMesh(Engine::makeHousing()) || !_train.setMesh(Engine::makeTrain()))
            return false;
        Clipping quarter(Clipping::Kind::Notch);
        quarter.add({0, 0, 0}, {-1, 0, 0});
        quarter.add({0, 0, 0}, {0, 1, 0});
        setClipping(quarter);
        measure();
        name();
        _camera.setBounds(_model.getBounds());
        return _camera.fit({{-50, -50, -54}, {50, 50, 204}}, 34);
    }

private:
    void drawBackground(const Eye&) override { Context::clear(Context::Clear::Color, "#f3f5f8"); }

    void drawModel(const Eye& eye) override
    {
        _model.draw(eye);
        _train.draw(getWhole(eye));
    }

    static Eye getWhole(const Eye& eye)
    {
        Eye whole = eye;
        whole.setClipping(Clipping());
        return whole;
    }

    // Of what is cut away something is said too.
    void drawOver(const Frame& /*frame*/, const Eye& eye) override
    {
        _dimensions.draw(getWhole(eye));
        _labels.draw(getWhole(eye));
    }

    void measure()
    {
        DimensionStyle blue;
        blue.text.size = 12;
        blue.text.paint = blue.paint = "#1c4f9c";
        blue.text.halo = {2.5, "#ffffffd0"};
        blue.behind = Behind::Fade;
        _dimensions.addLinearAlong({0, -36, Engine::cBottom}, {0, -50, Engine::cDeck}, {0, 0, 1}, {0, -58, 0}, blue);
        _dimensions.addDiameter({0, 0, Engine::cDeck}, {0, 0, 1}, Engine::cBore / 2, {0, -1, 0}, blue);
        _dimensions.addLinear({50, 0, 52}, {50, 0, Engine::cDeck}, {44, 0, 0}, blue);
        _dimensions.addAngle({88, 0, 0}, {0, 0, 1}, Engine::getCrankPin(), 30, blue);
    }

    void name()
    {
        const auto add = [this](const glm::dvec3& at, const char* name, const td::Point<double>& offset)
        { _labels.add(at, name, {.size = 13}, {.offset = offset, .leader = Leader(), .behind = Behind::Fade}); };
        add({0, -42, Engine::cDeck + 22}, "head, aluminium", {-70, -30});
        add({0, -27.5, 80}, "liner, steel", {-150, 30});
        add({24, 0, Engine::getPistonPin().z - 12}, "piston", {170, -10});
        add({9, -14, 60}, "rod", {210, -20});
        add({45, 0, Engine::cDeck + 0.75}, "gasket, copper", {95, -26});
        add({60, -8, -4}, "crankshaft", {60, 60});
    }

    gui::draw::Model _train;
    gui::draw::Dimensions3 _dimensions{_probe};
    gui::draw::Labels3 _labels{_probe};
};

} // namespace

std::unique_ptr<Scene> makeSection() { return std::make_unique<SectionScene>(); }

} // namespace gallery
