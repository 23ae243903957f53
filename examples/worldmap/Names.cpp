#include "Names.h"

#include <limits>

namespace worldmap
{

namespace
{

using gui::draw::Anchor;
using gui::draw::LabelRule;
using gui::draw::Labels;
using gui::draw::Path;
using gui::draw::TextLayout;

// A name may be as long as its strip of land and this part of what the country has beyond, and this part of its height.
constexpr double cBeyond = 0.35;
constexpr double cHighest = 0.8;

constexpr double cSmallestPart = 12; // degrees of a country that has names of its own

// In points.
constexpr double cLargestPart = 1100; // that has one name
constexpr double cSmallest = 5;       // that an island is wide or high to have its name beside it
constexpr double cGap = 3;
constexpr double cHalo = 1.75;

constexpr double cInfinity = std::numeric_limits<double>::infinity();

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
    _labels.setMargin(cGap);
}

void Names::draw(SheetView& map)
{
    if (map.getMapProjection() != _projection)
        make(map);
    _labels.place(map.getZoom());
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
    _ids.assign(_countries.all.size(), {});
    const Rect sheet = sheetOf(*_projection);
    const gui::draw::ParagraphStyle centered{.align = gui::draw::Align::Center};
    for (std::size_t i = 0; i < _countries.all.size(); ++i)
    {
        const std::string& name = _countries.all[i].name;
        Land land{i, {name, writing(cHalo)}, {inTwoLines(name), writing(cHalo), centered}};
        for (const Line& ring : _countries.coarse.countries[i])
        {
            const Path piece = pathOf(ring, *_projection).close();
            land.path.addPath(piece);
            if (const double area = areaOf(ring); area > land.area)
            {
                land.area = area;
                land.box = piece.getBounds().value_or(sheet);
                land.box.top = std::max(land.box.top, sheet.top);
            }
        }
        addInside(land, land.box, 0);
        if (_countries.all[i].isAlone)
            addBeside(map, land);
    }
}

void Names::addInside(const Land& land, const Rect& part, double minZoom)
{
    const Point middle = middleOf(part);
    const std::optional<Rect> room = Labels::findRoom(land.path, part);
    const bool isWhole = minZoom == 0;
    if (!room && !isWhole)
        return;
    const bool isWide = widthOf(part) > heightOf(part);
    const double size = isWide ? widthOf(part) : heightOf(part);
    const double maxZoom = size > cSmallestPart ? cLargestPart / size : cInfinity;
    if (size > cSmallestPart)
    {
        addInside(land, {part.left, part.top, isWide ? middle.x : part.right, isWide ? part.bottom : middle.y},
                  maxZoom);
        addInside(land, {isWide ? middle.x : part.left, isWide ? part.top : middle.y, part.right, part.bottom},
                  maxZoom);
    }
    const double strip = room ? widthOf(*room) : 0, beyond = isWhole ? cBeyond * (widthOf(part) - strip) : 0;
    const auto ruleFor = [&](const td::Size<double>& name)
    {
        const double zoom = std::max(name.width / (strip + beyond), name.height / (cHighest * heightOf(part)));
        return LabelRule{land.area, std::max(zoom, minZoom), maxZoom};
    };
    const Point place = room ? middleOf(*room) : middle;
    const gui::draw::TextPlacement centered{Anchor::Center};
    _ids[land.country].push_back(_labels.add(place, land.name, centered, ruleFor(land.name.getSize())));
    _ids[land.country].push_back(
        _labels.addAlternative(place, land.inTwoLines, centered, ruleFor(land.inTwoLines.getSize())));
}

// In the sea, from the zoom on at which no other country is there.
void Names::addBeside(SheetView& map, const Land& land)
{
    const double x = widthOf(land.box) / 2, y = heightOf(land.box) / 2;
    const td::Size<double> size = land.name.getSize();
    const Rect sheet = sheetOf(*_projection);
    const double maxZoom = cLargestPart / std::max(x, y) / 2;
    const struct
    {
        Point step;
        Anchor anchor;
    } sides[] = {{{0, -1}, Anchor::Top}, {{1, 0}, Anchor::Left}, {{0, 1}, Anchor::Bottom}, {{-1, 0}, Anchor::Right}};
    for (const auto& [step, anchor] : sides)
    {
        const Point place(middleOf(land.box).x + step.x * x, middleOf(land.box).y + step.y * y);
        const auto isOnlySea = [&](double zoom)
        {
            for (int i = 0; i < 15; ++i)
            {
                const Point point(place.x + (step.x + (i % 5 - 2) / 2.0) * size.width / 2 / zoom,
                                  place.y + (step.y + (i / 5 - 1)) * size.height / 2 / zoom);
                const std::size_t found = map.find(point);
                if (!isIn(sheet, point) || (found != Countries::cNone && found != land.country))
                    return false;
            }
            return true;
        };
        double zoom = cSmallest / std::max(x, y) / 2;
        while (zoom < maxZoom && !isOnlySea(zoom))
            zoom *= 1.5;
        _ids[land.country].push_back(_labels.addAlternative(place, land.name, {anchor, {step.x * cGap, -step.y * cGap}},
                                                            {.minZoom = zoom, .maxZoom = maxZoom}));
    }
}

} // namespace worldmap
