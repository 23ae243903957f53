// Shows a mesh from any file that assimp reads: a click says which triangle is there, and where.
//     meshview bearing.obj [picture.png]  or, with the name of a picture, saves it as that
// W wires, E edges, S saves a picture; all else is OrbitView's: 1 to 7 look from the sides, P is with perspective or
// without.
#include "Load.h"

#include <gui/Application.h>
#include <gui/Key.h>
#include <gui/Window.h>
#include <gui/draw/draw.h>

#include <glm/geometric.hpp>

#include <cstdio>
#include <filesystem>

using namespace gui::draw;

class MeshView : public OrbitView
{
public:
    explicit MeshView(Loaded loaded)
        : OrbitView(loaded.up)
        , _loaded(std::move(loaded))
    {
        setBackground("#ffffff", "#c4cfdb");
        _model.setMesh(_loaded.mesh);
        _model.setEdges(_edges);
        _index.setTriangles(_loaded.mesh.positions, _loaded.mesh.indices);
        fit(_model.getBounds(), 10);
        createContext();
    }

private:
    void drawScene(const Eye& eye) override { _model.draw(eye); }
    std::optional<glm::dvec3> pick(const Ray& ray) override
    {
        const auto hit = _index.getNearest(ray);
        return hit ? std::optional(hit->point) : std::nullopt;
    }
    void onClicked(const Ray& ray) override
    {
        _hit = _index.getNearest(ray);
        reDraw();
    }
    void drawOver(const Eye& eye) override
    {
        const auto seen = _hit ? eye.project(_hit->point) : std::nullopt;
        if (!seen)
            return;
        const Ray ray = eye.getRay({seen->x, seen->y});
        const double distance = glm::distance(ray.origin, _hit->point) * (1 - 1e-6);
        const td::Color color = _index.getNearest(ray, {}, distance) ? "#d0402060" : "#d04020"; // hidden or not
        Path triangle;
        for (std::size_t i = 0; i < 3; ++i)
            if (const auto at = eye.project(_loaded.mesh.positions[_loaded.mesh.indices[3 * _hit->index + i]]))
                i == 0 ? triangle.moveTo({at->x, at->y}) : triangle.lineTo({at->x, at->y});
        char text[120];
        std::snprintf(text, sizeof text, "%.40s, triangle %u\n%.6g, %.6g, %.6g", _loaded.nameOf(_hit->index).c_str(),
                      _hit->index, _hit->point.x, _hit->point.y, _hit->point.z);
        _notes.clear();
        _notes.stroke(triangle.close(), {.width = 1.5, .join = Join::Round}, color);
        _notes.fill(Path().addCircle({seen->x, seen->y}, 3.5), color);
        _notes.text({seen->x, seen->y}, text, {.size = 14, .halo = {3}}, {Anchor::Left, {10, 0}});
        _notes.draw(Affine(), eye.getScale());
    }
    bool onKeyPressed(const gui::Key& key) override
    {
        if (key.getChar() == 'w')
            _model.setWires(static_cast<Model::Wires>((static_cast<int>(_model.getWires(0)) + 1) % 3));
        else if (key.getChar() == 'e')
            _model.setEdges(_edges = {.width = 1 - _edges.width});
        else if (key.getChar() == 's')
        {
            std::string name = "mesh.png";
            for (int n = 2; std::filesystem::exists(name); ++n)
                name = "mesh-" + std::to_string(n) + ".png";
            std::puts(savePicture(name.c_str()) ? name.c_str() : "not saved");
        }
        else
            return OrbitView::onKeyPressed(key);
        reDraw();
        return true;
    }

    Loaded _loaded;
    Model _model;
    TriangleIndex _index;
    std::optional<TriangleIndex::Hit> _hit;
    Drawing _notes;
    Model::Line _edges{.width = 1};
};

int main(int argc, char** argv)
try
{
    if (argc > 2)
        setenv("GUIGL_WINDOW_SYSTEM", "offscreen", 1);
    gui::Application app(argc, argv);
    gui::Window window("Mesh", {960, 680});
    MeshView view(load(argc > 1 ? argv[1] : "mesh.obj"));
    return window.show(view) && (argc > 2 ? view.savePicture(argv[2]) : app.run() == 0) ? 0 : 1;
}
catch (const std::exception& error)
{
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
}
