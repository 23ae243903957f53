#include "Labels.h"

#include <algorithm>

namespace worldmap
{

namespace
{

// A name may be as long as its strip of land and this part of what the country has beyond, and this part of its height.
constexpr double cBeyond = 0.35;
constexpr double cHighest = 0.8;

constexpr double cSmallest = 5; // points that an island is wide or high to have its name beside it
constexpr double cGap = 3;      // points between them

// Broken at the space that is nearest to the middle.
std::string inTwoLines(std::string name)
{
    const auto offMiddle = [&name](std::size_t i) { return std::max(i, name.size() - i); };
    std::size_t best = name.find(' ');
    for (std::size_t i = best; i != std::string::npos; i = name.find(' ', i + 1))
        if (offMiddle(i) < offMiddle(best))
            best = i;
    name[best] = '\n';
    return name;
}

} // namespace

Labels::Labels(const Countries& countries)
    : _countries(countries)
    , _lands(landsOf(countries))
{
}

void Labels::draw(const Outlook& outlook, std::span<const Box> reserved)
{
    if (outlook != _outlook)
    {
        _outlook = outlook;
        layOut(reserved);
    }
    drawWriting(_captions);
}

void Labels::layOut(std::span<const Box> reserved)
{
    _captions.begin(_outlook.size, _outlook.scale);
    for (const Box& box : reserved)
        _captions.reserve(box);
    _shown.clear();
    const worldmap::Box sheet = sheetOf(_outlook.projection);
    const td::Point<double> topLeft = _outlook.toView(unproject(_outlook.projection, {sheet.min.x, sheet.max.y}));
    const td::Point<double> bottomRight = _outlook.toView(unproject(_outlook.projection, {sheet.max.x, sheet.min.y}));
    _free = {{std::max(topLeft.x, 0.0), std::max(topLeft.y, 0.0)},
             {std::min(bottomRight.x, _outlook.size.width), std::min(bottomRight.y, _outlook.size.height)}};
    for (const Box& box : reserved)
        _free.max.y = std::min(_free.max.y, static_cast<double>(box.top / _outlook.scale));
    const worldmap::Box seen = seenDegrees();
    std::vector<const Land*> left;
    for (const Land& land : _lands)
        if (land.box().min.x < seen.max.x && land.box().max.x > seen.min.x && land.box().min.y < seen.max.y &&
            land.box().max.y > seen.min.y && !addInside(land) && land.isIsland)
            left.push_back(&land);
    for (const Land* pLand : left)
        addBeside(*pLand);
}

bool Labels::addInside(const Land& land)
{
    const std::string& name = _countries.getCountries()[land.country].name;
    return addInside(land, name) || (name.find(' ') != std::string::npos && addInside(land, inTwoLines(name)));
}

bool Labels::addInside(const Land& land, const std::string& name)
{
    const td::Size<double> text = measure(name);
    const double zoom = _outlook.zoom();
    const worldmap::Box& box = land.box();
    const double height = (project(_outlook.projection, box.max).y - project(_outlook.projection, box.min).y) * zoom;
    if (text.width > ((1 - cBeyond) * land.room.width + cBeyond * box.width()) * zoom ||
        text.height > cHighest * height)
        return false;
    const td::Point<double> middle = _outlook.toView(land.room.middle);
    const worldmap::Box whole{{_free.min.x + text.width / 2, _free.min.y + text.height / 2},
                              {_free.max.x - text.width / 2, _free.max.y - text.height / 2}};
    if (land.room.width > 0 && whole.contains(middle) && add(middle, land.country, name))
        return true;

    // What is seen of a country may be as good a place.
    const worldmap::Box seen = seenDegrees();
    const Room room = roomIn(land, {{std::max(box.min.x, seen.min.x), std::max(box.min.y, seen.min.y)},
                                    {std::min(box.max.x, seen.max.x), std::min(box.max.y, seen.max.y)}});
    return room.width * zoom > text.width && add(_outlook.toView(room.middle), land.country, name);
}

worldmap::Box Labels::seenDegrees() const
{
    return {_outlook.toDegrees({_free.min.x, _free.max.y}), _outlook.toDegrees({_free.max.x, _free.min.y})};
}

bool Labels::addBeside(const Land& land)
{
    const td::Point<double> topLeft = _outlook.toView({land.box().min.x, land.box().max.y});
    const td::Point<double> bottomRight = _outlook.toView({land.box().max.x, land.box().min.y});
    const td::Size<double> size(bottomRight.x - topLeft.x, bottomRight.y - topLeft.y);
    if (std::max(size.width, size.height) < cSmallest)
        return false;
    const std::string& name = _countries.getCountries()[land.country].name;
    const td::Size<double> text = measure(name);
    const td::Point<double> middle((topLeft.x + bottomRight.x) / 2, (topLeft.y + bottomRight.y) / 2);
    const double x = (size.width + text.width) / 2 + cGap, y = (size.height + text.height) / 2;
    const td::Point<double> places[] = {
        {middle.x, middle.y + y}, {middle.x + x, middle.y}, {middle.x, middle.y - y}, {middle.x - x, middle.y}};
    return std::any_of(std::begin(places), std::end(places),
                       [&](const td::Point<double>& place)
                       { return isOnlySeaAt(place, text, land.country) && add(place, land.country, name); });
}

bool Labels::isOnlySeaAt(const td::Point<double>& middle, const td::Size<double>& size, std::size_t country) const
{
    const worldmap::Box sheet = sheetOf(_outlook.projection);
    for (const double x : {-0.5, -0.25, 0.0, 0.25, 0.5})
        for (const double y : {-0.5, 0.0, 0.5})
        {
            const td::Point<double> place = _outlook.toDegrees({middle.x + x * size.width, middle.y + y * size.height});
            const std::size_t found = _countries.find(place);
            if (!sheet.contains(project(_outlook.projection, place)) || (found != Countries::cNone && found != country))
                return false;
        }
    return true;
}

bool Labels::add(const td::Point<double>& middle, std::size_t country, const std::string& text)
{
    const auto x = static_cast<float>(middle.x), y = static_cast<float>(middle.y);
    if (!_captions.addIfFree({x * _outlook.scale, y * _outlook.scale}, text, cRimmed))
        return false;
    _shown.push_back({country, _captions.getTaken().back()});
    return true;
}

// In points.
td::Size<double> Labels::measure(const std::string& text) const
{
    const td::Size<float> size = _captions.measure(text);
    return {static_cast<double>(size.width / _outlook.scale), static_cast<double>(size.height / _outlook.scale)};
}

} // namespace worldmap
