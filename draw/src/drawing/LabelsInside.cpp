#include "RoomFinder.h"
#include "ShapeGeometry.h"

#include <gui/draw/Labels.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <string>

namespace gui::draw
{

namespace
{

// A name may be as long as its strip of an area and this part of what the area has beyond, and this part of its height.
constexpr double cBeyond = 0.35;
constexpr double cHighest = 0.8;

// An area has at most so many parts with names of their own, one way.
constexpr double cMostParts = 64;
constexpr std::size_t cMostHalvings = 12; // both ways

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

std::vector<Drawing::ID> Labels::addInside(const Path& area, const Drawing::Rect& within, std::string_view name,
                                           const TextStyle& style, const AreaRule& rule)
{
    const std::array forms{TextLayout(name, style),
                           TextLayout(inTwoLines(std::string(name)), style, {.align = Align::Center})};
    return addInside(area, within, forms, rule);
}

/// An area that gets its names.
struct Labels::Inside
{
    const Path& area;
    std::span<const TextLayout> forms;
    AreaRule rule;
    bool hasCurves = area.hasCurves();
    std::vector<Drawing::ID> ids{};
    std::vector<std::unique_ptr<RoomFinder>> rooms{}; // by how often the area is halved, as far as that matters

    /// Curves are taken as finely as the part that is looked at wants them.
    std::optional<Drawing::Rect> findRoom(const Drawing::Rect& part, std::size_t depth)
    {
        const std::size_t i = hasCurves ? depth : 0;
        rooms.resize(std::max(rooms.size(), i + 1));
        if (rooms[i] == nullptr)
            rooms[i] = std::make_unique<RoomFinder>(area, part);
        return rooms[i]->find(part);
    }
};

std::vector<Drawing::ID> Labels::addInside(const Path& area, const Drawing::Rect& within,
                                           std::span<const TextLayout> forms, const AreaRule& rule)
{
    Inside inside{area, forms, rule};
    const double width = within.right - within.left, height = within.bottom - within.top;
    const double size = std::max(width, height);
    if (!(rule.largest >= size / cMostParts))
        inside.rule.largest = size / cMostParts;
    if (!(rule.largestInView >= 1))
        inside.rule.largestInView = 1;
    if (std::isfinite(width) && std::isfinite(height) && !forms.empty())
        add(inside, within, 0, 0);
    return inside.ids;
}

void Labels::add(Inside& inside, const Drawing::Rect& part, double minZoom, std::size_t depth)
{
    const std::optional<Drawing::Rect> room = inside.findRoom(part, depth);
    const bool isWhole = minZoom == 0;
    if (!room && !isWhole)
        return;
    const double width = part.right - part.left, height = part.bottom - part.top;
    const Drawing::Point middle((part.left + part.right) / 2, (part.top + part.bottom) / 2);
    double maxZoom = std::numeric_limits<double>::infinity();
    // Where numbers are so large that halves are no smaller it ends, too.
    if (const double size = std::max(width, height); size > inside.rule.largest && depth < cMostHalvings)
    {
        maxZoom = inside.rule.largestInView / size;
        const bool isWide = width > height;
        add(inside, {part.left, part.top, isWide ? middle.x : part.right, isWide ? part.bottom : middle.y}, maxZoom,
            depth + 1);
        add(inside, {isWide ? middle.x : part.left, isWide ? part.top : middle.y, part.right, part.bottom}, maxZoom,
            depth + 1);
    }
    const double strip = room ? room->right - room->left : 0, beyond = isWhole ? cBeyond * (width - strip) : 0;
    const Drawing::Point at =
        room ? Drawing::Point((room->left + room->right) / 2, (room->top + room->bottom) / 2) : middle;
    for (const TextLayout& form : inside.forms)
    {
        const td::Size<double> size = form.getSize();
        const double fit = std::max(size.width / (strip + beyond), size.height / (cHighest * height));
        const LabelRule zooms{inside.rule.priority, std::max(fit, minZoom), maxZoom};
        inside.ids.push_back(&form == inside.forms.data() ? add(at, form, {Anchor::Center}, zooms)
                                                          : addAlternative(at, form, {Anchor::Center}, zooms));
    }
}

std::vector<Drawing::ID> Labels::addBeside(const Drawing::Rect& box, const TextLayout& name, const BesideRule& rule)
{
    std::vector<Drawing::ID> ids;
    const double width = box.right - box.left, height = box.bottom - box.top, size = std::max(width, height);
    if (_labels.empty() || !(size > 0) || !std::isfinite(size))
        return ids;
    const double maxZoom = rule.largestInView / size;
    for (const Anchor anchor : {Anchor::Top, Anchor::Left, Anchor::Bottom, Anchor::Right})
    {
        // The way there on the screen, and in the plane.
        const double x = 1 - 2 * anchor.x, down = 1 - 2 * *anchor.y, y = rule.isYDown ? down : -down;
        const Drawing::Point at((box.left + box.right + x * width) / 2, (box.top + box.bottom + y * height) / 2);
        const auto isFree = [&](double zoom)
        {
            const double w = name.getSize().width / 2 / zoom, h = name.getSize().height / 2 / zoom;
            for (const double along : {-1.0, -0.5, 0.0, 0.5, 1.0})
                for (const double across : {-1.0, 0.0, 1.0})
                    if (rule.isFree && !rule.isFree({at.x + (x + along) * w, at.y + (y + across) * h}))
                        return false;
            return true;
        };
        double zoom = (rule.smallestInView > 0 ? rule.smallestInView : 1) / size;
        while (zoom < maxZoom && !isFree(zoom))
            zoom *= 1.5;
        if (zoom < maxZoom)
            ids.push_back(addAlternative(at, name, {anchor, {x * rule.gap, down * rule.gap}},
                                         {.minZoom = zoom, .maxZoom = maxZoom}));
    }
    return ids;
}

std::optional<Drawing::Rect> Labels::findRoom(const Path& shape, const Drawing::Rect& within)
{
    return RoomFinder(shape, within).find(within);
}

std::optional<Drawing::Rect> Labels::findMain(const Path& area)
{
    Polylines lines;
    area.flatten(toleranceFor(area, 0), lines);
    std::optional<Drawing::Rect> main;
    double largest = -1;
    for (const Polylines::Line& line : lines.lines)
    {
        Drawing::Rect box;
        const std::span<const Drawing::Point> points = lines.pointsOf(line);
        for (const Drawing::Point& p : points)
            box = &p == points.data() ? Drawing::Rect(p.x, p.y, p.x, p.y)
                                      : Drawing::Rect(std::min(box.left, p.x), std::min(box.top, p.y),
                                                      std::max(box.right, p.x), std::max(box.bottom, p.y));
        if (const double size = (box.right - box.left) * (box.bottom - box.top); size > largest)
        {
            largest = size;
            main = box;
        }
    }
    return main;
}

} // namespace gui::draw
