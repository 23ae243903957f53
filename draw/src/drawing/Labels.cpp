#include <gui/draw/Labels.h>

#include "TextAnchor.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <numeric>
#include <unordered_map>

namespace gui::draw
{

namespace
{

/// Zooms at which labels are placed anew.
constexpr double cStepsPerOctave = 4;

/// Of the squares in which boxes are looked up, in points: about as large as labels are.
constexpr double cSquare = 64;

// Around a layout, with its halos, from the point where its anchor stands.
Drawing::Rect boxOf(const TextLayout& layout, const TextPlacement& placement)
{
    const td::Size<double> size = layout.getSize();
    const auto [x, y] = anchorIn(layout, placement.anchor);
    double halo = 0;
    for (std::size_t i = 0; i < layout.getNumberOfStyles(); ++i)
        halo = std::max(halo, layout.getStyle(i).halo.width);
    const double angle = placement.angle * std::numbers::pi / 180, c = std::cos(angle), s = std::sin(angle);
    std::array<double, 4> xs, ys;
    for (std::size_t i = 0; i < 4; ++i)
    {
        const double cornerX = i % 2 == 0 ? -x - halo : size.width - x + halo;
        const double cornerY = i / 2 == 0 ? -y - halo : size.height - y + halo;
        xs[i] = cornerX * c + cornerY * s + placement.offset.x;
        ys[i] = cornerY * c - cornerX * s + placement.offset.y;
    }
    const auto [left, right] = std::minmax_element(xs.begin(), xs.end());
    const auto [top, bottom] = std::minmax_element(ys.begin(), ys.end());
    return {*left, *top, *right, *bottom};
}

} // namespace

class Labels::Room
{
public:
    /// Takes the room of a box unless a part of it is taken already.
    bool take(const Drawing::Rect& box)
    {
        const auto square = [](double x) { return static_cast<std::int64_t>(std::floor(x / cSquare)); };
        const std::int64_t left = square(box.left), right = square(box.right), top = square(box.top),
                           bottom = square(box.bottom);
        for (std::int64_t y = top; y <= bottom; ++y)
            for (std::int64_t x = left; x <= right; ++x)
                if (const auto found = _squares.find(keyOf(x, y)); found != _squares.end())
                    for (std::uint32_t i = found->second; i != cNone; i = _places[i].next)
                        if (const Drawing::Rect& other = _places[i].box;
                            box.left < other.right && box.right > other.left && box.top < other.bottom &&
                            box.bottom > other.top)
                            return false;
        for (std::int64_t y = top; y <= bottom; ++y)
            for (std::int64_t x = left; x <= right; ++x)
            {
                std::uint32_t& first = _squares.try_emplace(keyOf(x, y), cNone).first->second;
                _places.push_back({box, first});
                first = static_cast<std::uint32_t>(_places.size()) - 1;
            }
        return true;
    }

private:
    static constexpr std::uint32_t cNone = UINT32_MAX;

    struct Place
    {
        Drawing::Rect box;
        std::uint32_t next; // in the same square
    };

    // Squares far apart may share one: their boxes are compared all the same.
    static std::uint64_t keyOf(std::int64_t x, std::int64_t y)
    {
        return static_cast<std::uint64_t>(x) * 0x9e3779b97f4a7c15U ^ static_cast<std::uint64_t>(y);
    }

    std::unordered_map<std::uint64_t, std::uint32_t> _squares;
    std::vector<Place> _places;
};

Labels::Labels(Drawing& drawing)
    : _drawing(drawing)
{
}

Drawing::ID Labels::add(Drawing::Point at, const TextLayout& layout, const TextPlacement& placement, double priority)
{
    const Drawing::ID id = _drawing.text(at, layout, placement);
    _drawing.setVisible(id, false);
    _labels.push_back({id, at, boxOf(layout, placement),
                       std::isnan(priority) ? -std::numeric_limits<double>::infinity() : priority, false});
    _isPlaced = false;
    ++_nHidden;
    return id;
}

Drawing::ID Labels::add(Drawing::Point at, std::string_view text, const TextStyle& style,
                        const TextPlacement& placement, double priority)
{
    return add(at, TextLayout(text, style), placement, priority);
}

void Labels::clear()
{
    for (const Label& label : _labels)
        _drawing.remove(label.id);
    _labels.clear();
    _nHidden = 0;
    _isPlaced = false;
}

void Labels::setMargin(double points)
{
    _margin = std::isfinite(points) ? points : 0;
    _isPlaced = false;
}

void Labels::place(double pointsPerUnit)
{
    if (!(pointsPerUnit > 0) || !std::isfinite(pointsPerUnit))
        return;
    const int step = static_cast<int>(std::floor(std::log2(pointsPerUnit) * cStepsPerOctave));
    if (_isPlaced && step == _step)
        return;
    if (_order.size() != _labels.size())
    {
        _order.resize(_labels.size());
        std::iota(_order.begin(), _order.end(), 0U);
        std::stable_sort(_order.begin(), _order.end(),
                         [this](std::uint32_t a, std::uint32_t b)
                         { return _labels[a].priority > _labels[b].priority; });
    }
    // The smallest zoom of the step: at the others, labels are farther apart.
    const double zoom = std::exp2(step / cStepsPerOctave);
    Room room;
    _nHidden = 0;
    for (const std::uint32_t i : _order)
    {
        Label& label = _labels[i];
        const double x = label.at.x * zoom, y = label.at.y * zoom;
        // Farther away than this, and wider, nobody looks.
        constexpr double cMost = 1e15;
        const bool isUsable = std::abs(x) < cMost && std::abs(y) < cMost && label.box.right - label.box.left < 1e4 &&
                              label.box.bottom - label.box.top < 1e4;
        const bool isShown =
            isUsable &&
            (_margin < 0 || room.take({x + label.box.left - _margin / 2, y + label.box.top - _margin / 2,
                                       x + label.box.right + _margin / 2, y + label.box.bottom + _margin / 2}));
        if (isShown != label.isShown)
            _drawing.setVisible(label.id, isShown);
        label.isShown = isShown;
        _nHidden += isShown ? 0 : 1;
    }
    _step = step;
    _isPlaced = true;
}

} // namespace gui::draw
