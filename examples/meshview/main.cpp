// Shows a mesh from any file that assimp reads: a click says which triangle is there, and where.
//     meshview bearing.obj [picture.png]  or, with the name of a picture, saves it as that
// W wires, E edges, C cuts it open, comma and full stop move the cut, S saves a picture; all else is OrbitView's: 1 to
// 7 look from the sides, P is with perspective or without.
#include "Load.h"

#include <gui/Application.h>
#include <gui/Key.h>
#include <gui/Window.h>
#include <gui/draw/Inspector.h>
#include <gui/draw/draw.h>

#include <cstdio>
#include <ctime>

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
        _marks.setBias(2);
        _index.setTriangles(_loaded.mesh.positions, _loaded.mesh.indices);
        fit(_model.getBounds(), 10);
        createContext();
    }

private:
    void drawScene(const Eye& eye) override
    {
        _model.draw(eye);
        _marks.draw(eye);
    }
    void drawOver(const Eye& eye) override { _notes.draw(eye); }
    void onClicked(const Ray& ray) override
    {
        _marks.clear();
        _notes.clear();
        const double step = 1e-3 * _model.getBounds().getRadius();
        if (const auto point = pick(ray))
            note(_index.getNearest({*point - step * ray.direction, ray.direction}, {}, 2 * step));
        reDraw();
    }
    void note(const std::optional<TriangleIndex::Hit>& hit)
    {
        if (!hit)
            return; // the face of a cut is none of its triangles
        char text[120];
        std::snprintf(text, sizeof text, "%.40s, triangle %u\n%.6g, %.6g, %.6g", _loaded.nameOf(hit->index).c_str(),
                      hit->index, hit->point.x, hit->point.y, hit->point.z);
        _marks.add(_loaded.cornersOf(hit->index), {.color = "#d04020"}, Polylines3::Ends::Joined);
        _notes.add(hit->point, text, {.size = 14, .halo = {3}},
                   {.offset = {40, -30}, .leader = Leader(), .behind = Behind::Fade});
    }
    bool onKeyPressed(const gui::Key& key) override
    {
        if (key.getChar() == 'w')
            _model.setWires(static_cast<Model::Wires>((static_cast<int>(_model.getWires(0)) + 1) % 3));
        else if (key.getChar() == 'e')
            _model.setEdges(_edges = {.width = 1 - _edges.width});
        else if (key.getChar() == 'c')
            setClipping(getClipping().isEmpty() ? Clipping(_model.getBounds().getCenter(), getEye().getDirection())
                                                : Clipping());
        else if (key.getChar() == ',' || key.getChar() == '.')
        {
            Clipping clipping = getClipping();
            clipping.move(0, (key.getChar() == ',' ? -0.02 : 0.02) * _model.getBounds().getRadius());
            setClipping(clipping);
        }
        else if (key.getChar() == 's')
        {
            const std::string name = "mesh-" + std::to_string(std::time(nullptr)) + ".png";
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
    Polylines3 _marks;
    Labels3 _notes{depthProbe()};
    Model::Line _edges{.width = 1};
};

int main(int argc, char** argv)
try
{
    if (argc > 2)
        setenv("GUIGL_WINDOW_SYSTEM", "offscreen", 1);
    gui::Application app(argc, argv);
    const gui::draw::Inspector inspector; // F12 shows it
    gui::Window window("Mesh", {960, 680});
    MeshView view(load(argc > 1 ? argv[1] : "mesh.obj"));
    return window.show(view) && (argc > 2 ? view.savePicture(argv[2]) : app.run() == 0) ? 0 : 1;
}
catch (const std::exception& error)
{
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
}
