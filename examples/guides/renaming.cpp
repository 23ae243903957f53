// A graph whose nodes are renamed in place, by a double click.
#include <gui/Application.h>
#include <gui/draw/draw.h>

#include <list>

using namespace gui::draw;

namespace
{

constexpr double cWidth = 140, cHeight = 56;

struct Node
{
    td::Point<double> at;
    std::string title;
    Drawing::ID group, text;
};

class Graph : public DrawingView
{
public:
    Graph()
    {
        setBackground("#20242c");
        const Node &noise = add({0, 0}, "Noise"), &picture = add({0, 100}, "Picture");
        Node& blend = add({220, 50}, "Blend");
        link(noise, blend);
        link(picture, blend);
        link(blend, add({440, 50}, "Output"));
        rename(blend);
    }

private:
    void onShapeDoubleClicked(Drawing::ID shape) override
    {
        for (Node& node : _nodes)
            if (drawing().getGroup(shape) == node.group)
                rename(node);
    }

    void rename(Node& node)
    {
        _field.edit(drawing(), node.text, node.title,
                    [this, &node](const std::string& title) { drawing().setText(node.text, node.title = title); });
    }

    Node& add(td::Point<double> at, const char* title)
    {
        Node& node = _nodes.emplace_back(Node{at, title, drawing().beginGroup(Affine::translation(at.x, at.y)), 0});
        const Path box = Path().addRoundedRect({0, 0, cWidth, cHeight}, {8, 8});
        drawing().fill(box, LinearGradient{{0, 0}, {0, cHeight}, {{0, "#4a556b"}, {1, "#363e4f"}}});
        drawing().stroke(box, {.width = 1.5}, "#0c0e12");
        node.text = drawing().text(
            {cWidth / 2, cHeight / 2}, title,
            {.face = Typeface::named("DejaVu Sans"), .size = 17, .unit = Unit::Model, .paint = "#ffffff"},
            {.anchor = Anchor::Center});
        drawing().fill(Path().addCircle({0, cHeight / 2}, 6), "#8ac6ff");
        drawing().fill(Path().addCircle({cWidth, cHeight / 2}, 6), "#ffb86b");
        drawing().endGroup();
        return node;
    }

    void link(const Node& from, const Node& to)
    {
        const td::Point<double> a(from.at.x + cWidth, from.at.y + cHeight / 2), b(to.at.x, to.at.y + cHeight / 2);
        const Path curve = Path().moveTo(a).cubicTo({a.x + 50, a.y}, {b.x - 50, b.y}, b);
        drawing().lower(drawing().stroke(curve, {.width = 2.5, .unit = Unit::Model}, "#aab4c8"));
    }

    std::list<Node> _nodes;
    TextField _field{*this};
};

} // namespace

int main(int argc, char** argv)
{
    gui::Application app(argc, argv);
    Graph graph;
    return app.run(graph, "Renaming", {640, 220});
}
