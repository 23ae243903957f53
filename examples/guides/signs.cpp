// A bearing block with the names of its parts and its dimensions; what is behind it goes, or shines through.
#include <gui/Application.h>
#include <gui/draw/draw.h>

#include <glm/ext/matrix_transform.hpp>

#include <cmath>
#include <numbers>
#include <vector>

using namespace gui::draw;

namespace
{

// Upwards from z = 0, about an axis: a tube, or a block where there are four sides.
Mesh makeTube(unsigned int nSides, double inner, double outer, double height)
{
    const double ways[][2] = {{inner, 0}, {outer, 0}, {outer, height}, {inner, height}};
    Mesh mesh;
    for (unsigned int side = 0; side < nSides; ++side)
    {
        const double angle = 2 * std::numbers::pi * (side + 0.5) / nSides;
        for (unsigned int i = 0; i < 4; ++i)
        {
            mesh.positions.push_back({ways[i][0] * std::cos(angle), ways[i][0] * std::sin(angle), ways[i][1]});
            const unsigned int a = 4 * side + i, b = (4 * side + i + 4) % (4 * nSides);
            const unsigned int aNext = 4 * side + (i + 1) % 4, bNext = b - i + (i + 1) % 4;
            mesh.indices.insert(mesh.indices.end(), {a, b, aNext, aNext, b, bNext});
        }
    }
    return mesh;
}

// In millimetres.
Mesh makeBlock()
{
    Mesh mesh;
    mesh.add(makeTube(4, 18, 45 * std::numbers::sqrt2, 12), {.color = "#9fb0c4"});
    const glm::dmat4 up = glm::translate(glm::dmat4(1), {0, 0, 12});
    mesh.add(makeTube(96, 18, 28, 26), {.color = "#b8c4d2", .shininess = 0.6}, 0, up);
    for (const double x : {-35, 35})
        for (const double y : {-35, 35})
            mesh.add(makeTube(6, 0, 6, 5), {.color = "#d8b46a", .shininess = 0.7}, 0,
                     glm::translate(glm::dmat4(1), {x, y, 12}));
    return mesh;
}

class BlockView : public OrbitView
{
public:
    BlockView()
        : OrbitView(OrbitCamera::Up::Z)
    {
        setBackground("#ffffff", "#dde4ea");
        control().setGizmo(OrbitControl::Corner::None);
    }

protected:
    void onInit() override
    {
        _model.setMesh(makeBlock());
        _model.setEdges({.width = 1});
        fit(_model.getBounds(), 50);
        addNames();
        addDimensions();
    }

    void addNames()
    {
        const Label3 look{.offset = {34, -30}, .leader = Leader(), .frame = TextFrame()};
        _labels.add({0, 23, 38}, "Sleeve", {.size = 13}, look);
        _labels.add({35, -35, 17}, "Screw, M6", {.size = 13}, look);
        _labels.add({22, -34, 0}, "Ground below", {.size = 13}, {.behind = Behind::Fade});
    }

    void addDimensions()
    {
        const DimensionStyle style{.decimals = 1, .unit = " mm"};
        _dimensions.addLinear({-45, -45, 0}, {45, -45, 0}, {0, -16, 0}, style);
        _dimensions.addLinear({-45, -45, 0}, {-45, -45, 12}, {-12, 0, 0}, style);
        _dimensions.addLinear({24, -15, 12}, {24, -15, 38}, {11, -7, 0}, style);
        _dimensions.addDiameter({0, 0, 38}, {0, 0, 1}, 18, {1, 0.2, 0}, style);
        _dimensions.addAngle({-45, 45, 12}, {1, 0, 0}, {0, -1, 0}, 30,
                             {.hasExtensions = false, .place = DimensionStyle::Text::AboveLine});
    }

    void drawScene(const Eye& eye) override { _model.draw(eye); }

    void drawOver(const Eye& eye) override
    {
        _dimensions.draw(eye);
        _labels.draw(eye);
    }

private:
    Model _model;
    Labels3 _labels{depthProbe()};
    Dimensions3 _dimensions{depthProbe()};
};

} // namespace

int main(int argc, char** argv)
{
    gui::Application app(argc, argv);
    BlockView view;
    view.createContext();
    view.camera().setDirection(-32, 32);
    return app.run(view, "A bearing block", {640, 460});
}
