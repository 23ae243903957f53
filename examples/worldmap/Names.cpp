#include "Names.h"

namespace worldmap
{

using namespace gui::draw;

namespace
{

constexpr double cLargest = 12;          // degrees that a name is for; larger countries have several
constexpr double cGap = 3, cHalo = 1.75; // points

} // namespace

TextStyle writing(double halo)
{
    return {.face = Typeface::named("DejaVu Sans"), .paint = "#26384a", .halo = {halo, "#ffffffe0"}};
}

void Names::draw(const SheetView& map)
{
    if (map.getMapProjection() != _projection)
        make(map);
    _labels.place(map);
    _drawing.draw(map);
}

void Names::make(const SheetView& map)
{
    _projection = map.getMapProjection();
    _labels.clear();
    _labels.setMargin(cGap);
    _ids.clear();
    const Countries& countries = map.getCountries();
    const TextStyle style = writing(cHalo);
    const auto toPlane = [this](const Point& degrees) { return project(*_projection, degrees); };
    for (std::size_t i = 0; i < countries.all.size(); ++i)
    {
        const std::string& name = countries.all[i].name;
        const Path land = examples::areaOf(countries.coarse.areas[i], toPlane);
        Rect box = Labels::findMain(land).value_or(Rect());
        box.top = std::max(box.top, sheetOf(*_projection).top);
        const double size = (box.right - box.left) * (box.bottom - box.top);
        _ids.push_back(_labels.addInside(land, box, name, style, {.priority = size, .largest = cLargest}));
        if (!countries.all[i].isAlone)
            continue;
        const auto isSea = [&](const Point& point)
        {
            const Drawing::ID shape = map.drawing().pick(point);
            return shape == 0 || map.drawing().getTag(shape) == i + 1;
        };
        const auto ids = _labels.addBeside(box, {name, style}, {.gap = cGap, .isYDown = false, .isFree = isSea});
        _ids.back().insert(_ids.back().end(), ids.begin(), ids.end());
    }
}

} // namespace worldmap
