#include <gui/draw/Labels.h>

#include <algorithm>
#include <cmath>

namespace gui::draw
{

namespace
{

// A name may be as long as its strip of an area and this part of what the area has beyond, and this part of its height.
constexpr double cBeyond = 0.35;
constexpr double cHighest = 0.8;

// An area has at most so many parts with names of their own, one way.
constexpr double cMostParts = 64;

} // namespace

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

} // namespace gui::draw
