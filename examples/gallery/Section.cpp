// Look for: faces of the cut closed and hatched, each part to its own side; lines about them; shaft, rod and plug
// whole.

#include "Engine.h"
#include "Orbiting.h"
#include "Scenes.h"

#include <gui/draw/Model.h>
#include <gui/gl/Context.h>

namespace gallery
{

namespace
{

using gui::draw::Clipping;
using gui::draw::Eye;
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
        _camera.setBounds(_model.getBounds());
        return _camera.fit({{-50, -50, -54}, {50, 50, 200}}, 24);
    }

private:
    void drawBackground(const Eye&) override { Context::clear(Context::Clear::Color, "#f3f5f8"); }

    void drawModel(const Eye& eye) override
    {
        _model.draw(eye);
        Eye whole = eye;
        whole.setClipping(Clipping());
        _train.draw(whole);
    }

    gui::draw::Model _train;
};

} // namespace

std::unique_ptr<Scene> makeSection() { return std::make_unique<SectionScene>(); }

} // namespace gallery
