#include <gui/draw/Drawing.h>

#include "DrawingPainter.h"
#include "ShapeIndex.h"
#include "ShapePicker.h"
#include "ShapeTables.h"
#include "SharedEdges.h"

#include <gui/gl/OrthoView.h>

#include <td/Assert.h>
#include <vo/Log.h>

#include <epoxy/gl.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <deque>
#include <utility>

namespace gui::draw
{

namespace
{

constexpr std::uint32_t cNone = UINT32_MAX;

/// Past so many pieces, elements are brought into their order instead of being drawn piece by piece.
constexpr std::size_t cMostRanges = 1000;

bool isFinite(const Affine& m)
{
    return std::isfinite(m.a) && std::isfinite(m.b) && std::isfinite(m.c) && std::isfinite(m.d) && std::isfinite(m.e) &&
           std::isfinite(m.f);
}

} // namespace

struct Drawing::Impl
{
    enum class Kind : td::BYTE
    {
        None,
        Fill,
        Stroke,
        Group
    };

    /// What a stroke's shape is made from, again when its style changes.
    struct Line
    {
        Path path;
        draw::Stroke stroke;
    };

    /// A shape or a group, in a slot that is used again.
    struct Item
    {
        Kind kind = Kind::None;
        bool isVisible = true;
        bool isShown = true; // with all groups around it
        FillRule rule = FillRule::NonZero;
        bool areLinksStale = false;
        std::uint32_t slot = 0;
        std::uint32_t generation = 0;
        std::uint32_t group = cNone;
        std::uint32_t place = 0; // in the order of drawing, as far as that is up to date
        Affine transform;
        Affine whole; // with those of all groups around it
        td::Point<double> origin;
        double step = 1;
        bool hasBounds = false;
        Rect bounds;                 // of its points, as they are kept
        std::unique_ptr<Line> pLine; // of a stroke
        ShapePlaces places;
        std::vector<std::uint32_t> members;    // of a group
        std::vector<std::uint32_t> neighbours; // fills that share edges with this one
        SharedEdges::Version version = cNone;  // of what it shares
    };

    ID idOf(std::uint32_t slot) const { return ID(items[slot].generation) << 32 | (slot + 1); }

    Item* find(ID id)
    {
        const auto slot = static_cast<std::uint32_t>(id) - 1;
        if (id == 0 || slot >= items.size() || items[slot].kind == Kind::None || items[slot].generation != id >> 32)
            return nullptr;
        return &items[slot];
    }
    Item* findShape(ID id)
    {
        Item* pItem = find(id);
        return pItem == nullptr || pItem->kind == Kind::Group ? nullptr : pItem;
    }
    static std::uint32_t slotOf(const Item& item) { return item.slot; }

