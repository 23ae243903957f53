// Names on a map in the hands of somebody who does not care: any places, sizes, rules, areas and zooms, beside hatches
// of the same areas. It takes no time without end, and what is told of them agrees.

#include "Fuzz.h"

#include <gui/draw/Hatch.h>
#include <gui/draw/Labels.h>

#include <vector>

namespace fuzz::labels
{

namespace
{

using namespace gui::draw;

class Map : Careless
{
public:
    explicit Map(Input& input)
        : Careless(input, 64, 12)
    {
    }

    void live()
    {
        while (_input.left() > 0 && _labels.getNumberOfLabels() < 200)
        {
            doNext();
            require(_labels.getNumberOfHidden() <= _labels.getNumberOfLabels(), "what is hidden is there");
        }
        _labels.place(1);
        require(_labels.getNumberOfLabels() < 10'000, "an area has a limit of names");
    }

private:
    Drawing::Point takePoint()
    {
        const double x = takeNumber();
        return {x, takeNumber()};
    }
    TextStyle takeStyle() { return {.size = takeBool() ? 12 : takeNumber(), .halo = {takeNumber()}}; }
    TextPlacement takePlacement()
    {
        const Drawing::Point anchor = takePoint();
        return {.anchor = takeBool() ? Anchor::Center : Anchor{anchor.x, anchor.y},
                .offset = takePoint(),
                .angle = takeBool() ? 0 : takeNumber()};
    }
    LabelRule takeRule()
    {
        LabelRule rule{.priority = takeNumber()};
        if (takeBool())
        {
            rule.minZoom = takeNumber();
            rule.maxZoom = takeNumber();
        }
        return rule;
    }
    Drawing::ID takeID() { return _ids.empty() ? _input.below(4) : _ids[_input.below(255) % _ids.size()]; }
    Path takeArea()
    {
        Path area;
        for (unsigned int n = _input.below(12); n > 0; --n)
        {
            const unsigned int verb = _input.below(8);
            const Drawing::Point a = takePoint();
            verb == 0   ? area.close()
            : verb == 1 ? area.moveTo(a)
            : verb == 2 ? area.addCircle(a, takeNumber())
            : verb == 3 ? area.quadTo(a, takePoint())
                        : area.lineTo(a);
        }
        return area;
    }

    void addArea()
    {
        const Path area = takeArea();
        Drawing::Rect within{0, 0, 100, 100};
        if (takeBool())
            within = area.getBounds().value_or(within);
        else if (takeBool())
            within = {takeNumber(), takeNumber(), takeNumber(), takeNumber()};
        AreaRule rule{.priority = takeNumber()};
        if (_input.below(8) == 0) // that may be thousands of names
        {
            rule.largest = takeNumber();
            rule.largestInView = takeNumber();
        }
        const std::vector<Drawing::ID> added =
            _labels.addInside(area, within, _input.text(_input.below(10)), takeStyle(), rule);
        if (!added.empty())
            _ids.push_back(added.back());
        if (const auto room = Labels::findRoom(area, within))
            require(room->left <= room->right && room->top <= room->bottom, "room is a rectangle");
        Labels::findMain(area);
        const Path lines = area.hatched({.spacing = takeNumber(),
                                         .angle = takeNumber(),
                                         .origin = takePoint(),
                                         .rule = takeBool() ? FillRule::NonZero : FillRule::EvenOdd});
        _drawing.stroke(lines, {.width = 1}, "#203040");
    }

    void doNext()
    {
        switch (_input.below(12))
        {
        case 0:
        case 1:
        case 2:
            _ids.push_back(
                _labels.add(takePoint(), _input.text(_input.below(6)), takeStyle(), takePlacement(), takeRule()));
            break;
        case 3:
            _labels.addAlternative(takePoint(), TextLayout(_input.text(_input.below(6)), takeStyle()), takePlacement(),
                                   takeRule());
            break;
        case 4:
            addArea();
            break;
        case 5:
            _labels.setSymbol(takeID(), _drawing.fill(Path().addCircle(takePoint(), 2), "#000000"), takeNumber());
            break;
        case 6:
            _labels.move(takeID(), takePoint());
            break;
        case 7:
            _labels.setWanted(takeID(), takeBool());
            break;
        case 8:
            _labels.setMargin(takeNumber());
            break;
        case 9:
            if (_input.below(4) == 0)
                _drawing.remove(takeID());
            else if (_input.below(16) == 0)
            {
                _labels.clear();
                _ids.clear();
            }
            break;
        default:
        {
            const Drawing::Point a = takePoint(), b = takePoint(), c = takePoint();
            if (takeBool())
                _labels.place(Affine{a.x, a.y, b.x, b.y, c.x, c.y});
            else
                _labels.place(takeNumber());
            _labels.isShown(takeID());
        }
        }
    }

    Drawing _drawing;
    Labels _labels{_drawing};
    std::vector<Drawing::ID> _ids;
};

void run(const std::uint8_t* bytes, std::size_t n)
{
    Input input(bytes, n);
    const Quiet quiet;
    Map(input).live();
    require(quiet.nAsserts == 0, "nothing of that is an assertion");
}

const Target cTarget("labels", run);

} // namespace

} // namespace fuzz::labels
