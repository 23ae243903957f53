#include <gui/draw/Drawing.h>

#include "DrawingPainter.h"
#include "ShapeTables.h"

#include <gui/gl/OrthoView.h>

#include <td/Assert.h>
#include <vo/Log.h>

#include <epoxy/gl.h>

#include <algorithm>
#include <array>
#include <cmath>

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

    /// A shape or a group, in a slot that is used again.
    struct Item
    {
        Kind kind = Kind::None;
        bool isVisible = true;
        bool isShown = true; // with all groups around it
        FillRule rule = FillRule::NonZero;
        std::uint32_t generation = 0;
        std::uint32_t group = cNone;
        std::uint32_t place = 0; // in the order of drawing, as far as that is up to date
        Affine transform;
        Affine whole; // with those of all groups around it
        td::Point<double> origin;
        double step = 1;
        std::optional<Rect> bounds; // of the path
        Path path;                  // of a stroke, which makes its shape anew
        draw::Stroke stroke;
        ShapePlaces places;
        std::vector<std::uint32_t> members; // of a group
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
    std::uint32_t slotOf(const Item& item) const { return static_cast<std::uint32_t>(&item - items.data()); }

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

    ID addShape(Kind kind, const Path& path, td::Color color)
    {
        const std::uint32_t slot = add(kind);
        Item& item = items[slot];
        tables.addShape(item.places);
        tables.setFlag(item.places, IsVisible, item.isShown);
        tables.setColor(item.places, color);
        item.place = static_cast<std::uint32_t>(order.size());
        order.push_back(slot);
        tables.setOrder(item.places, item.place);
        ++nShapes;
        return setPath(item, path);
    }

    ID setPath(Item& item, const Path& path)
    {
        const bool isStroke = item.kind == Kind::Stroke;
        if (!isStroke)
            builder.makeFill(path, item.rule, tolerance, geometry);
        else if (item.stroke.width > 0 && std::isfinite(item.stroke.width))
            builder.makeStroke(path, item.stroke, tolerance, geometry);
        else
            geometry.clear();
        item.origin = geometry.origin;
        item.step = geometry.step;
        item.bounds = path.getBounds();
        if (isStroke)
            item.path = path;
        const std::uint32_t nBefore = item.places.elements.count, firstBefore = item.places.elements.first;
        tables.setGeometry(item.places, geometry, isStroke ? &item.stroke : nullptr);
        if (!areRangesStale && nBefore == 0 && item.place + 1 == order.size())
            appendRange(item);
        else if (nBefore != item.places.elements.count || firstBefore != item.places.elements.first)
            areRangesStale = true;
        place(item);
        isChanged = true;
        return idOf(slotOf(item));
    }

    void place(const Item& item)
    {
        if (!tables.setPlace(item.places, item.origin, item.step, item.whole))
            for (const std::uint32_t slot : order)
                tables.setPlace(items[slot].places, items[slot].origin, items[slot].step, items[slot].whole);
    }

    // After a change of what is around it, or of its own.
    void update(Item& item)
    {
        item.whole = item.group == cNone ? item.transform : items[item.group].whole * item.transform;
        item.isShown = item.isVisible && (item.group == cNone || items[item.group].isShown);
        if (item.kind == Kind::Group)
            for (const std::uint32_t member : item.members)
                update(items[member]);
        else
        {
            if (tables.getRecords()[item.places.record].flags % 2 != item.isShown)
                areRangesStale = true;
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
            tables.removeShape(item.places);
            --nShapes;
        }
        if (group == slot)
            group = cNone;
        item.kind = Kind::None;
        item.members.clear();
        freeSlots.push_back(slot);
    }

    void appendRange(const Item& item)
    {
        const TableRange& elements = item.places.elements;
        if (elements.count == 0 || !item.isShown)
            return;
        if (!ranges.empty() && ranges.back().first + ranges.back().count == elements.first)
            ranges.back().count += elements.count;
        else
            ranges.push_back({elements.first, elements.count});
    }

    void makeRanges()
    {
        ranges.clear();
        for (const std::uint32_t slot : order)
            appendRange(items[slot]);
        areRangesStale = false;
        if (ranges.size() <= cMostRanges)
            return;
        std::vector<TableRange*> inOrder;
        inOrder.reserve(order.size());
        for (const std::uint32_t slot : order)
            inOrder.push_back(&items[slot].places.elements);
        tables.reorderElements(inOrder);
        ranges.clear();
        for (const std::uint32_t slot : order)
            appendRange(items[slot]);
    }

    void renumber()
    {
        for (std::size_t i = 0; i < order.size(); ++i)
        {
            items[order[i]].place = static_cast<std::uint32_t>(i);
            tables.setOrder(items[order[i]].places, static_cast<std::uint32_t>(i));
        }
        isOrderStale = false;
    }

    void collectShapes(std::uint32_t slot, std::vector<std::uint32_t>& shapes) const
    {
        if (items[slot].kind != Kind::Group)
            shapes.push_back(slot);
        for (const std::uint32_t member : items[slot].members)
            collectShapes(member, shapes);
    }

    // Moves shapes, in their order, to before a place in the order as it is now.
    void move(const Item& item, std::size_t before)
    {
        if (isOrderStale)
            renumber();
        std::vector<std::uint32_t> moved;
        collectShapes(slotOf(item), moved);
        std::sort(moved.begin(), moved.end(),
                  [this](std::uint32_t a, std::uint32_t b) { return items[a].place < items[b].place; });
        std::vector<char> isMoved(order.size());
        for (const std::uint32_t slot : moved)
            isMoved[items[slot].place] = 1;
        std::vector<std::uint32_t> result;
        result.reserve(order.size());
        for (std::size_t i = 0; i <= order.size(); ++i)
        {
            if (i == before)
                result.insert(result.end(), moved.begin(), moved.end());
            if (i < order.size() && isMoved[i] == 0)
                result.push_back(order[i]);
        }
        order = std::move(result);
        renumber();
        areRangesStale = isChanged = true;
    }

    // The places of the first and the last shape of an item.
    std::pair<std::size_t, std::size_t> placesOf(const Item& item)
    {
        if (isOrderStale)
            renumber();
        std::vector<std::uint32_t> shapes;
        collectShapes(slotOf(item), shapes);
        std::pair<std::size_t, std::size_t> places{order.size(), 0};
        for (const std::uint32_t slot : shapes)
            places = {std::min<std::size_t>(places.first, items[slot].place),
                      std::max<std::size_t>(places.second, items[slot].place)};
        return places;
    }

    void widen(std::optional<Rect>& bounds, const Item& item) const
    {
        for (const std::uint32_t member : item.members)
            widen(bounds, items[member]);
        if (item.kind == Kind::Group || !item.isShown || !item.bounds)
            return;
        const ShapeRecord& record = tables.getRecords()[item.places.record];
        const bool isWide = item.kind == Kind::Stroke && item.stroke.unit == Unit::Model;
        const double margin = isWide ? item.stroke.width / 2 * record.reach : 0;
        const Rect& rect = *item.bounds;
        for (const double x : {rect.left - margin, rect.right + margin})
            for (const double y : {rect.top - margin, rect.bottom + margin})
            {
                const Point p = item.whole.map({x, y});
                if (!bounds)
                    bounds = Rect(p.x, p.y, p.x, p.y);
                *bounds = Rect(std::min(bounds->left, p.x), std::min(bounds->top, p.y), std::max(bounds->right, p.x),
                               std::max(bounds->bottom, p.y));
            }
    }

    bool draw(const Sight& sight)
    {
        if (isOrderStale)
            renumber();
        if (areRangesStale)
            makeRanges();
        pixelsPerPoint = sight.pixelsPerPoint;
        if (!painter.draw(tables, ranges, sight, isChanged))
            return false;
        isChanged = false;
        // The geometric mean of what the axes are stretched by.
        const Affine& map = sight.toPixels;
        pointsPerUnit = std::sqrt(std::abs(map.a * map.d - map.b * map.c)) / sight.pixelsPerPoint;
        return true;
    }

    std::vector<Item> items;
    std::vector<std::uint32_t> freeSlots;
    std::vector<std::uint32_t> order; // of drawing: shapes
    std::vector<gl::Quads::Range> ranges;
    std::size_t nShapes = 0;
    std::uint32_t group = cNone; // what is added belongs to
    double tolerance = 0;
    double pixelsPerPoint = 1;
    double pointsPerUnit = 1;
    bool isOrderStale = false;
    bool areRangesStale = false;
    bool isChanged = true;
    bool hasSaidNoInverse = false;
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
    const ID id = _pImpl->addShape(Impl::Kind::Fill, Path(), color);
    Impl::Item& item = *_pImpl->find(id);
    item.rule = rule;
    return _pImpl->setPath(item, path);
}