    std::uint32_t add(Kind kind)
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
        }
        const std::uint32_t generation = items[slot].generation + 1;
        items[slot] = Item();
        Item& item = items[slot];
        item.kind = kind;
        item.slot = slot;
        item.generation = generation;
        item.group = group;
        if (group != cNone)
        {
            items[group].members.push_back(slot);
            item.whole = items[group].whole;
            item.isShown = items[group].isShown;
        }
        return slot;
    }

    ID addShape(Kind kind, td::Color color)
    {
        const std::uint32_t slot = add(kind);
        Item& item = items[slot];
        tables.addShape(item.places);
        tables.setFlag(item.places, IsVisible, item.isShown);
        tables.setColor(item.places, color);
        append(item);
        ++nShapes;
        return idOf(slot);
    }

    ID setPath(Item& item, const Path& path)
    {
        const bool isStroke = item.kind == Kind::Stroke;
        if (!isStroke)
            builder.makeFill(path, item.rule, tolerance, geometry);
        else if (item.pLine->stroke.width > 0 && std::isfinite(item.pLine->stroke.width))
            builder.makeStroke(path, item.pLine->stroke, tolerance, geometry);
        else
            geometry.clear();
        item.origin = geometry.origin;
        item.step = geometry.step;
        item.hasBounds = !geometry.nodes.empty();
        if (item.hasBounds)
        {
            const std::array<std::int32_t, 4>& box = geometry.nodes.front().box;
            item.bounds = {item.origin.x + item.step * box[0], item.origin.y + item.step * box[1],
                           item.origin.x + item.step * box[2], item.origin.y + item.step * box[3]};
        }
        if (isStroke)
            item.pLine->path = path;
        tables.setGeometry(item.places, geometry, isStroke ? &item.pLine->stroke : nullptr);
        if (!isStroke)
        {
            unlink(item);
            link(item);
        }
        place(item);
        isChanged = true;
        return idOf(slotOf(item));
    }

    void place(const Item& item)
    {
        enlist(item);
        areElementsStale = true;
        if (!tables.setPlace(item.places, item.origin, item.step, item.whole))
            for (const std::uint32_t slot : order)
                if (slot != cNone)
                    tables.setPlace(items[slot].places, items[slot].origin, items[slot].step, items[slot].whole);
    }

    // After a change of what is around it, or of its own.
    void update(Item& item)
    {
        const Affine whole = item.group == cNone ? item.transform : items[item.group].whole * item.transform;
        item.whole = whole;
        item.isShown = item.isVisible && (item.group == cNone || items[item.group].isShown);
        if (item.kind == Kind::Group)
            for (const std::uint32_t member : item.members)
                update(items[member]);
        else
        {
            tables.setFlag(item.places, IsVisible, item.isShown);
            place(item);
        }
        isChanged = true;
    }

    void removeItem(std::uint32_t slot)
    {
        Item& item = items[slot];
        for (const std::uint32_t member : item.members)
            removeItem(member);
        if (item.kind != Kind::Group)
        {
            unlink(item);
            index.remove(slot);
            tables.removeShape(item.places);
            leaveGap(item);
            --nShapes;
        }
        if (group == slot)
            group = cNone;
        item.kind = Kind::None;
        item.members.clear();
        item.pLine.reset();
        freeSlots.push_back(slot);
    }

    // Finds the fills around one whose geometry was just made.
    void link(Item& item)
    {
        const std::uint32_t slot = slotOf(item);
        item.version = edges.add(geometry, slot, item.neighbours);
        std::erase_if(item.neighbours, [this, &item](std::uint32_t other) { return items[other].whole != item.whole; });
        for (const std::uint32_t other : item.neighbours)
        {
            items[other].neighbours.push_back(slot);
            markLinksStale(items[other]);
        }
        if (!item.neighbours.empty())
            markLinksStale(item);
    }

    void unlink(Item& item)
    {
        if (item.version != cNone)
            edges.remove(item.version);
        item.version = cNone;
        dropNeighbours(item);
    }

    void dropNeighbours(Item& item)
    {
        for (const std::uint32_t other : item.neighbours)
        {
            std::erase(items[other].neighbours, slotOf(item));
            markLinksStale(items[other]);
        }
        if (!item.neighbours.empty())
            markLinksStale(item);
        item.neighbours.clear();
    }

    bool isWithin(const Item& item, const Item& other) const
    {
        return &item == &other || (item.group != cNone && isWithin(items[item.group], other));
    }

    // Parts a shape from those that don't move with an item.
    void dropOutsiders(Item& shape, const Item& mover)
    {
        const auto isOutside = [this, &mover](std::uint32_t other) { return !isWithin(items[other], mover); };
        for (const std::uint32_t other : shape.neighbours)
            if (isOutside(other))
            {
                std::erase(items[other].neighbours, slotOf(shape));
                markLinksStale(items[other]);
            }
        if (std::erase_if(shape.neighbours, isOutside) != 0)
            markLinksStale(shape);
    }

    void markLinksStale(Item& item)
    {
        if (!std::exchange(item.areLinksStale, true))
            staleLinks.push_back(slotOf(item));
    }

    void renewLinks()
    {
        std::vector<std::uint32_t> records;
        for (const std::uint32_t slot : staleLinks)
        {
            Item& item = items[slot];
            if (!std::exchange(item.areLinksStale, false) || item.kind != Kind::Fill)
                continue;
            records.clear();
            for (const std::uint32_t other : item.neighbours)
                records.push_back(items[other].places.record);
            tables.setLinks(item.places, records);
        }
        staleLinks.clear();
    }

    // What is seen of a shape, with its stroke's width as far as that is known; false when there is nothing.
    bool boundsOf(const Item& item, Rect& bounds) const
    {
        if (item.kind == Kind::Group || !item.isShown || !item.hasBounds)
            return false;
        const bool isWide = item.kind == Kind::Stroke && item.pLine->stroke.unit == Unit::Model;
        const double margin = isWide ? item.pLine->stroke.width / 2 * tables.getRecords()[item.places.record].reach : 0;
        const Rect& rect = item.bounds;
        bool isFirst = true;
        for (const double x : {rect.left - margin, rect.right + margin})
            for (const double y : {rect.top - margin, rect.bottom + margin})
            {
                const Point p = item.whole.map({x, y});
                bounds = isFirst ? Rect(p.x, p.y, p.x, p.y)
                                 : Rect(std::min(bounds.left, p.x), std::min(bounds.top, p.y),
                                        std::max(bounds.right, p.x), std::max(bounds.bottom, p.y));
                isFirst = false;
            }
        return true;
    }

    // Tells list and index of a shape.
    void enlist(const Item& item)
    {
        DrawList::Shape shape;
        if (!boundsOf(item, shape.bounds))
            index.remove(slotOf(item));
        else
        {
            index.set(slotOf(item), shape.bounds);
            shape.first = item.places.elements.first;
            shape.count = item.places.elements.count;
            shape.record = item.places.record;
            if (item.kind == Kind::Stroke && item.pLine->stroke.unit == Unit::Points)
                shape.margin =
                    static_cast<float>(item.pLine->stroke.width / 2) * tables.getRecords()[item.places.record].reach;
        }
        largestMargin = std::max(largestMargin, double(shape.margin));
        list.set(item.place, shape);
    }

    // Where elements lie in too many pieces, they are brought into their order.
    void tidy()
    {
        areElementsStale = false;
        if (list.countRanges() <= cMostRanges)
            return;
        std::vector<TableRange*> inOrder;
        inOrder.reserve(order.size());
        for (const std::uint32_t slot : order)
            if (slot != cNone)
                inOrder.push_back(&items[slot].places.elements);
        tables.reorderElements(inOrder);
        for (const std::uint32_t slot : order)
            if (slot != cNone)
                enlist(items[slot]);
    }

    // Closes the gaps that removed and raised shapes have left.
    void renumber()
    {
        std::erase(order, cNone);
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

    void leaveGap(const Item& item)
    {
        order[item.place] = cNone;
        list.removeAt(item.place);
        ++nGaps;
    }

    void append(Item& item)
    {
        item.place = static_cast<std::uint32_t>(order.size());
        order.push_back(slotOf(item));
        tables.setOrder(item.places, item.place);
    }

    void collectShapes(std::uint32_t slot, std::vector<std::uint32_t>& shapes) const
    {
        if (items[slot].kind != Kind::Group)
            shapes.push_back(slot);
        for (const std::uint32_t member : items[slot].members)
            collectShapes(member, shapes);
    }

    // The shapes of an item, in the order of drawing.
    std::vector<std::uint32_t> shapesOf(const Item& item) const
    {
        std::vector<std::uint32_t> shapes;
        collectShapes(slotOf(item), shapes);
        std::sort(shapes.begin(), shapes.end(),
                  [this](std::uint32_t a, std::uint32_t b) { return items[a].place < items[b].place; });
        return shapes;
    }

    // Moves shapes, in their order, to before a place.
    void move(const std::vector<std::uint32_t>& shapes, std::size_t before)
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

    void widen(std::optional<Rect>& bounds, const Item& item) const
    {
        for (const std::uint32_t member : item.members)
            widen(bounds, items[member]);
        if (Rect rect; boundsOf(item, rect))
            bounds = bounds ? Rect(std::min(bounds->left, rect.left), std::min(bounds->top, rect.top),
                                   std::max(bounds->right, rect.right), std::max(bounds->bottom, rect.bottom))
                            : rect;
    }

    bool draw(const Sight& sight)
    {
        if (nGaps > 1000 && nGaps > order.size() / 2)
            renumber();
        if (areElementsStale)
            tidy();
        renewLinks();
        if (!painter.draw(tables, list, sight, isChanged))
            return false;
        isChanged = false;
        // The geometric mean of what the axes are stretched by.
        const Affine& map = sight.toPixels;
        pointsPerUnit = std::sqrt(std::abs(map.a * map.d - map.b * map.c)) / sight.pixelsPerPoint;
        return true;
    }

    std::deque<Item> items;
    std::vector<std::uint32_t> freeSlots;
    std::vector<std::uint32_t> order; // of drawing: shapes, and gaps
    std::size_t nGaps = 0;
    DrawList list;
    std::size_t nShapes = 0;
    std::uint32_t group = cNone; // what is added belongs to
    double tolerance = 0;
    double pointsPerUnit = 1;
    bool areElementsStale = false;
    bool isChanged = true;
    bool hasSaidNoInverse = false;
    // Widths in points are in none of the index's rectangles: what is looked for is widened by the largest.
    double indexMargin() const { return largestMargin / pointsPerUnit; }

    // In its own steps: what a shape is asked in.
    struct Local
    {
        Affine toSteps;
        double scale = 1; // steps per model unit
        double radius = 0;
        double dashScale = 1;
    };
    std::optional<Local> localOf(const Item& item) const
    {
        const std::optional<Affine> inverse = item.whole.inverse();
        if (!inverse)
            return std::nullopt;
        Local local;
        local.toSteps = Affine::scaling(1 / item.step) * Affine::translation(-item.origin.x, -item.origin.y) * *inverse;
        const Affine& map = local.toSteps;
        local.scale = std::sqrt(std::abs(map.a * map.d - map.b * map.c));
        const double point = local.scale / pointsPerUnit, unit = 1 / item.step;
        if (item.kind != Kind::Stroke)
            return local;
        const draw::Stroke& stroke = item.pLine->stroke;
        local.radius = stroke.width / 2 * (stroke.unit == Unit::Points ? point : unit);
        local.dashScale = stroke.dashUnit == Unit::Points ? point : unit;
        return local;
    }

    // The topmost of those that a test accepts.
    template <typename Test>
    std::vector<std::uint32_t> findAll(const Rect& rect, Test test)
    {
        std::vector<std::uint32_t> found;
        const double margin = indexMargin();
        index.find({rect.left - margin, rect.top - margin, rect.right + margin, rect.bottom + margin},
                   [&](std::uint32_t slot) { found.push_back(slot); });
        std::sort(found.begin(), found.end(),
                  [this](std::uint32_t a, std::uint32_t b) { return items[a].place > items[b].place; });
        found.erase(std::unique(found.begin(), found.end()), found.end());
        std::vector<std::uint32_t> accepted;
        for (const std::uint32_t slot : found)
            if (const std::optional<Local> local = localOf(items[slot]))
                if (!test(items[slot], ShapePicker(tables, items[slot].places), *local, accepted))
                    break;
        return accepted;
    }

    std::vector<std::uint32_t> staleLinks;
    ShapeIndex index;
    double largestMargin = 0; // of strokes whose width is in points
    SharedEdges edges;
    ShapeBuilder builder;
    ShapeGeometry geometry;
    ShapeTables tables;
    DrawingPainter painter;
};

