#include "Names.h"

namespace worldmap
{

namespace
{

using gui::draw::Anchor;
using gui::draw::TextLayout;

constexpr double cLargest = 12; // degrees that a name is for; larger countries have several

// In points.
constexpr double cSmallestIsland = 5;   // that has its name beside it
constexpr double cLargestIsland = 1100; // likewise
constexpr double cGap = 3;
constexpr double cHalo = 1.75;

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

void Names::make(SheetView& map)
{
    _projection = map.getMapProjection();
    _labels.clear();
    _ids.clear();
    for (const Country& country : _countries.all)
    {
        const gui::draw::Path land = areaOf(_countries.coarse.countries[_ids.size()], *_projection);
        Rect box = gui::draw::Labels::findMain(land).value_or(Rect());
        box.top = std::max(box.top, sheetOf(*_projection).top);
        const gui::draw::AreaRule rule{.priority = (box.right - box.left) * (box.bottom - box.top),
                                       .largest = cLargest};
        _ids.push_back(_labels.addInside(land, box, country.name, writing(cHalo), rule));
        if (country.isAlone)
            addBeside(map, _ids.size() - 1, TextLayout(country.name, writing(cHalo)), box);
    }
}

// In the sea, from the zoom on at which no other country is there.
void Names::addBeside(SheetView& map, std::size_t country, const TextLayout& name, const Rect& box)
{
    const double width = box.right - box.left, height = box.bottom - box.top, size = std::max(width, height);
    for (const Anchor anchor : {Anchor::Top, Anchor::Left, Anchor::Bottom, Anchor::Right})
    {
        const double x = 1 - 2 * anchor.x, y = 2 * *anchor.y - 1;
        const Point place((box.left + box.right + x * width) / 2, (box.top + box.bottom + y * height) / 2);
        const auto isOnlySea = [&](double zoom)
        {
            const double w = name.getSize().width / 2 / zoom, h = name.getSize().height / 2 / zoom;
            for (const double across : {-1.0, -0.5, 0.0, 0.5, 1.0})
                for (const double along : {-1.0, 0.0, 1.0})
                    if (const auto shape = map.drawing().pick({place.x + (x + across) * w, place.y + (y + along) * h});
                        shape != 0 && map.drawing().getTag(shape) != country + 1)
                        return false;
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
