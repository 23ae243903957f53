#include "Names.h"

#include <array>

namespace worldmap
{

namespace
{

using gui::draw::Anchor;
using gui::draw::Path;
using gui::draw::TextLayout;

constexpr double cLargest = 12; // degrees that a name is for; larger countries have several

// In points.
constexpr double cSmallestIsland = 5;   // that has its name beside it
constexpr double cLargestIsland = 1100; // likewise
constexpr double cGap = 3;
constexpr double cHalo = 1.75;

// Broken at the space that is nearest to the middle.
std::string inTwoLines(std::string name)
{
    const auto offMiddle = [&name](std::size_t i) { return std::max(i, name.size() - i); };
    std::size_t best = name.find(' ');
    for (std::size_t i = best; i != std::string::npos; i = name.find(' ', i + 1))
        if (offMiddle(i) < offMiddle(best))
            best = i;
    return best == std::string::npos ? name : name.replace(best, 1, "\n");
}

} // namespace

gui::draw::TextStyle writing(double halo)
{
    return {.face = gui::draw::Typeface::named("DejaVu Sans"), .paint = "#26384a", .halo = {halo, "#ffffffe0"}};
}

Names::Names(const Countries& countries)
    : _countries(countries)
{
    _labels.setMargin(cGap);
}

void Names::draw(SheetView& map)
{
    if (map.getMapProjection() != _projection)
        make(map);
    _labels.place(map);
    _drawing.draw(map);
}

bool Names::isShown(std::size_t country) const
{
    return std::any_of(_ids[country].begin(), _ids[country].end(), [this](auto id) { return _labels.isShown(id); });
}

void Names::make(SheetView& map)
{
    _projection = map.getMapProjection();
    _labels.clear();
    _ids.clear();
    const Rect sheet = sheetOf(*_projection);
    for (const Country& country : _countries.all)
    {
        Path land;
        double largest = 0; // of its pieces, which the name is for
        Rect box;
        for (const Line& ring : _countries.coarse.countries[_ids.size()])
        {
            const Path piece = pathOf(ring, *_projection).close();
            land.addPath(piece);
            Rect around = piece.getBounds().value_or(sheet);
            around.top = std::max(around.top, sheet.top);
            if (const double size = (around.right - around.left) * (around.bottom - around.top); size > largest)
            {
                largest = size;
                box = around;
            }
        }
        const TextLayout name(country.name, writing(cHalo));
        const TextLayout two(inTwoLines(country.name), writing(cHalo), {.align = gui::draw::Align::Center});
        _ids.push_back(_labels.addInside(land, box, std::array{name, two}, {.priority = largest, .largest = cLargest}));
        if (country.isAlone)
            addBeside(map, _ids.size() - 1, name, box);
    }
}

// In the sea, from the zoom on at which no other country is there.
void Names::addBeside(SheetView& map, std::size_t country, const TextLayout& name, const Rect& box)
{
    const double width = box.right - box.left, height = box.bottom - box.top, size = std::max(width, height);
    const struct
    {
        double x, y;
        Anchor anchor;
    } sides[] = {{0, -1, Anchor::Top}, {1, 0, Anchor::Left}, {0, 1, Anchor::Bottom}, {-1, 0, Anchor::Right}};
    for (const auto& [x, y, anchor] : sides)
    {
        const Point place((box.left + box.right + x * width) / 2, (box.top + box.bottom + y * height) / 2);
        const auto isOnlySea = [&](double zoom)
        {
            const double w = name.getSize().width / 2 / zoom, h = name.getSize().height / 2 / zoom;
            for (int i = 0; i < 15; ++i)
            {
                const Point point(place.x + (x + (i % 5 - 2) / 2.0) * w, place.y + (y + (i / 5 - 1)) * h);
                const std::size_t found = map.find(point);
                if (!isIn(sheetOf(*_projection), point) || (found != Countries::cNone && found != country))
                    return false;
            }
            return true;
        };
        double zoom = cSmallestIsland / size;
        while (zoom < cLargestIsland / size && !isOnlySea(zoom))
            zoom *= 1.5;
        _ids[country].push_back(_labels.addAlternative(place, name, {anchor, {x * cGap, -y * cGap}},
                                                       {.minZoom = zoom, .maxZoom = cLargestIsland / size}));
    }
}

} // namespace worldmap