Drawing::Drawing()
    : _pImpl(std::make_unique<Impl>())
{
}

Drawing::~Drawing() = default;

Drawing::ID Drawing::fill(const Path& path, td::Color color, FillRule rule)
{
    const ID id = _pImpl->addShape(Impl::Kind::Fill, color);
    Impl::Item& item = *_pImpl->find(id);
    item.rule = rule;
    return _pImpl->setPath(item, path);
}

Drawing::ID Drawing::stroke(const Path& path, const Stroke& stroke, td::Color color)
{
    const ID id = _pImpl->addShape(Impl::Kind::Stroke, color);
    Impl::Item& item = *_pImpl->find(id);
    item.pLine = std::make_unique<Impl::Line>();
    item.pLine->stroke = stroke;
    return _pImpl->setPath(item, path);
}

Drawing::ID Drawing::beginGroup(const Affine& transform)
{
    const std::uint32_t slot = _pImpl->add(Impl::Kind::Group);
    Impl::Item& item = _pImpl->items[slot];
    if (isFinite(transform))
        item.transform = transform;
    _pImpl->update(item);
    _pImpl->group = slot;
    return _pImpl->idOf(slot);
}

void Drawing::endGroup()
{
    TD_ASSERT(_pImpl->group != cNone);
    _pImpl->group = _pImpl->items[_pImpl->group].group;
}

