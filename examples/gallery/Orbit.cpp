// Look for: turning about the point that was pressed, axes that take clicks, motion that goes on and comes to rest.

#include "Impeller.h"
#include "Orbiting.h"
#include "Scenes.h"

#include <gui/gl/Context.h>

namespace gallery
{

namespace
{

using gui::gl::Context;

class OrbitScene : public Orbiting
{
public:
    bool init() override
    {
        _model.setEdges({.width = 1, .color = "#202830"});
        _camera.setDirection(32, 42);
        if (!setMesh(makeImpeller()))
            return false;
        _camera.setBounds(_model.getBounds());
        // It is round: the corners of its bounds may be out of sight.
        return _camera.fit({{-0.7, -0.25, -0.7}, {0.7, 1.2, 0.7}}, 20);
    }

    bool prepareNextFrame(double seconds) override
    {
        turn(seconds, 12);
        return true;
    }

private:
    void drawBackground(const gui::draw::Eye&) override { Context::clear(Context::Clear::Color, "#202a36"); }
};

} // namespace

std::unique_ptr<Scene> makeOrbitScene() { return std::make_unique<OrbitScene>(); }

} // namespace gallery
