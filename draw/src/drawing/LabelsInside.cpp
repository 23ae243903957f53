#include "ShapeGeometry.h"

#include <gui/draw/Labels.h>

#include <algorithm>
#include <array>
#include <cmath>
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

std::vector<Drawing::ID> Labels::addInside(const Path& area, const Drawing::Rect& within,
                                           std::span<const TextLayout> forms, const AreaRule& rule)
{
    std::vector<Drawing::ID> ids;
    const double size = std::max(within.right - within.left, within.bottom - within.top);
    AreaRule sensible = rule;
    if (!(rule.largest >= size / cMostParts))
        sensible.largest = size / cMostParts;
    if (!(rule.largestInView >= 1))
        sensible.largestInView = 1;
    if (std::isfinite(size) && !forms.empty())
        addInside(area, within, forms, sensible, 0, ids);
    return ids;
}

void Labels::addInside(const Path& area, const Drawing::Rect& part, std::span<const TextLayout> forms,
                       const AreaRule& rule, double minZoom, std::vector<Drawing::ID>& ids)
{
    const std::optional<Drawing::Rect> room = findRoom(area, part);
    const bool isWhole = minZoom == 0;
    if (!room && !isWhole)
        return;
    const double width = part.right - part.left, height = part.bottom - part.top;
    const Drawing::Point middle((part.left + part.right) / 2, (part.top + part.bottom) / 2);
    double maxZoom = std::numeric_limits<double>::infinity();
    if (const double size = std::max(width, height); size > rule.largest)
    {
        maxZoom = rule.largestInView / size;
        const bool isWide = width > height;
        addInside(area, {part.left, part.top, isWide ? middle.x : part.right, isWide ? part.bottom : middle.y}, forms,
                  rule, maxZoom, ids);
        addInside(area, {isWide ? middle.x : part.left, isWide ? part.top : middle.y, part.right, part.bottom}, forms,
                  rule, maxZoom, ids);
    }
    const double strip = room ? room->right - room->left : 0, beyond = isWhole ? cBeyond * (width - strip) : 0;
    const Drawing::Point at =
        room ? Drawing::Point((room->left + room->right) / 2, (room->top + room->bottom) / 2) : middle;
    for (const TextLayout& form : forms)
    {
        const td::Size<double> size = form.getSize();
        const double fit = std::max(size.width / (strip + beyond), size.height / (cHighest * height));
        const LabelRule zooms{rule.priority, std::max(fit, minZoom), maxZoom};
        ids.push_back(&form == forms.data() ? add(at, form, {Anchor::Center}, zooms)
                                            : addAlternative(at, form, {Anchor::Center}, zooms));
    }
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
