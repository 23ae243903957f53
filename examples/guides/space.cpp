// A pulley to turn, to go nearer to and to click: a note says where. B keeps what is seen, G flies back to it.
#include <gui/Application.h>
#include <gui/Key.h>
#include <gui/draw/draw.h>

#include <cmath>
#include <cstdio>
#include <numbers>

using namespace gui::draw;

namespace
{

// In millimetres, about the z axis.
Mesh makePulley()
{
    constexpr double cProfile[][2] = {{6, 0},   {14, 0},  {14, 4},  {30, 4},  {32, 0},  {36, 0},  {36, 3},  {31, 8},
                                      {31, 10}, {36, 15}, {36, 18}, {32, 18}, {30, 14}, {14, 14}, {14, 22}, {6, 22}};
    constexpr unsigned int cSides = 96, cPlaces = std::size(cProfile);
    Mesh mesh;
    mesh.material = {.color = "#8fa3b8", .shininess = 0.5};
    for (unsigned int side = 0; side < cSides; ++side)
    {
        const double angle = 2 * std::numbers::pi * side / cSides;
        for (unsigned int i = 0; i < cPlaces; ++i)
        {
            const double r = cProfile[i][0];
            mesh.positions.push_back({r * std::cos(angle), r * std::sin(angle), cProfile[i][1]});
            const unsigned int a = side * cPlaces + i, b = (side + 1) % cSides * cPlaces + i;
            const unsigned int aNext = side * cPlaces + (i + 1) % cPlaces, bNext = b - i + (i + 1) % cPlaces;
            mesh.indices.insert(mesh.indices.end(), {a, b, aNext, aNext, b, bNext});
        }
    }
    return mesh;
}

class PartView : public OrbitView
{
public:
    PartView()
        : OrbitView(OrbitCamera::Up::Z)
    {
        setBackground("#ffffff", "#d4dce4");
    }

    void note(const glm::dvec3& point)
    {
        _noted = point;
        reDraw();
    }

protected:
    void onInit() override
    {
        _model.setMesh(makePulley());
        _model.setEdges({.width = 1.2});
        fit(_model.getBounds());
    }

    void drawScene(const Eye& eye) override { _model.draw(eye); }

    void onClicked(const Ray& ray) override
    {
        if (const std::optional<glm::dvec3> point = pick(ray))
            note(*point);
    }

    void drawOver(const Eye& eye) override
    {
        const std::optional<glm::dvec3> seen = _noted ? eye.project(*_noted) : std::nullopt;
        if (!seen)
            return;
        char text[80];
        std::snprintf(text, sizeof text, "%.1f, %.1f, %.1f mm", _noted->x, _noted->y, _noted->z);
        _notes.clear();
        _notes.fill(Path().addCircle({seen->x, seen->y}, 4), "#d04020");
        _notes.text({seen->x, seen->y}, text, {.face = Typeface::named("DejaVu Sans"), .size = 14, .halo = {2.5}},
                    {.anchor = Anchor::Left, .offset = {9, 0}});
        _notes.draw(Affine(), eye.getScale());
    }

    bool onKeyPressed(const gui::Key& key) override
    {
        if (key.getChar() == 'b')
            _kept = camera().getPose();
        else if (key.getChar() == 'g')
        {
            camera().flyTo(_kept);
            reDraw();
        }
        else
            return OrbitView::onKeyPressed(key);
        return true;
    }

private:
    Model _model;
    Drawing _notes;
    std::optional<glm::dvec3> _noted;
    OrbitCamera::Pose _kept;
};

} // namespace

int main(int argc, char** argv)
{
    gui::Application app(argc, argv);
    PartView view;
    view.createContext();
    view.camera().setDirection(-25, 32);
    view.note({0, -36, 15});
    return app.run(view, "A pulley", {480, 340});
}