bool Drawing::setColor(ID shape, td::Color color)
{
    Impl::Item* pItem = _pImpl->findShape(shape);
    if (pItem == nullptr)
        return false;
    _pImpl->tables.setColor(pItem->places, color);
    _pImpl->isChanged = true;
    return true;
}

bool Drawing::setVisible(ID id, bool isVisible)
{
    Impl::Item* pItem = _pImpl->find(id);
    if (pItem == nullptr)
        return false;
    pItem->isVisible = isVisible;
    _pImpl->update(*pItem);
    return true;
}

bool Drawing::setPath(ID shape, const Path& path)
{
    Impl::Item* pItem = _pImpl->findShape(shape);
    return pItem != nullptr && _pImpl->setPath(*pItem, path) != 0;
}

bool Drawing::setStroke(ID shape, const Stroke& stroke)
{
    Impl::Item* pItem = _pImpl->findShape(shape);
    if (pItem == nullptr || pItem->kind != Impl::Kind::Stroke)
        return false;
    pItem->pLine->stroke = stroke;
    return _pImpl->setPath(*pItem, Path(pItem->pLine->path)) != 0;
}

bool Drawing::setTransform(ID id, const Affine& transform)
{
    Impl::Item* pItem = _pImpl->find(id);
    if (pItem == nullptr || !isFinite(transform))
        return false;
    pItem->transform = transform;
    // What it shared edges with is elsewhere now.
    for (const std::uint32_t slot : _pImpl->shapesOf(*pItem))
        _pImpl->dropOutsiders(_pImpl->items[slot], *pItem);
    _pImpl->update(*pItem);
    return true;
}