Drawing::ID Drawing::stroke(const Path& path, const Stroke& stroke, td::Color color)
{
    const ID id = _pImpl->addShape(Impl::Kind::Stroke, Path(), color);
    Impl::Item& item = *_pImpl->find(id);
    item.stroke = stroke;
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
    pItem->stroke = stroke;
    return _pImpl->setPath(*pItem, Path(pItem->path)) != 0;
}

bool Drawing::setTransform(ID id, const Affine& transform)
{
    Impl::Item* pItem = _pImpl->find(id);
    if (pItem == nullptr || !isFinite(transform))
        return false;
    pItem->transform = transform;
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
    const std::size_t nBefore = impl.nShapes;
    impl.removeItem(impl.slotOf(*pItem));
    if (impl.nShapes != nBefore)
        std::erase_if(impl.order, [&impl](std::uint32_t slot) { return impl.items[slot].kind == Impl::Kind::None; });
    impl.isOrderStale = impl.areRangesStale = impl.isChanged = true;
    return true;
}

bool Drawing::moveAbove(ID id, ID other)
{
    Impl::Item *pItem = _pImpl->find(id), *pOther = _pImpl->find(other);
    if (pItem == nullptr || pOther == nullptr)
        return false;
    _pImpl->move(*pItem, std::min(_pImpl->placesOf(*pOther).second + 1, _pImpl->order.size()));
    return true;
}

bool Drawing::moveBelow(ID id, ID other)
{
    Impl::Item *pItem = _pImpl->find(id), *pOther = _pImpl->find(other);
    if (pItem == nullptr || pOther == nullptr)
        return false;
    _pImpl->move(*pItem, _pImpl->placesOf(*pOther).first);
    return true;
}

bool Drawing::raise(ID id)
{
    const Impl::Item* pItem = _pImpl->find(id);
    if (pItem != nullptr)
        _pImpl->move(*pItem, _pImpl->order.size());
    return pItem != nullptr;
}

bool Drawing::lower(ID id)
{
    const Impl::Item* pItem = _pImpl->find(id);
    if (pItem != nullptr)
        _pImpl->move(*pItem, 0);
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
    impl.ranges.clear();
    impl.tables.clear();
    impl.nShapes = 0;
    impl.group = cNone;
    impl.isOrderStale = impl.areRangesStale = false;
    impl.isChanged = true;
}

void Drawing::setTolerance(double tolerance) { _pImpl->tolerance = tolerance; }

std::size_t Drawing::getNumberOfShapes() const { return _pImpl->nShapes; }

std::optional<Drawing::Rect> Drawing::getBounds() const
{
    std::optional<Rect> bounds;
    for (const std::uint32_t slot : _pImpl->order)
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
