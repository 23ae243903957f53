#include "Names.h"

namespace worldmap
{

namespace
{

using gui::draw::Affine;

// A name may be as long as its strip of land and this part of what the country has beyond, and this part of its height.
constexpr double cBeyond = 0.35;
constexpr double cHighest = 0.8;

// In points.
constexpr double cSmallest = 5; // that an island is wide or high to have its name beside it
constexpr double cGap = 3;      // between them, and to the left and right of a name
constexpr double cHalo = 1.75;

constexpr int cNoOfRows = 19;
constexpr double cOffMiddle = 0.6; // how much less a strip at the part's upper or lower edge is worth

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

bool overlap(const Rect& a, const Rect& b)
{
    return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

Rect common(const Rect& a, const Rect& b)
{
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right), std::min(a.bottom, b.bottom)};
}

// By strips from the equator, each of which is narrower where it is nearer to a pole.
double areaOf(const Line& ring)
{
    double area = 0;
    for (std::size_t i = 0; i < ring.size(); ++i)
        area += (ring[i].x - ring[i == 0 ? ring.size() - 1 : i - 1].x) * std::sin(ring[i].y * cDegree);
    return std::abs(area);
}

double widthOf(const Rect& rect) { return rect.right - rect.left; }
double heightOf(const Rect& rect) { return rect.bottom - rect.top; }
Point middleOf(const Rect& rect) { return {(rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2}; }

} // namespace

gui::draw::TextStyle writing(double halo)
{
    return {.face = gui::draw::Typeface::named("DejaVu Sans"), .paint = "#26384a", .halo = {halo, "#ffffffe0"}};
}

Names::Names(const Countries& countries)
    : _countries(countries)
{
}

void Names::layOut(SheetView& map, double bottom)
{
    if (map.getMapProjection() != _projection)
        setProjection(map.getMapProjection());
    else if (map.getVisible() == _visible && map.getZoom() == _zoom)
        return;
    _visible = map.getVisible();
    _zoom = map.getZoom();
    _free = common(sheetOf(*_projection), _visible);
    _free.top = std::max(_free.top, _visible.top + bottom / _zoom);
    _shown.clear();
    std::vector<Land*> left;
    for (Land& land : _lands)
        if (overlap(land.box, _free) &&
            std::none_of(land.texts.begin(), land.texts.end(), [&](Text& text) { return addInside(land, text); }) &&
            _countries.all[land.country].isAlone &&
            std::max(widthOf(land.box), heightOf(land.box)) * _zoom >= cSmallest)
            left.push_back(&land);
    for (Land* pLand : left)
        addBeside(*pLand, pLand->texts.front(), map);
    for (Land& land : _lands)
        for (Text& text : land.texts)
        {
            if (text.next != text.place)
                _drawing.setVisible(text.id, text.next.has_value());
            if (text.next && text.next != text.place)
                _drawing.setTransform(text.id, Affine::translation(text.next->x, text.next->y));
            text.place = std::exchange(text.next, {});
        }
}

void Names::setProjection(Projection projection)
{
    _projection = projection;
    _drawing.clear();
    _lands.clear();
    for (std::size_t i = 0; i < _countries.all.size(); ++i)
    {
        Land& land = _lands.emplace_back(Land{i});
        for (const Line& ring : _countries.coarse.countries[i])
        {
            const gui::draw::Path path = pathOf(ring, projection).close();
            land.path.addPath(path);
            if (const double area = areaOf(ring); area > land.area)
            {
                land.area = area;
                land.box = common(path.getBounds().value_or(Rect()), sheetOf(projection));
            }
        }
        land.room = roomIn(land, land.box);
        for (const std::string& text : {_countries.all[i].name, inTwoLines(_countries.all[i].name)})
        {
            const gui::draw::TextLayout layout(text, writing(cHalo), {.align = gui::draw::Align::Center});
            land.texts.push_back({_drawing.text({}, layout, {.anchor = gui::draw::Anchor::Center}), layout.getSize()});
            _drawing.setVisible(land.texts.back().id, false);
        }
    }
    std::stable_sort(_lands.begin(), _lands.end(), [](const Land& a, const Land& b) { return a.area > b.area; });
}

// The longest strip of land in a part of the plane, or a shorter one that is nearer to the part's middle. It goes on in
// the rows of nineteen above and below; its own height is 0.
Rect Names::roomIn(const Land& land, const Rect& part)
{
    Rect best;
    double bestValue = 0;
    const double step = heightOf(part) / (cNoOfRows + 1);
    for (int row = 2; row < cNoOfRows; ++row)
    {
        const double y = part.top + row * step;
        std::vector<std::pair<double, unsigned int>> crossings; // and a bit for the row
        for (const gui::draw::PathSegment& line : land.path)
            for (unsigned int bit = 1; const double at : {y - step, y, y + step})
            {
                const double x =
                    line.from.x + (at - line.from.y) / (line.to.y - line.from.y) * (line.to.x - line.from.x);
                if ((line.from.y > at) != (line.to.y > at))
                    crossings.emplace_back(std::clamp(x, part.left, part.right), bit);
                bit *= 2;
            }
        std::sort(crossings.begin(), crossings.end());
        const double worth = 1 - cOffMiddle * std::abs(2 * (row - 1.0) / (cNoOfRows - 1) - 1);
        double west = part.left;
        for (unsigned int inside = 0; const auto& [x, bit] : crossings)
        {
            if (inside == 7 && (x - west) * worth > bestValue)
            {
                bestValue = (x - west) * worth;
                best = {west, y, x, y};
            }
            inside ^= bit;
            west = x;
        }
    }
    return best;
}

bool Names::addInside(const Land& land, Text& text)
{
    const double width = text.size.width / _zoom;
    if (width > (1 - cBeyond) * widthOf(land.room) + cBeyond * widthOf(land.box) ||
        text.size.height / _zoom > cHighest * heightOf(land.box))
        return false;
    if (widthOf(land.room) > 0 && add(land, text, middleOf(land.room)))
        return true;
    // What is seen of a country may be as good a place.
    const Rect room = roomIn(land, common(land.box, _free));
    return widthOf(room) > width && add(land, text, middleOf(room));
}

// In the sea, where no other country is.
void Names::addBeside(const Land& land, Text& text, SheetView& map)
{
    const double width = text.size.width / _zoom, height = text.size.height / _zoom;
    const double x = (widthOf(land.box) + width) / 2 + cGap / _zoom, y = (heightOf(land.box) + height) / 2;
    for (const Point& step : {Point(0, -y), Point(x, 0), Point(0, y), Point(-x, 0)})
    {
        const Point place(middleOf(land.box).x + step.x, middleOf(land.box).y + step.y);
        bool isOnlySea = true;
        for (int i = 0; i < 15; ++i)
        {
            const std::size_t found = map.find({place.x + (i % 5 - 2) * width / 4, place.y + (i / 5 - 1) * height / 2});
            isOnlySea = isOnlySea && (found == Countries::cNone || found == land.country);
        }
        if (isOnlySea && add(land, text, place))
            return;
    }
}

bool Names::add(const Land& land, Text& text, const Point& middle)
{
    const double x = (text.size.width / 2 + cGap) / _zoom, y = text.size.height / 2 / _zoom;
    const Rect box{middle.x - x, middle.y - y, middle.x + x, middle.y + y};
    if (common(box, _free) != box ||
        std::any_of(_shown.begin(), _shown.end(), [&box](const Shown& shown) { return overlap(box, shown.box); }))
        return false;
    _shown.push_back({land.country, box});
    text.next = middle;
    return true;
}

} // namespace worldmap
