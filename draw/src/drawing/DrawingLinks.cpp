#include "DrawingImpl.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace gui::draw
{

void Drawing::Impl::findNeighbours()
{
    for (const SharedEdges::Pair& pair : edges.find())
    {
        Item &item = items[pair.shape], &other = items[pair.other];
        if (wholeOf(item) != wholeOf(other))
            continue;
        const auto add = [](Item& to, std::uint32_t slot)
        {
            if (!to.pNeighbours)
                to.pNeighbours = std::make_unique<std::vector<std::uint32_t>>();
            to.pNeighbours->push_back(slot);
        };
        add(item, pair.other);
        add(other, pair.shape);
        markLinksStale(other);
        markLinksStale(item);
    }
}

void Drawing::Impl::unlink(Item& item)
{
    if (item.version != cNoItem)
        edges.remove(item.version);
    item.version = cNoItem;
    dropNeighbours(item);
}

void Drawing::Impl::dropNeighbours(Item& item)
{
    for (const std::uint32_t other : item.getNeighbours())
    {
        std::erase(*items[other].pNeighbours, slotOf(item));
        markLinksStale(items[other]);
    }
    if (!item.getNeighbours().empty())
        markLinksStale(item);
    item.pNeighbours.reset();
}

bool Drawing::Impl::isWithin(const Item& item, const Item& other) const
{
    return &item == &other || (item.group != cNoItem && isWithin(items[item.group], other));
}

void Drawing::Impl::dropOutsiders(Item& shape, const Item& mover)
{
    const auto isOutside = [this, &mover](std::uint32_t other) { return !isWithin(items[other], mover); };
    if (!shape.pNeighbours)
        return;
    for (const std::uint32_t other : *shape.pNeighbours)
        if (isOutside(other))
        {
            std::erase(*items[other].pNeighbours, slotOf(shape));
            markLinksStale(items[other]);
        }
    if (std::erase_if(*shape.pNeighbours, isOutside) != 0)
        markLinksStale(shape);
}

void Drawing::Impl::markLinksStale(Item& item)
{
    if (!std::exchange(item.areLinksStale, true))
        staleLinks.push_back(slotOf(item));
}

void Drawing::Impl::renewLinks()
{
    findNeighbours();
    std::vector<std::uint32_t> records, corners;
    const std::size_t nChanged = staleLinks.size();
    for (std::size_t i = 0; i < staleLinks.size(); ++i)
    {
        Item& item = items[staleLinks[i]];
        if (item.kind != Kind::Fill)
            continue;
        records.clear();
        findCorners(item, corners);
        // One that is not seen whenever this is would leave a gap. And edges are known by numbers that a few others
        // have as well, far away: where there is no real neighbour, shaders need not look for any.
        const auto add = [&](std::span<const std::uint32_t> others)
        {
            for (const std::uint32_t other : others)
            {
                if ((items[other].zooms & item.zooms) == item.zooms && overlapOf(item, items[other]))
                    records.push_back(items[other].places.record);
                // It has a corner with this one, or is between two that have: none of those knew of the change.
                if (i < nChanged)
                    markLinksStale(items[other]);
            }
            return records.size();
        };
        const std::size_t nEdges = add(item.getNeighbours());
        add(corners);
        tables.setLinks(item.places, records, nEdges);
    }
    for (const std::uint32_t slot : staleLinks)
        items[slot].areLinksStale = false;
    staleLinks.clear();
}

// At some zoom.
bool Drawing::Impl::areTogether(const Item& a, const Item& b)
{
    const ZoomRange both = a.zooms & b.zooms;
    return both.min < both.max;
}

void Drawing::Impl::findCorners(const Item& item, std::vector<std::uint32_t>& corners) const
{
    // One that so many others are around says nothing of who is near whom.
    constexpr std::size_t cCrowd = 64;
    corners.clear();
    std::vector<std::uint32_t> seen(item.getNeighbours().begin(), item.getNeighbours().end());
    for (std::size_t i = 0; i < seen.size(); ++i)
    {
        const std::span<const std::uint32_t> around = items[seen[i]].getNeighbours();
        if (around.size() > cCrowd)
            continue;
        for (const std::uint32_t other : around)
            if (&items[other] != &item && std::find(seen.begin(), seen.end(), other) == seen.end() &&
                areTogether(item, items[other]) && haveCorner(item, items[other]))
            {
                seen.push_back(other);
                corners.push_back(other);
            }
    }
}

auto Drawing::Impl::overlapOf(const Item& a, const Item& b) const -> std::optional<Rect>
{
    // Either has rounded it to its own grid.
    const double near = a.step + b.step;
    const Rect boundsA = boundsOfPoints(a), boundsB = boundsOfPoints(b);
    const double left = std::max(boundsA.left, boundsB.left) - near, top = std::max(boundsA.top, boundsB.top) - near,
                 right = std::min(boundsA.right, boundsB.right) + near,
                 bottom = std::min(boundsA.bottom, boundsB.bottom) + near;
    if (left > right || top > bottom)
        return std::nullopt;
    return Rect(left, top, right, bottom);
}

bool Drawing::Impl::haveCorner(const Item& a, const Item& b) const
{
    const std::optional<Rect> overlap = overlapOf(a, b);
    if (!overlap)
        return false;
    const auto cornersOf = [&](const Item& item)
    {
        std::vector<Point> corners;
        for (std::uint32_t i = 0; i < item.places.points.count; ++i)
        {
            const GridPoint p = tables.getPoints()[item.places.points.first + i];
            const Point at(item.origin.x + item.step * p.x, item.origin.y + item.step * p.y);
            if (at.x >= overlap->left && at.x <= overlap->right && at.y >= overlap->top && at.y <= overlap->bottom)
                corners.push_back(at);
        }
        std::sort(corners.begin(), corners.end(), [](const Point& p, const Point& q) { return p.x < q.x; });
        return corners;
    };
    const double near = a.step + b.step;
    const std::vector<Point> own = cornersOf(a), others = cornersOf(b);
    auto from = own.begin();
    for (const Point& p : others)
    {
        while (from != own.end() && from->x < p.x - near)
            ++from;
        for (auto q = from; q != own.end() && q->x <= p.x + near; ++q)
            if (std::abs(q->y - p.y) <= near)
                return true;
    }
    return false;
}

} // namespace gui::draw
