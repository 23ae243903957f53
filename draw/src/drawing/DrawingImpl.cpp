#include "DrawingImpl.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace gui::draw
{

namespace
{

/// Past so many pieces, elements are brought into their order instead of being drawn piece by piece.
constexpr std::size_t cMostRanges = 1000;

} // namespace

Drawing::Impl::Item* Drawing::Impl::find(ID id)
{
    const auto slot = static_cast<std::uint32_t>(id) - 1;
    if (id == 0 || slot >= items.size() || items[slot].kind == Kind::None || items[slot].generation != id >> 32)
        return nullptr;
    return &items[slot];
}

Drawing::Impl::Item* Drawing::Impl::findShape(ID id)
{
    Item* pItem = find(id);
    return pItem == nullptr || pItem->kind == Kind::Group ? nullptr : pItem;
}

Drawing::Impl::Item* Drawing::Impl::findText(ID id)
{
    Item* pItem = find(id);
    return pItem == nullptr || pItem->kind != Kind::Text || pItem->pLetters->isSymbol ? nullptr : pItem;
}

std::uint32_t Drawing::Impl::add(Kind kind)
{
    std::uint32_t slot = 0;
    if (freeSlots.empty())
    {
        slot = static_cast<std::uint32_t>(items.size());
        items.emplace_back();
    }
    else
    {
        slot = freeSlots.back();
        freeSlots.pop_back();
        const std::uint32_t generation = items[slot].generation;
        items[slot] = Item();
        items[slot].generation = generation;
    }
    Item& item = items[slot];
    item.kind = kind;
    item.slot = slot;
    ++item.generation;
    item.group = group;
    if (group != cNoItem)
    {
        items[group].makeExtras().members.push_back(slot);
        item.isShown = items[group].isShown;
        item.zooms = items[group].zooms;
    }
    return slot;
}

auto Drawing::Impl::addShape(Kind kind, const Paint& paint) -> Item&
{
    const std::uint32_t slot = add(kind);
    Item& item = items[slot];
    item.place = static_cast<std::uint32_t>(order.size());
    order.push_back(slot);
    tables.addShape(item.places, (item.isShown ? IsVisible : 0U) | (kind == Kind::Glyphs ? AreGlyphs : 0U), item.place);
    setPaint(item, paint);
    nShapes += kind == Kind::Glyphs ? 0 : 1;
    return item;
}

void Drawing::Impl::setPaint(Item& item, const Paint& paint)
{
    if (tables.hasColor(item.places, paint))
        return;
    if (item.image != 0)
    {
        images.giveBack(std::exchange(item.image, 0));
        enlist(item);
    }
    const bool wasGradient = item.getGradient() != nullptr;
    if (paint.isGradient())
        item.makeExtras().pGradient = std::make_unique<Paint>(paint);
    else if (wasGradient)
        item.pExtras->pGradient.reset();
    if (item.kind == Kind::Glyphs)
        tables.setPaint(item.places, paint, textOf(item).anchor, 1);
    else
        tables.setPaint(item.places, paint, item.origin, item.step);
    if (item.kind == Kind::Glyphs && item.hasBounds && wasGradient != paint.isGradient())
        enlist(item); // gradients are drawn by outlines
    if (item.kind == Kind::Glyphs && item.pLetters && item.pLetters->hasColors)
        recolor(item, foregroundOf(paint));
    isChanged = true;
}

void Drawing::Impl::setImage(Item& item, const Image& image)
{
    const std::uint32_t number = images.take(image);
    setPaint(item, Paint());
    item.image = number;
    if (number != 0)
        tables.setImage(item.places, *item.pExtras->imageRect, item.origin, item.step);
    enlist(item);
}

void Drawing::Impl::setPath(Item& item, const Path& path)
{
    if (item.kind == Kind::Stroke)
        builder.makeStroke(path, *item.pStroke, tolerance, geometry);
    else
        builder.makeFill(path, item.rule, tolerance, geometry);
    if (item.kind != Kind::Stroke || !hasGeometry(item))
        setGeometry(item);
}

// What it was made from is kept by nobody: its points tell all of that.
void Drawing::Impl::setStroke(Item& item, const draw::Stroke& stroke)
{
    const auto copy = [](const auto& table, const TableRange& range, auto& copied)
    { copied.assign(table.data() + range.first, table.data() + range.first + range.count); };
    *item.pStroke = stroke;
    geometry.origin = item.origin;
    geometry.step = item.step;
    copy(tables.getPoints(), item.places.points, geometry.points);
    copy(tables.getNodes(), item.places.nodes, geometry.nodes);
    builder.remakeStroke(stroke, geometry);
    setGeometry(item);
}

bool Drawing::Impl::hasGeometry(const Item& item) const
{
    const auto has = [](const auto& table, const TableRange& range, const auto& records)
    { return range.count == records.size() && std::equal(records.begin(), records.end(), table.data() + range.first); };
    return !geometry.nodes.empty() && item.origin == geometry.origin && item.step == geometry.step &&
           has(tables.getPoints(), item.places.points, geometry.points) &&
           has(tables.getNodes(), item.places.nodes, geometry.nodes);
}

void Drawing::Impl::setGeometry(Item& item)
{
    const draw::Stroke* const pStroke = item.kind == Kind::Stroke ? item.pStroke.get() : nullptr;
    item.origin = geometry.origin;
    item.step = geometry.step;
    item.hasBounds = !geometry.nodes.empty() && (pStroke == nullptr || isSeen(*pStroke));
    tables.setGeometry(item.places, geometry, pStroke);
    if (const Paint* const pGradient = item.getGradient())
        tables.setPaint(item.places, *pGradient, item.origin, item.step);
    if (item.image != 0)
        tables.setImage(item.places, *item.pExtras->imageRect, item.origin, item.step);
    if (pStroke == nullptr)
    {
        unlink(item);
        item.version = edges.add(slotOf(item), geometry);
    }
    place(item);
    isChanged = true;
}

void Drawing::Impl::place(const Item& item)
{
    enlist(item);
    areElementsStale = true;
    if (!tables.setPlace(item.places, item.origin, item.step, wholeOf(item)))
        for (const std::uint32_t slot : order)
            if (slot != cNoItem)
                tables.setPlace(items[slot].places, items[slot].origin, items[slot].step, wholeOf(items[slot]));
}

void Drawing::Impl::update(Item& item)
{
    if (item.pMoved)
        item.pMoved->whole = item.group == cNoItem ? item.pMoved->own : wholeOf(items[item.group]) * item.pMoved->own;
    item.isShown = item.isVisible && (item.group == cNoItem || items[item.group].isShown);
    if (hasMembers(item))
        for (const std::uint32_t member : item.getMembers())
            update(items[member]);
    else
    {
        tables.setFlag(item.places, IsVisible, item.isShown);
        place(item);
        if (item.isShown && item.kind == Kind::Glyphs && item.pLetters->mayHavePictures)
            await(item); // hidden ones are not waited for
    }
    isChanged = true;
}

void Drawing::Impl::updateMoved(Item& item)
{
    for (const std::uint32_t slot : shapesOf(item))
        dropOutsiders(items[slot], item);
    update(item);
}

void Drawing::Impl::setGroup(Item& item, std::uint32_t to)
{
    if (item.group == to)
        return;
    findNeighbours();
    const Affine before = wholeOf(item);
    if (item.group != cNoItem)
        std::erase(items[item.group].makeExtras().members, slotOf(item));
    item.group = to;
    if (to != cNoItem)
        items[to].makeExtras().members.push_back(slotOf(item));
    const Affine whole = to == cNoItem ? item.getTransform() : wholeOf(items[to]) * item.getTransform();
    whole == before ? update(item) : updateMoved(item);
    updateZooms(item);
}

void Drawing::Impl::updateZooms(Item& item)
{
    findNeighbours();
    const ZoomRange own = item.pExtras ? item.pExtras->ownZooms : ZoomRange();
    item.zooms = item.group == cNoItem ? own : items[item.group].zooms & own;
    for (const std::uint32_t member : item.getMembers())
        updateZooms(items[member]);
    if (!hasMembers(item))
        enlist(item);
    if (item.getNeighbours().empty())
        return;
    markLinksStale(item);
    for (const std::uint32_t other : item.getNeighbours())
        markLinksStale(items[other]);
}

void Drawing::Impl::removeItem(std::uint32_t slot)
{
    Item& item = items[slot];
    for (const std::uint32_t member : item.getMembers())
        removeItem(member);
    if (!hasMembers(item))
    {
        unlink(item);
        index.remove(slot);
        tables.removeShape(item.places);
        leaveGap(item);
    }
    nShapes -= item.kind == Kind::Group || item.kind == Kind::Glyphs ? 0 : 1;
    if (group == slot)
        group = cNoItem;
    std::replace(groupsBefore.begin(), groupsBefore.end(), slot, cNoItem);
    item.kind = Kind::None;
    item.pStroke.reset();
    item.pLetters.reset();
    images.giveBack(std::exchange(item.image, 0));
    item.pExtras.reset();
    freeSlots.push_back(slot);
}

Drawing::Rect Drawing::Impl::boundsOfPoints(const Item& item) const
{
    const std::array<std::int32_t, 4>& box = tables.getNodes()[item.places.nodes.first].box;
    return {item.origin.x + item.step * box[0], item.origin.y + item.step * box[1], item.origin.x + item.step * box[2],
            item.origin.y + item.step * box[3]};
}

bool Drawing::Impl::boundsOf(const Item& item, Rect& bounds) const
{
    if (hasMembers(item) || !item.isShown || !item.hasBounds)
        return false;
    if (item.kind == Kind::Glyphs)
    {
        bounds = boundsOfText(item);
        return true;
    }
    const bool isWide = item.kind == Kind::Stroke && item.pStroke->unit == Unit::Model;
    const double margin = isWide ? item.pStroke->width / 2 * tables.getRecords()[item.places.record].reach : 0;
    const Rect rect = boundsOfPoints(item);
    const Affine* const pWhole = findWhole(item);
    if (pWhole == nullptr)
    {
        bounds = {rect.left - margin, rect.top - margin, rect.right + margin, rect.bottom + margin};
        return true;
    }
    bool isFirst = true;
    for (const double x : {rect.left - margin, rect.right + margin})
        for (const double y : {rect.top - margin, rect.bottom + margin})
        {
            const Point p = pWhole->map({x, y});
            bounds = isFirst ? Rect(p.x, p.y, p.x, p.y)
                             : Rect(std::min(bounds.left, p.x), std::min(bounds.top, p.y), std::max(bounds.right, p.x),
                                    std::max(bounds.bottom, p.y));
            isFirst = false;
        }
    return true;
}

void Drawing::Impl::enlist(const Item& item)
{
    DrawList::Shape shape;
    if (!boundsOf(item, shape.bounds))
        index.remove(slotOf(item));
    else
    {
        index.set(slotOf(item));
        shape.first = item.places.elements.first;
        shape.count = item.places.elements.count;
        shape.nTriangles = item.places.nTriangles;
        shape.record = item.places.record;
        if (item.kind == Kind::Stroke && item.pStroke->unit == Unit::Points)
            shape.margin = static_cast<float>(item.pStroke->width / 2) * tables.getRecords()[item.places.record].reach;
        shape.ink = item.kind == Kind::Fill ? DrawList::cFills : DrawList::cStrokes;
        if (item.image != 0)
            shape.ink = DrawList::cImages + item.image - 1;
        if (item.kind == Kind::Glyphs)
        {
            shape.first = DrawList::cLongElements + item.places.longElements.first;
            shape.count = item.places.longElements.count;
            const Letters& letters = *item.pLetters;
            const double reach = reachOf(textOf(item).ink);
            // A pixel more, for those that stand on whole ones.
            shape.margin = static_cast<float>((letters.style.isInPoints ? reach : 0) +
                                              std::hypot(letters.style.offset.x, letters.style.offset.y) + 1);
            shape.ink = item.getGradient() == nullptr ? letters.passInk
                        : letters.hasColors           ? std::uint32_t(DrawList::cBoth)
                                                      : DrawList::cGlyphs;
        }
    }
    largestMargin = std::max(largestMargin, double(shape.margin));
    shape.zooms = item.zooms;
    list.set(item.place, shape);
}

void Drawing::Impl::tidy()
{
    areElementsStale = false;
    if (list.countRanges() <= cMostRanges)
        return;
    std::vector<ShapePlaces*> inOrder;
    inOrder.reserve(order.size());
    for (const std::uint32_t slot : order)
        if (slot != cNoItem)
            inOrder.push_back(&items[slot].places);
    // Where hidden shapes lie between, there are as many ranges in any order.
    const auto isInOrder = [&inOrder](TableRange ShapePlaces::*range)
    {
        std::uint32_t end = 0;
        return std::all_of(inOrder.begin(), inOrder.end(),
                           [&](const ShapePlaces* pPlaces)
                           {
                               const TableRange& own = pPlaces->*range;
                               const bool isNext = own.count == 0 || own.first == end;
                               end += own.count;
                               return isNext;
                           });
    };
    if (isInOrder(&ShapePlaces::elements) && isInOrder(&ShapePlaces::longElements))
        return;
    tables.reorderElements(inOrder);
    for (const std::uint32_t slot : order)
        if (slot != cNoItem)
            enlist(items[slot]);
}

void Drawing::Impl::renumber()
{
    std::erase(order, cNoItem);
    list.clear();
    for (std::size_t i = 0; i < order.size(); ++i)
    {
        Item& item = items[order[i]];
        item.place = static_cast<std::uint32_t>(i);
        tables.setOrder(item.places, item.place);
        enlist(item);
    }
    nGaps = 0;
    areElementsStale = true;
}

void Drawing::Impl::leaveGap(const Item& item)
{
    order[item.place] = cNoItem;
    list.removeAt(item.place);
    ++nGaps;
}

void Drawing::Impl::append(Item& item)
{
    item.place = static_cast<std::uint32_t>(order.size());
    order.push_back(slotOf(item));
    tables.setOrder(item.places, item.place);
}

void Drawing::Impl::collectShapes(std::uint32_t slot, std::vector<std::uint32_t>& shapes) const
{
    if (!hasMembers(items[slot]))
        shapes.push_back(slot);
    for (const std::uint32_t member : items[slot].getMembers())
        collectShapes(member, shapes);
}

std::vector<std::uint32_t> Drawing::Impl::shapesOf(const Item& item) const
{
    std::vector<std::uint32_t> shapes;
    collectShapes(slotOf(item), shapes);
    std::sort(shapes.begin(), shapes.end(),
              [this](std::uint32_t a, std::uint32_t b) { return items[a].place < items[b].place; });
    return shapes;
}

void Drawing::Impl::move(std::span<const std::uint32_t> shapes, std::size_t before)
{
    for (const std::uint32_t slot : shapes)
        leaveGap(items[slot]);
    isChanged = true;
    if (before < order.size())
    {
        order.insert(order.begin() + static_cast<std::ptrdiff_t>(before), shapes.begin(), shapes.end());
        renumber();
        return;
    }
    for (const std::uint32_t slot : shapes)
    {
        append(items[slot]);
        place(items[slot]);
    }
}

void Drawing::Impl::widen(std::optional<Rect>& bounds, const Item& item) const
{
    for (const std::uint32_t member : item.getMembers())
        widen(bounds, items[member]);
    if (Rect rect; boundsOf(item, rect))
        bounds = bounds ? Rect(std::min(bounds->left, rect.left), std::min(bounds->top, rect.top),
                               std::max(bounds->right, rect.right), std::max(bounds->bottom, rect.bottom))
                        : rect;
}

bool Drawing::Impl::draw(const Sight& sight)
{
    if (nGaps > 1000 && nGaps > order.size() / 2)
        renumber();
    const Affine& map = sight.toPixels;
    const double s = sight.pixelsPerPoint;
    pointsPerUnit = sight.getZoom();
    toPoints = {map.a / s, -map.b / s, map.c / s, -map.d / s, 0, 0};
    // Where letters are along paths, and what followers do, goes by the sight: a picture of it has them there.
    const bool isKept = !isChanged && painter.hasPicture(sight);
    const bool wasChanged = isChanged;
    // Two views of other zooms would lay followers out in turns, in each frame.
    if (!isKept)
        for (ViewFollower* pFollower : followers)
            pFollower->follow(toPoints);
    placeRoutes(sight);
    isChanged = wasChanged;
    isWaitingSeen = false;
    if (!isKept)
    {
        if (areElementsStale)
            tidy();
        renewLinks();
        renewPictures(sight);
    }
    if (!painter.draw(tables, list, glyphs, images, sight, isChanged, isWaitingSeen))
        return false;
    isChanged = false;
    return true;
}

std::optional<Drawing::Impl::Local> Drawing::Impl::localOf(const Item& item) const
{
    const std::optional<Affine> inverse = item.kind == Kind::Glyphs ? toTextOf(item) : wholeOf(item).inverse();
    if (!inverse)
        return std::nullopt;
    Local local;
    if (item.kind == Kind::Glyphs)
    {
        local.toSteps = *inverse;
        local.scale = std::sqrt(std::abs(inverse->a * inverse->d - inverse->b * inverse->c));
        return local;
    }
    local.toSteps = Affine::scaling(1 / item.step) * Affine::translation(-item.origin.x, -item.origin.y) * *inverse;
    const Affine& map = local.toSteps;
    local.scale = std::sqrt(std::abs(map.a * map.d - map.b * map.c));
    const double point = local.scale / pointsPerUnit, unit = 1 / item.step;
    if (item.kind != Kind::Stroke)
        return local;
    const draw::Stroke& stroke = *item.pStroke;
    local.radius = stroke.width / 2 * (stroke.unit == Unit::Points ? point : unit);
    local.dashScale = stroke.dashUnit == Unit::Points ? point : unit;
    return local;
}

std::vector<std::uint32_t> Drawing::Impl::findAll(const Rect& rect, bool isOneEnough, const Test& test)
{
    // Widths in points are in none of the index's rectangles: what is looked for is widened by the largest.
    const double margin = largestMargin / pointsPerUnit;
    std::vector<std::uint32_t> found;
    index.find(
        {rect.left - margin, rect.top - margin, rect.right + margin, rect.bottom + margin},
        [this](std::uint32_t slot)
        {
            Rect bounds;
            boundsOf(items[slot], bounds);
            return bounds;
        },
        [this, &found](std::uint32_t slot)
        {
            if (items[slot].zooms.has(pointsPerUnit) && isPickable(items[slot]))
                found.push_back(slot);
        });
    std::sort(found.begin(), found.end(),
              [this](std::uint32_t a, std::uint32_t b) { return items[a].place > items[b].place; });
    found.erase(std::unique(found.begin(), found.end()), found.end());
    std::vector<std::uint32_t> accepted;
    for (const std::uint32_t slot : found)
        if (const std::optional<Local> local = localOf(items[slot]);
            local && test(items[slot], ShapePicker(tables, items[slot].places), *local))
        {
            accepted.push_back(slot);
            if (isOneEnough)
                break;
        }
    return accepted;
}

} // namespace gui::draw