bool Drawing::remove(ID id)
{
    Impl& impl = *_pImpl;
    Impl::Item* pItem = impl.find(id);
    if (pItem == nullptr)
        return false;
    if (pItem->group != cNone)
        std::erase(impl.items[pItem->group].members, impl.slotOf(*pItem));
    impl.removeItem(impl.slotOf(*pItem));
    impl.isChanged = true;
    return true;
}

bool Drawing::moveAbove(ID id, ID other)
{
    const Impl::Item *pItem = _pImpl->find(id), *pOther = _pImpl->find(other);
    if (pItem == nullptr || pOther == nullptr)
        return false;
    if (const std::vector<std::uint32_t> others = _pImpl->shapesOf(*pOther); !others.empty())
        _pImpl->move(_pImpl->shapesOf(*pItem), _pImpl->items[others.back()].place + std::size_t(1));
    return true;
}

bool Drawing::moveBelow(ID id, ID other)
{
    const Impl::Item *pItem = _pImpl->find(id), *pOther = _pImpl->find(other);
    if (pItem == nullptr || pOther == nullptr)
        return false;
    if (const std::vector<std::uint32_t> others = _pImpl->shapesOf(*pOther); !others.empty())
        _pImpl->move(_pImpl->shapesOf(*pItem), _pImpl->items[others.front()].place);
    return true;
}

bool Drawing::raise(ID id)
{
    const Impl::Item* pItem = _pImpl->find(id);
    if (pItem != nullptr)
        _pImpl->move(_pImpl->shapesOf(*pItem), _pImpl->order.size());
    return pItem != nullptr;
}

bool Drawing::lower(ID id)
{
    const Impl::Item* pItem = _pImpl->find(id);
    if (pItem != nullptr)
        _pImpl->move(_pImpl->shapesOf(*pItem), 0);
    return pItem != nullptr;
}

void Drawing::clear()
{
    Impl& impl = *_pImpl;
    for (std::uint32_t slot = 0; slot < impl.items.size(); ++slot)
        if (impl.items[slot].kind != Impl::Kind::None)
        {
            impl.items[slot].kind = Impl::Kind::None;
            impl.items[slot].members.clear();
            impl.freeSlots.push_back(slot);
        }
    impl.order.clear();
    impl.list.clear();
    impl.nGaps = 0;
    impl.tables.clear();
    impl.nShapes = 0;
    impl.group = cNone;
    impl.areElementsStale = false;
    impl.staleLinks.clear();
    impl.edges.clear();
    impl.index.clear();
    impl.largestMargin = 0;
    impl.isChanged = true;
}

void Drawing::setTolerance(double tolerance) { _pImpl->tolerance = tolerance; }

std::size_t Drawing::getNumberOfShapes() const { return _pImpl->nShapes; }

std::optional<Drawing::Rect> Drawing::getBounds() const
{
    std::optional<Rect> bounds;
    for (const std::uint32_t slot : _pImpl->order)
        if (slot != cNone)
            _pImpl->widen(bounds, _pImpl->items[slot]);
    return bounds;
}

