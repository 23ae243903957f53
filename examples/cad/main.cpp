// Shows a drawing: the pointer outlines a part, a click says how large it is, a double click goes there, 0 shows all.
//     cad house.cad [picture.png]  or, with the name of a picture, saves all of it as that
// A file has a statement a line; what follows ; is for people. Lengths are in any unit, and y grows upwards:
//     part NAME                    what follows, by this name
//     paint COLOR                  of areas and circles from here on, #rrggbb or #rrggbbaa; paper COLOR: of the sheet
//     pen COLOR WIDTH [LENGTH]...  of lines and edges from here on, with dashes and gaps; hair: in points of the screen
//     line DATA                    along SVG path data; area DATA paints what is within, but for holes
//     circle X Y RADIUS [HOLE]     HOLE is a radius too
//     text X Y HEIGHT ANGLE WORDS  about the point, in the pen's colour
#include <gui/Application.h>
#include <gui/draw/DrawingView.h>

#include <cstdio>
#include <fstream>
#include <sstream>

using namespace gui::draw;

struct Line
{
    std::string place, text; // FILE:LINE:, and what stands there
    std::istringstream in{text};
    std::size_t at = 0; // where that begins which was taken last
    bool isAtEnd() { return in.eof() || (in >> std::ws).eof(); }
    void check(bool isRight, const std::string& expected, std::size_t further = 0) const
    {
        if (!isRight)
            throw std::runtime_error(place + std::to_string(at + further + 1) + ": expected " + expected);
    }
    template <typename T = double>
    T take(const char* expected)
    {
        T value{};
        at = isAtEnd() ? text.size() : static_cast<std::size_t>(in.tellg());
        check(bool(in >> value), expected);
        return value;
    }
    std::string rest(const char* expected)
    {
        take<std::string>(expected);
        in.seekg(0, std::ios::end);
        return text.substr(at);
    }
};

class CadView : public DrawingView
{
public:
    explicit CadView(const std::string& file)
        : DrawingView(false)
    {
        std::ifstream stream(file);
        std::string text;
        for (int n = 1; std::getline(stream, text); ++n)
            read({file + ':' + std::to_string(n) + ':', text.substr(0, text.find_first_of(";\r"))});
        if (!drawing().getBounds())
            throw std::runtime_error(file + ": nothing to draw");
        drawing().setPickable(_glow = drawing().stroke({}, {.width = 3, .join = Join::Round}, "#f2762e"), false);
        _note = drawing().text({}, "", {.size = 13, .halo = {3}}, {Anchor::Bottom, {0, -6}});
        drawing().setPickable(_note, false);
    }

private:
    void read(Line line)
    {
        Path path;
        const std::string word = line.isAtEnd() ? "" : line.take<std::string>("");
        if (word == "part")
            _parts.emplace_back(line.rest("a name"), Path());
        else if (word == "paint" || word == "paper" || word == "pen" || word == "hair")
        {
            td::Color& color = word == "paint" ? _paint : word == "paper" ? _paper : _ink;
            line.check(td::Color::read(line.take<std::string>("a colour"), color), "a colour such as #204060");
            setBackground(_paper);
            const Unit unit = word == "pen" ? Unit::Model : Unit::Points;
            if (&color == &_ink)
                for (_pen = {.width = line.take("a width"), .unit = unit, .dashUnit = unit}; !line.isAtEnd();)
                    _pen.dashes.push_back(line.take("a length"));
        }
        else if (word == "text")
        {
            const Drawing::Point at{line.take("X"), line.take("Y")};
            const TextStyle style{.size = line.take("a height"), .unit = Unit::Model, .paint = _ink};
            const TextPlacement placement{Anchor::Center, {}, line.take("an angle")};
            drawing().text(at, line.rest("words"), style, placement);
        }
        else if (word == "circle")
        {
            const Drawing::Point center{line.take("X"), line.take("Y")};
            do
                path.addCircle(center, line.take("a radius"));
            while (!line.isAtEnd());
        }
        else if (word == "line" || word == "area")
        {
            Path::SVGError error;
            const bool isRight = path.addSVG(line.rest("path data"), &error);
            line.check(isRight, error.expected, error.position);
        }
        else
            line.check(word.empty(), "a statement such as area");
        line.check(line.isAtEnd() || line.take<std::string>("").empty(), "the end of the line");
        _parts.back().second.addPath(path);
        if (word == "circle" || word == "area")
            drawing().setTag(drawing().fill(path, _paint, FillRule::EvenOdd), _parts.size() - 1);
        if (!path.isEmpty())
            drawing().setTag(drawing().stroke(path, _pen, _ink), _parts.size() - 1);
    }
    void onShapeEntered(Drawing::ID shape) override
    {
        drawing().setPath(_glow, _parts[drawing().getTag(shape)].second);
    }
    void onShapeClicked(Drawing::ID shape) override
    {
        const auto& [name, outline] = _parts[drawing().getTag(shape)];
        const Drawing::Rect box = outline.getBounds().value_or(Drawing::Rect());
        std::ostringstream text;
        text << name << '\n' << box.right - box.left << " \u00d7 " << box.bottom - box.top;
        drawing().setText(_note, name.empty() ? "" : text.str());
        drawing().setTransform(_note, Affine::translation((box.left + box.right) / 2, box.bottom));
    }

    std::vector<std::pair<std::string, Path>> _parts{{}}; // the first is what has no name
    td::Color _paper = "#ffffff", _paint = "#e8e8e8", _ink = "#202020";
    Stroke _pen;
    Drawing::ID _glow = 0, _note = 0;
};

int main(int argc, char** argv)
try
{
    gui::Application app(argc, argv);
    CadView view(argc > 1 ? argv[1] : "drawing.cad");
    return argc > 2 ? !view.saveAll(argv[2]) : app.run(view, "Drawing", {1100, 760});
}
catch (const std::exception& error)
{
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
}
