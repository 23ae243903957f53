#include <gui/draw/Labels.h>

#include "LabelRoom.h"
#include "TextAnchor.h"

#include <gui/gl/OrthoView.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <utility>

namespace gui::draw
{

namespace
{

/// Zooms at which labels are placed anew.
constexpr double cStepsPerOctave = 4;

/// How much of its length an axis of the plane may differ and still point the same way.
constexpr double cSameDirection = 1e-6;

// Around a layout, with its halos and its frame, from the point where its anchor stands.
Drawing::Rect boxOf(const TextLayout& layout, const TextPlacement& placement)
{
    const td::Size<double> size = layout.getSize();
    const auto [x, y] = anchorIn(layout, placement.anchor);
    double halo = 0;
    for (std::size_t i = 0; i < layout.getNumberOfStyles(); ++i)
        halo = std::max(halo, layout.getStyle(i).halo.width);
    Drawing::Rect box(-x - halo, -y - halo, size.width - x + halo, size.height - y + halo);
    if (const std::optional<Drawing::Rect> frame = frameIn(layout, placement))
        box = {std::min(box.left, frame->left), std::min(box.top, frame->top), std::max(box.right, frame->right),
               std::max(box.bottom, frame->bottom)};
    const double angle = placement.angle * std::numbers::pi / 180, c = std::cos(angle), s = std::sin(angle);
    std::array<double, 4> xs, ys;
    for (std::size_t i = 0; i < 4; ++i)
    {
        const double cornerX = i % 2 == 0 ? box.left : box.right, cornerY = i / 2 == 0 ? box.top : box.bottom;
        xs[i] = cornerX * c + cornerY * s + placement.offset.x;
        ys[i] = cornerY * c - cornerX * s + placement.offset.y;
    }
    const auto [left, right] = std::minmax_element(xs.begin(), xs.end());
    const auto [top, bottom] = std::minmax_element(ys.begin(), ys.end());
    return {*left, *top, *right, *bottom};
}

} // namespace

Labels::Labels(Drawing& drawing)
    : _drawing(drawing)
{
}

Drawing::ID Labels::add(Drawing::Point at, const TextLayout& layout, const TextPlacement& placement,
                        const LabelRule& rule)
{
    ++_nLabels;
    ++_nHidden;
    return append(at, layout, placement, rule, false);
}

Drawing::ID Labels::add(Drawing::Point at, std::string_view text, const TextStyle& style,
                        const TextPlacement& placement, const LabelRule& rule)
{
    return add(at, TextLayout(text, style), placement, rule);
}

Drawing::ID Labels::addAlternative(Drawing::Point at, const TextLayout& layout, const TextPlacement& placement,
                                   const LabelRule& rule)
{
    return _labels.empty() ? 0 : append(at, layout, placement, rule, true);
}

Drawing::ID Labels::append(Drawing::Point at, const TextLayout& layout, const TextPlacement& placement,
                           const LabelRule& rule, bool isAlternative)
{
    const Drawing::ID id = _drawing.text(at, layout, placement);
    _drawing.setVisible(id, false);
    Label& label = _labels.emplace_back(Label{id, at, boxOf(layout, placement), rule, isAlternative, at});
    if (std::isnan(rule.priority))
        label.rule.priority = -std::numeric_limits<double>::infinity();
    _indices.emplace(id, _labels.size() - 1);
    _isPlaced = false;
    return id;
}

bool Labels::setSymbol(Drawing::ID label, Drawing::ID symbol, double radius)
{
    const auto found = _indices.find(label);
    if (found == _indices.end() || _labels[found->second].isAlternative || !(radius >= 0) || !std::isfinite(radius) ||
        !_drawing.setVisible(symbol, false))
        return false;
    Label& owner = _labels[found->second];
    owner.symbol = symbol;
    owner.isSymbolShown = false;
    owner.radius = radius;
    owner.symbolFrom = owner.at;
    _isPlaced = false;
    return true;
}

bool Labels::move(Drawing::ID id, Drawing::Point at)
{
    const auto found = _indices.find(id);
    if (found == _indices.end() || !std::isfinite(at.x) || !std::isfinite(at.y))
        return false;
    Label& label = _labels[found->second];
    if (at.x == label.at.x && at.y == label.at.y)
        return true;
    label.at = at;
    _drawing.setTransform(id, Affine::translation(at.x - label.from.x, at.y - label.from.y));
    _drawing.setTransform(label.symbol, Affine::translation(at.x - label.symbolFrom.x, at.y - label.symbolFrom.y));
    _isPlaced = false;
    return true;
}

bool Labels::setWanted(Drawing::ID id, bool isWanted)
{
    const auto found = _indices.find(id);
    if (found == _indices.end())
        return false;
    Label& label = _labels[found->second];
    _isPlaced = _isPlaced && label.isWanted == isWanted;
    label.isWanted = isWanted;
    return true;
}

void Labels::clear()
{
    for (const Label& label : _labels)
        for (const Drawing::ID id : {label.id, label.symbol})
            _drawing.remove(id);
    _labels.clear();
    _indices.clear();
    _order.clear();
    _nLabels = 0;
    _nHidden = 0;
    _isPlaced = false;
}

void Labels::setMargin(double points)
{
    _margin = std::isfinite(points) ? points : 0;
    _isPlaced = false;
}

bool Labels::isShown(Drawing::ID id) const
{
    const auto found = _indices.find(id);
    return found != _indices.end() && _labels[found->second].isShown;
}

void Labels::place(const gl::OrthoView& view)
{
    place(Affine::scaling(view.getZoom(), view.isYDown() ? view.getZoom() : -view.getZoom()));
}

void Labels::place(const Affine& modelToView)
{
    const Affine& map = modelToView;
    const double scale = std::sqrt(std::abs(map.a * map.d - map.b * map.c));
    if (!(scale > 0) || !std::isfinite(scale))
        return;
    const int step = static_cast<int>(std::floor(std::log2(scale) * cStepsPerOctave));
    const Affine direction{map.a / scale, map.b / scale, map.c / scale, map.d / scale, 0, 0};
    const auto isNear = [](double a, double b) { return std::abs(a - b) < cSameDirection; };
    if (_isPlaced && step == _step && isNear(direction.a, _direction.a) && isNear(direction.b, _direction.b) &&
        isNear(direction.c, _direction.c) && isNear(direction.d, _direction.d))
        return;
    if (_order.size() != _nLabels)
    {
        _order.clear();
        for (std::uint32_t i = 0; i < _labels.size(); ++i)
            if (!_labels[i].isAlternative)
                _order.push_back(i);
        std::stable_sort(_order.begin(), _order.end(),
                         [this](std::uint32_t a, std::uint32_t b)
                         { return _labels[a].rule.priority > _labels[b].rule.priority; });
    }
    // The smallest zoom of the step: at the others, labels are farther apart.
    const double zoom = std::exp2(step / cStepsPerOctave);
    const Affine toPoints = Affine::scaling(zoom) * direction;
    LabelRoom room(_nLabels);
    const auto isWithin = [&](const Label& label)
    {
        // Farther away than this, and wider, nobody looks.
        constexpr double cMost = 1e15;
        const Drawing::Rect& box = label.box;
        const auto [x, y] = toPoints.map(label.at);
        return label.isWanted && std::abs(x) < cMost && std::abs(y) < cMost && box.right - box.left < 1e4 &&
               box.bottom - box.top < 1e4 && zoom >= label.rule.minZoom && zoom < label.rule.maxZoom;
    };
    const auto around = [&](const Label& label, const Drawing::Rect& box)
    {
        const auto [x, y] = toPoints.map(label.at);
        return Drawing::Rect{x + box.left - _margin / 2, y + box.top - _margin / 2, x + box.right + _margin / 2,
                             y + box.bottom + _margin / 2};
    };
    const auto take = [&](const Label& label, const Label& owner)
    {
        if (!isWithin(label))
            return false;
        if (_margin < 0)
            return true;
        const Drawing::Rect box = around(label, label.box);
        if (!room.isFree(box))
            return false;
        if (owner.symbol != 0)
        {
            const double r = std::min(owner.radius, 1e3);
            const Drawing::Rect symbol = around(owner, {-r, -r, r, r});
            if (!room.isFree(symbol))
                return false;
            room.take(symbol);
        }
        room.take(box);
        return true;
    };
    _nHidden = 0;
    for (const std::uint32_t first : _order)
    {
        bool isAnyShown = false;
        for (std::size_t i = first; i < _labels.size() && (i == first || _labels[i].isAlternative); ++i)
        {
            Label& label = _labels[i];
            const bool isShown = !isAnyShown && take(label, _labels[first]);
            if (isShown != label.isShown)
                _drawing.setVisible(label.id, isShown);
            label.isShown = isShown;
            isAnyShown = isAnyShown || isShown;
        }
        if (_labels[first].symbol != 0 && isAnyShown != _labels[first].isSymbolShown)
            _drawing.setVisible(_labels[first].symbol, _labels[first].isSymbolShown = isAnyShown);
        _nHidden += isAnyShown ? 0 : 1;
    }
    _step = step;
    _direction = direction;
    _isPlaced = true;
}

} // namespace gui::draw
