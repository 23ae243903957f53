#include <gui/draw/Drawing.h>

#include "DrawingImpl.h"
#include "PictureSize.h"

#include <gui/gl/Framebuffer.h>
#include <gui/gl/OrthoView.h>
#include <gui/gl/StateGuard.h>

#include <td/Assert.h>
#include <td/GUIThread.h>
#include <vo/Log.h>

#include <epoxy/gl.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <unordered_set>
#include <utility>

namespace gui::draw
{

namespace
{

bool isFinite(const Affine& m)
{
    return std::isfinite(m.a) && std::isfinite(m.b) && std::isfinite(m.c) && std::isfinite(m.d) && std::isfinite(m.e) &&
           std::isfinite(m.f);
}

bool isNear(const Drawing::Rect& line, Drawing::Point p, double distance)
{
    const double x = p.x - std::clamp(p.x, line.left, line.right), y = p.y - std::clamp(p.y, line.top, line.bottom);
    return std::hypot(x, y) <= distance;
}

// Two convex shapes have nothing in common when there is an axis, across a side of one of them, along which they don't.
bool isTouched(const Drawing::Rect& line, const ShapePicker::Quad& quad)
{
    const auto isApart = [&](double x, double y)
    {
        double low[2] = {1e300, 1e300}, high[2] = {-1e300, -1e300};
        const auto add = [&](int i, double px, double py)
        {
            low[i] = std::min(low[i], px * x + py * y);
            high[i] = std::max(high[i], px * x + py * y);
        };
        for (const double px : {line.left, line.right})
            for (const double py : {line.top, line.bottom})
                add(0, px, py);
        for (const Drawing::Point& p : quad)
            add(1, p.x, p.y);
        return high[0] < low[1] || high[1] < low[0];
    };
    return !isApart(1, 0) && !isApart(0, 1) && !isApart(quad[1].y - quad[0].y, quad[0].x - quad[1].x) &&
           !isApart(quad[2].y - quad[1].y, quad[1].x - quad[2].x);
}

} // namespace

Drawing::Drawing()
    : _pImpl(std::make_unique<Impl>())
{
}

Drawing::~Drawing() = default;

Drawing::ID Drawing::fill(const Path& path, const Paint& paint, FillRule rule)
{
    TD_ASSERT_GUI_THREAD(0);
    Impl::Item& item = _pImpl->addShape(Impl::Kind::Fill, paint);
    item.rule = rule;
    _pImpl->setPath(item, path);
    return _pImpl->idOf(item.slot);
}

Drawing::ID Drawing::stroke(const Path& path, const Stroke& stroke, const Paint& paint)
{
    TD_ASSERT_GUI_THREAD(0);
    Impl::Item& item = _pImpl->addShape(Impl::Kind::Stroke, paint);
    item.pStroke = std::make_unique<Stroke>(stroke);
    _pImpl->setPath(item, path);
    return _pImpl->idOf(item.slot);
}

Drawing::ID Drawing::text(Point at, const TextLayout& layout, const TextPlacement& placement)
{
    TD_ASSERT_GUI_THREAD(0);
    return _pImpl->addText(at, layout, placement);
}

Drawing::ID Drawing::text(Point at, std::string_view text, const TextStyle& style, const TextPlacement& placement)
{
    return _pImpl->addText(at, TextLayout(text, style), placement);
}

Drawing::ID Drawing::textOn(const Path& path, const TextLayout& layout, const TextOnPath& placement)
{
    TD_ASSERT_GUI_THREAD(0);
    return _pImpl->addTextOn(path, layout, placement);
}

Drawing::ID Drawing::textOn(const Path& path, std::string_view text, const TextStyle& style,
                            const TextOnPath& placement)
{
    return _pImpl->addTextOn(path, TextLayout(text, style), placement);
}

Drawing::ID Drawing::symbol(Point at, const Path& path, const Paint& paint)
{
    TD_ASSERT_GUI_THREAD(0);
    return _pImpl->addSymbol(at, path, paint);
}

bool Drawing::setText(ID text, std::string_view string)
{
    Impl::Item* pItem = _pImpl->findText(text);
    if (pItem == nullptr)
        return false;
    if (Impl::Letters& letters = *pItem->pLetters; letters.string != string)
    {
        _pImpl->setText(*pItem, TextLayout(string, letters.text));
        letters.string = string;
    }
    return true;
}

bool Drawing::setText(ID text, const TextLayout& layout)
{
    Impl::Item* pItem = _pImpl->findText(text);
    if (pItem == nullptr)
        return false;
    _pImpl->setText(*pItem, layout);
    pItem->pLetters->string.reset();
    return true;
}

bool Drawing::setText(ID text, const TextLayout& layout, const TextPlacement& placement)
{
    Impl::Item* pItem = _pImpl->findText(text);
    if (pItem == nullptr || pItem->pLetters->pRoute)
        return false;
    pItem->pLetters->placement = placement;
    return setText(text, layout);
}

Drawing::ID Drawing::image(const Rect& rect, const Image& image)
{
    TD_ASSERT_GUI_THREAD(0);
    Impl::Item& item = _pImpl->addShape(Impl::Kind::Fill, Paint());
    item.makeExtras().imageRect = rect;
    _pImpl->setPath(item, Path().addRect(rect));
    _pImpl->setImage(item, image);
    return _pImpl->idOf(item.slot);
}

bool Drawing::setImage(ID shape, const Image& image)
{
    Impl::Item* pItem = _pImpl->findShape(shape);
    const Impl::Extras* const pExtras = pItem == nullptr ? nullptr : pItem->pExtras.get();
    if (pExtras == nullptr || !pExtras->imageRect || pExtras->imageRect->right <= pExtras->imageRect->left)
        return false;
    _pImpl->setImage(*pItem, image);
    return true;
}

Drawing::ID Drawing::beginGroup(const Affine& transform)
{
    TD_ASSERT_GUI_THREAD(0);
    const std::uint32_t slot = _pImpl->add(Impl::Kind::Group);
    Impl::Item& item = _pImpl->items[slot];
    if (isFinite(transform))
        item.setTransform(transform);
    _pImpl->update(item);
    _pImpl->groupsBefore.push_back(std::exchange(_pImpl->group, slot));
    return _pImpl->idOf(slot);
}

bool Drawing::openGroup(ID group)
{
    TD_ASSERT_GUI_THREAD(false);
    const Impl::Item* pItem = _pImpl->find(group);
    if (pItem == nullptr || pItem->kind != Impl::Kind::Group)
        return false;
    _pImpl->groupsBefore.push_back(std::exchange(_pImpl->group, _pImpl->slotOf(*pItem)));
    return true;
}

void Drawing::endGroup()
{
    TD_ASSERT(!_pImpl->groupsBefore.empty());
    _pImpl->group = _pImpl->groupsBefore.back();
    _pImpl->groupsBefore.pop_back();
}

bool Drawing::setGroup(ID id, ID group)
{
    TD_ASSERT_GUI_THREAD(false);
    Impl::Item *pItem = _pImpl->find(id), *pGroup = _pImpl->find(group);
    if (pItem == nullptr || (pGroup == nullptr && group != 0))
        return false;
    if (pGroup != nullptr && (pGroup->kind != Impl::Kind::Group || _pImpl->isWithin(*pGroup, *pItem)))
        return false;
    _pImpl->setGroup(*pItem, pGroup == nullptr ? cNoItem : _pImpl->slotOf(*pGroup));
    return true;
}

Drawing::ID Drawing::getGroup(ID id) const
{
    const Impl::Item* pItem = _pImpl->find(id);
    return pItem == nullptr || pItem->group == cNoItem ? 0 : _pImpl->idOf(pItem->group);
}

bool Drawing::setColor(ID id, const Paint& paint)
{
    TD_ASSERT_GUI_THREAD(false);
    Impl::Item* pItem = _pImpl->find(id);
    if (pItem == nullptr)
        return false;
    if (pItem->kind == Impl::Kind::Text)
        pItem->pLetters->text.paint = paint;
    else if (pItem->kind != Impl::Kind::Group)
        _pImpl->setPaint(*pItem, paint);
    for (const std::uint32_t member : pItem->getMembers())
        if (pItem->kind == Impl::Kind::Group)
            setColor(_pImpl->idOf(member), paint);
        else if (const Impl::Letters& letters = *_pImpl->items[member].pLetters; !letters.isHalo && !letters.isFrame)
            _pImpl->setPaint(_pImpl->items[member], paint);
    return true;
}

bool Drawing::setVisible(ID id, bool isVisible)
{
    Impl::Item* pItem = _pImpl->find(id);
    if (pItem == nullptr)
        return false;
    if (isVisible == pItem->isVisible)
        return true;
    pItem->isVisible = isVisible;
    _pImpl->update(*pItem);
    return true;
}

bool Drawing::setZoomRange(ID id, double minZoom, double maxZoom)
{
    Impl::Item* pItem = _pImpl->find(id);
    if (pItem == nullptr || std::isnan(minZoom) || std::isnan(maxZoom))
        return false;
    const auto limit = [](double zoom)
    { return zoom > 1e38 ? std::numeric_limits<float>::infinity() : static_cast<float>(std::max(zoom, 0.0)); };
    const ZoomRange range{limit(minZoom), limit(maxZoom)};
    if (range == (pItem->pExtras ? pItem->pExtras->ownZooms : ZoomRange()))
        return true;
    pItem->makeExtras().ownZooms = range;
    _pImpl->updateZooms(*pItem);
    _pImpl->isChanged = true;
    return true;
}

bool Drawing::setPickable(ID id, bool isPickable)
{
    Impl::Item* pItem = _pImpl->find(id);
    if (pItem != nullptr)
        pItem->isPickable = isPickable;
    return pItem != nullptr;
}

bool Drawing::setTag(ID id, std::uint64_t tag)
{
    Impl::Item* pItem = _pImpl->find(id);
    if (pItem != nullptr)
        pItem->tag = tag;
    return pItem != nullptr;
}

std::uint64_t Drawing::getTag(ID id) const
{
    const Impl::Item* pItem = _pImpl->find(id);
    return pItem == nullptr ? 0 : _pImpl->tagOf(*pItem);
}

bool Drawing::setPath(ID shape, const Path& path)
{
    TD_ASSERT_GUI_THREAD(false);
    Impl::Item* pItem = _pImpl->findShape(shape);
    const bool isText = pItem != nullptr && pItem->kind == Impl::Kind::Text;
    const bool isSymbol = isText && pItem->pLetters->isSymbol;
    if (pItem == nullptr || (isText && !isSymbol && !pItem->pLetters->pRoute))
        return false;
    if (isSymbol)
        _pImpl->setSymbol(*pItem, path);
    else if (isText)
        _pImpl->setRoute(*pItem, path);
    else
        _pImpl->setPath(*pItem, path);
    return true;
}

bool Drawing::setStroke(ID shape, const Stroke& stroke)
{
    Impl::Item* pItem = _pImpl->findShape(shape);
    if (pItem == nullptr || pItem->kind != Impl::Kind::Stroke)
        return false;
    if (stroke != *pItem->pStroke)
        _pImpl->setStroke(*pItem, stroke);
    return true;
}

bool Drawing::setTransform(ID id, const Affine& transform)
{
    TD_ASSERT_GUI_THREAD(false);
    Impl::Item* pItem = _pImpl->find(id);
    if (pItem == nullptr || !isFinite(transform))
        return false;
    if (transform == pItem->getTransform())
        return true;
    _pImpl->findNeighbours();
    pItem->setTransform(transform);
    _pImpl->updateMoved(*pItem);
    return true;
}

bool Drawing::remove(ID id)
{
    TD_ASSERT_GUI_THREAD(false);
    Impl& impl = *_pImpl;
    Impl::Item* pItem = impl.find(id);
    if (pItem == nullptr)
        return false;
    if (pItem->group != cNoItem)
        std::erase(impl.items[pItem->group].pExtras->members, impl.slotOf(*pItem));
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
    TD_ASSERT_GUI_THREAD();
    Impl& impl = *_pImpl;
    for (std::uint32_t slot = 0; slot < impl.items.size(); ++slot)
        if (impl.items[slot].kind != Impl::Kind::None)
        {
            impl.items[slot].kind = Impl::Kind::None;
            impl.items[slot].pExtras.reset();
            impl.items[slot].image = 0;
            impl.freeSlots.push_back(slot);
        }
    impl.order.clear();
    impl.list.clear();
    impl.nGaps = 0;
    impl.tables.clear();
    impl.nShapes = 0;
    impl.group = cNoItem;
    impl.groupsBefore.clear();
    impl.areElementsStale = false;
    impl.staleLinks.clear();
    impl.edges.clear();
    impl.index.clear();
    impl.largestMargin = 0;
    impl.glyphs.clear();
    impl.waitingTexts.clear();
    impl.routedTexts.clear();
    impl.images.clear();
    impl.isChanged = true;
}

void Drawing::setTolerance(double tolerance) { _pImpl->tolerance = tolerance; }

void Drawing::setOpacity(double opacity)
{
    _pImpl->painter.setOpacity(opacity >= 0 && opacity <= 1 ? static_cast<float>(opacity) : 1);
}

std::size_t Drawing::getNumberOfShapes() const { return _pImpl->nShapes; }

std::optional<Drawing::Rect> Drawing::getBounds() const
{
    std::optional<Rect> bounds;
    for (const std::uint32_t slot : _pImpl->order)
        if (slot != cNoItem)
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
    const Rect rect(point.x - tolerance, point.y - tolerance, point.x + tolerance, point.y + tolerance);
    const std::vector<std::uint32_t> found =
        _pImpl->findAll(rect, true,
                        [&](const Impl::Item& item, const ShapePicker& picker, const Impl::Local& local)
                        {
                            const Point at = local.toSteps.map(point);
                            const double distance = tolerance * local.scale;
                            if (item.kind == Impl::Kind::Fill)
                                return picker.isFillAt(at, distance);
                            if (item.kind == Impl::Kind::Glyphs)
                                return _pImpl->findLine(item, [&](const Rect& line, const Affine& toLine)
                                                        { return isNear(line, toLine.map(at), distance); });
                            return picker.isStrokeAt(at, distance, *item.pStroke, local.radius, local.dashScale);
                        });
    return found.empty() ? 0 : _pImpl->idOfShape(found.front());
}

std::vector<Drawing::ID> Drawing::pickAll(const Rect& rect) const
{
    const std::vector<std::uint32_t> found = _pImpl->findAll(
        rect, false,
        [&](const Impl::Item& item, const ShapePicker& picker, const Impl::Local& local)
        {
            const Affine& map = local.toSteps;
            const ShapePicker::Quad quad{map.map({rect.left, rect.top}), map.map({rect.right, rect.top}),
                                         map.map({rect.right, rect.bottom}), map.map({rect.left, rect.bottom})};
            if (item.kind == Impl::Kind::Fill)
                return picker.isFillIn(quad);
            if (item.kind == Impl::Kind::Glyphs)
                return _pImpl->findLine(item,
                                        [&quad](const Rect& line, const Affine& toLine)
                                        {
                                            ShapePicker::Quad moved = quad;
                                            for (Point& p : moved)
                                                p = toLine.map(p);
                                            return isTouched(line, moved);
                                        });
            return picker.isStrokeIn(quad, *item.pStroke, local.radius, local.dashScale);
        });
    std::vector<ID> ids(found.size());
    std::transform(found.begin(), found.end(), ids.begin(),
                   [this](std::uint32_t slot) { return _pImpl->idOfShape(slot); });
    // A text of several styles, by its topmost part; its parts may lie apart.
    std::unordered_set<ID> seen;
    std::erase_if(ids, [&seen](ID id) { return !seen.insert(id).second; });
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
    sight.size = {viewport[2], viewport[3]};
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
    const double up = view.isYDown() ? -1 : 1;
    Sight sight;
    sight.center = {origin.x + viewport[2] / 2.0 / s / zoom, origin.y + viewport[3] / 2.0 / s / zoom};
    sight.toPixels = {s * zoom, 0, 0, up * s * zoom, 0, 0};
    sight.pixelsPerPoint = s;
    sight.size = {viewport[2], viewport[3]};
    return _pImpl->draw(sight);
}

bool Drawing::savePicture(const char* path, const td::Size<double>& size, const Affine& modelToView,
                          double pixelsPerPoint, td::Color background)
{
    TD_ASSERT(path != nullptr, false);
    gl::Framebuffer picture;
    if (!picture.create(toPixels(size, pixelsPerPoint)))
        return false;
    bool isDrawn = false;
    {
        const gl::StateGuard guard;
        const gl::Framebuffer::Drawing drawing(picture);
        if (drawing)
        {
            gl::Context::disable(gl::Context::Flag::ScissorTest);
            gl::Context::maskColorBuffer(true, true, true, true);
            gl::Context::clear(gl::Context::Clear::Color, background);
            isDrawn = draw(modelToView, pixelsPerPoint);
        }
    }
    return isDrawn && picture.savePicture(path);
}

} // namespace gui::draw