std::optional<Drawing::Rect> Drawing::getBounds(ID id) const
{
    std::optional<Rect> bounds;
    if (const Impl::Item* pItem = _pImpl->find(id))
        _pImpl->widen(bounds, *pItem);
    return bounds;
}

Drawing::ID Drawing::pick(Point point, double tolerance) const
{
    if (!std::isfinite(point.x) || !std::isfinite(point.y) || !(tolerance >= 0))
        return 0;
    const std::vector<std::uint32_t> found =
        _pImpl->findAll({point.x - tolerance, point.y - tolerance, point.x + tolerance, point.y + tolerance},
                        [&](const Impl::Item& item, const ShapePicker& picker, const Impl::Local& local,
                            std::vector<std::uint32_t>& accepted)
                        {
                            const Point at = local.toSteps.map(point);
                            const double distance = tolerance * local.scale;
                            const bool isThere = item.kind == Impl::Kind::Fill
                                                     ? picker.isFillAt(at, distance)
                                                     : picker.isStrokeAt(at, distance, item.pLine->stroke, local.radius,
                                                                         local.dashScale);
                            if (isThere)
                                accepted.push_back(_pImpl->slotOf(item));
                            return !isThere;
                        });
    return found.empty() ? 0 : _pImpl->idOf(found.front());
}

std::vector<Drawing::ID> Drawing::pickAll(const Rect& rect) const
{
    const std::vector<std::uint32_t> found = _pImpl->findAll(
        rect,
        [&](const Impl::Item& item, const ShapePicker& picker, const Impl::Local& local,
            std::vector<std::uint32_t>& accepted)
        {
            const Affine& map = local.toSteps;
            const ShapePicker::Quad quad{map.map({rect.left, rect.top}), map.map({rect.right, rect.top}),
                                         map.map({rect.right, rect.bottom}), map.map({rect.left, rect.bottom})};
            if (item.kind == Impl::Kind::Fill
                    ? picker.isFillIn(quad)
                    : picker.isStrokeIn(quad, item.pLine->stroke, local.radius, local.dashScale))
                accepted.push_back(_pImpl->slotOf(item));
            return true;
        });
    std::vector<ID> ids(found.size());
    std::transform(found.begin(), found.end(), ids.begin(), [this](std::uint32_t slot) { return _pImpl->idOf(slot); });
    return ids;
}

bool Drawing::draw(const Affine& modelToView, double pixelsPerPoint)
{
    if (!gl::CurrentContext::isThere("Drawing::draw"))
        return false;
    const std::optional<Affine> inverse = modelToView.inverse();
    if (!inverse || !(pixelsPerPoint > 0) || !std::isfinite(pixelsPerPoint))
    {
        if (!_pImpl->hasSaidNoInverse)
            vo::dbgLog("Error! Drawing::draw: the map to the view has no inverse!");
        _pImpl->hasSaidNoInverse = true;
        return false;
    }
    std::array<GLint, 4> viewport{};
    glGetIntegerv(GL_VIEWPORT, viewport.data());
    const double s = pixelsPerPoint;
    Sight sight;
    sight.center = inverse->map({viewport[2] / 2.0 / s, viewport[3] / 2.0 / s});
    sight.toPixels = {s * modelToView.a, -s * modelToView.b, s * modelToView.c, -s * modelToView.d, 0, 0};
    sight.pixelsPerPoint = s;
    return _pImpl->draw(sight);
}

bool Drawing::draw(const gl::OrthoView& view)
{
    if (!gl::CurrentContext::isThere("Drawing::draw"))
        return false;
    std::array<GLint, 4> viewport{};
    glGetIntegerv(GL_VIEWPORT, viewport.data());
    const double s = view.getPixelHiDPIScale(), zoom = view.getZoom();
    const Point origin = view.getOrigin();
    // The origin is at the top left corner when y grows downwards.
    const double up = view.getModelPoint({0, 0}).y == origin.y ? -1 : 1;
    Sight sight;
    sight.center = {origin.x + viewport[2] / 2.0 / s / zoom, origin.y + viewport[3] / 2.0 / s / zoom};
    sight.toPixels = {s * zoom, 0, 0, up * s * zoom, 0, 0};
    sight.pixelsPerPoint = s;
    return _pImpl->draw(sight);
}

} // namespace gui::draw
