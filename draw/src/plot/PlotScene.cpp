#include "PlotScene.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace gui::draw
{

namespace
{

// The shaders' numbers of shapes; those of markers follow.
constexpr std::uint32_t cRect = 0, cRoundRect = 1, cDashedRect = 2, cFirstMarker = 3;

// What a quad costs, in pixels that the fragment shader could do instead.
constexpr double cQuadCost = 40;
constexpr int cWidestTile = 32;
constexpr std::uint32_t cManyPieces = 24;

// Far beyond all pictures whole numbers end.
int wholeOf(double place)
{
    constexpr double cFar = 1e9;
    return place > -cFar ? static_cast<int>(std::min(place, cFar)) : static_cast<int>(-cFar);
}

} // namespace

void PlotScene::clear()
{
    _texels.clear();
    _passes.clear();
}

PlotScene::Pass& PlotScene::beginPass(Kind kind)
{
    Pass& pass = _passes.emplace_back();
    pass.kind = kind;
    pass.first = static_cast<std::uint32_t>(_texels.size());
    pass.count = 0;
    pass.clip = _clip;
    return pass;
}

void PlotScene::addMarkRecord(double x, double y, double halfWidth, double halfHeight, std::uint32_t shape,
                              td::Color color, td::Color edge, double number)
{
    if (_passes.empty() || _passes.back().kind != Kind::Marks || !(_passes.back().clip == _clip))
        beginPass(Kind::Marks);
    _texels.push_back({bits(x), bits(y), bits(halfWidth), bits(halfHeight)});
    _texels.push_back({shape, color.rgba(), edge.rgba(), bits(number)});
    ++_passes.back().count;
}

void PlotScene::addRect(const Rect& rect, td::Color color)
{
    if (color.alpha() != 0)
        addMarkRecord((rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2, (rect.right - rect.left) / 2,
                      (rect.bottom - rect.top) / 2, cRect, color, {}, 0);
}

void PlotScene::addRoundRect(const Rect& rect, double radius, td::Color color)
{
    addMarkRecord((rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2, (rect.right - rect.left) / 2,
                  (rect.bottom - rect.top) / 2, cRoundRect, color, {}, radius);
}

void PlotScene::addDashedRect(const Rect& rect, double period, td::Color color)
{
    if (color.alpha() != 0)
        addMarkRecord((rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2, (rect.right - rect.left) / 2,
                      (rect.bottom - rect.top) / 2, cDashedRect, color, {}, period);
}

void PlotScene::addMark(Marker marker, double x, double y, double size, td::Color color, double edgeWidth,
                        td::Color edge)
{
    if (marker == Marker::None)
        return;
    addMarkRecord(x, y, size / 2, size / 2, shapeOf(marker), color, edge, edgeWidth);
}

std::uint32_t PlotScene::shapeOf(Marker marker) { return cFirstMarker + static_cast<std::uint32_t>(marker) - 1; }

void PlotScene::addCloud(const Cloud& cloud, const std::array<double, 4>& toPixels, Marker marker, double size,
                         double edgeWidth, td::Color edge)
{
    Pass& pass = beginPass(Kind::Cloud);
    pass.first = 0;
    pass.count = static_cast<std::uint32_t>(cloud.texels.size());
    pass.pCloud = &cloud;
    pass.toPixels = toPixels;
    pass.marker = marker;
    pass.size = size;
    pass.edgeWidth = edgeWidth;
    pass.edge = edge;
}

void PlotScene::addGrid(const Rect& box, const GridLook& look)
{
    Pass& pass = beginPass(Kind::Grid);
    pass.count = 1;
    pass.box = box;
    pass.pGrid = std::make_shared<GridLook>(look);
}

void PlotScene::addTile(const Tile& tile, std::size_t base, std::uint32_t stride)
{
    _texels.push_back({bits(tile.left), bits(std::floor(tile.top)), bits(tile.right), bits(std::ceil(tile.bottom))});
    _texels.push_back({static_cast<std::uint32_t>(base) + tile.first * stride, tile.end - tile.first, tile.own, 0});
}

// A quad for each column of pixels that pieces come near, or for several of them where that costs less: each pixel
// belongs to one quad, which knows all pieces that matter there.
template <typename Piece, typename Extent>
void PlotScene::addTiles(const std::vector<Piece>& pieces, double reach, std::size_t base, std::uint32_t stride,
                         const Extent& extentOf)
{
    _tiles.clear();
    const int left = static_cast<int>(std::floor(_clip.left)), right = static_cast<int>(std::ceil(_clip.right));
    std::uint32_t first = 0, end = 0;
    const auto n = static_cast<std::uint32_t>(pieces.size());
    for (int column = left; column < right && first < n; ++column)
    {
        const double from = column - reach, to = column + 1 + reach;
        while (first < n && pieces[first].x1 <= from)
            ++first;
        end = std::max(end, first);
        while (end < n && pieces[end].x0 < to)
            ++end;
        if (first == n)
            break;
        if (first == end)
        {
            // On to where the next one begins.
            column = std::max(column, wholeOf(std::floor(pieces[first].x0 - reach)) - 1);
            continue;
        }
        Tile tile{column, column + 1, 1e9, -1e9, first, end};
        for (std::uint32_t i = first; i < end; ++i)
            extentOf(pieces[i], from, to, tile.top, tile.bottom);
        tile.top = std::max(tile.top, _clip.top);
        tile.bottom = std::min(tile.bottom, _clip.bottom);
        if (!(tile.top < tile.bottom))
            continue;
        if (!_tiles.empty() && _tiles.back().right == column)
        {
            Tile& before = _tiles.back();
            const int width = tile.right - before.left;
            const double top = std::min(before.top, tile.top), bottom = std::max(before.bottom, tile.bottom);
            const double apart = (before.bottom - before.top) * (before.right - before.left) + tile.bottom - tile.top;
            if (width <= cWidestTile && tile.end - before.first <= cManyPieces &&
                (bottom - top) * width <= apart + cQuadCost)
            {
                before = {before.left, tile.right, top, bottom, before.first, tile.end};
                continue;
            }
        }
        _tiles.push_back(tile);
    }
    Pass& pass = _passes.back();
    pass.first = static_cast<std::uint32_t>(_texels.size());
    pass.count = static_cast<std::uint32_t>(_tiles.size());
    for (const Tile& tile : _tiles)
        addTile(tile, base, stride);
}

void PlotScene::addLine(const std::vector<Segment>& segments, double halfWidth, td::Color color,
                        const std::vector<double>& dashes, bool isSorted)
{
    if (segments.empty() || !(halfWidth > 0))
        return;
    Pass& pass = beginPass(Kind::Line);
    pass.halfWidth = static_cast<float>(halfWidth);
    pass.shade.from = color;
    const std::size_t base = _texels.size();
    const bool isDashed = !dashes.empty();
    for (const double dash : dashes)
        pass.dashes.push_back(static_cast<float>(dash));
    const std::uint32_t stride = isDashed ? 2 : 1;
    _texels.resize(base + stride * segments.size());
    Texel* pTexel = _texels.data() + base;
    for (const Segment& s : segments)
    {
        *pTexel++ = {bits(s.x0), bits(s.y0), bits(s.x1), bits(s.y1)};
        if (isDashed)
            *pTexel++ = {bits(s.along), 0, 0, 0};
    }
    const double reach = halfWidth + 0.5;
    if (isSorted)
        return addTiles(segments, reach, base, stride,
                        [reach](const Segment& s, double from, double to, double& top, double& bottom)
                        {
                            double a = s.y0, b = s.y1;
                            if (s.x1 > s.x0)
                            {
                                const double slope = (s.y1 - s.y0) / (s.x1 - s.x0);
                                a = s.x0 < from ? s.y0 + (from - s.x0) * slope : s.y0;
                                b = s.x1 > to ? s.y0 + (to - s.x0) * slope : s.y1;
                            }
                            top = std::min(top, std::min(a, b) - reach);
                            bottom = std::max(bottom, std::max(a, b) + reach);
                        });
    // Each by itself, and with those that it meets: where others cross, both are seen.
    pass.first = static_cast<std::uint32_t>(_texels.size());
    pass.count = static_cast<std::uint32_t>(segments.size());
    for (std::uint32_t i = 0; i < pass.count; ++i)
    {
        const Segment& s = segments[i];
        addTile({wholeOf(std::floor(std::min(s.x0, s.x1) - reach)), wholeOf(std::ceil(std::max(s.x0, s.x1) + reach)),
                 std::min(s.y0, s.y1) - reach, std::max(s.y0, s.y1) + reach, i > 0 ? i - 1 : 0,
                 std::min(i + 2, pass.count), i > 0 ? 2U : 1U},
                base, stride);
    }
}

void PlotScene::addArea(const std::vector<Slab>& slabs, const Shade& shade)
{
    if (slabs.empty())
        return;
    Pass& pass = beginPass(Kind::Area);
    pass.shade = shade;
    const std::size_t base = _texels.size();
    for (const Slab& slab : slabs)
    {
        _texels.push_back({bits(slab.x0), bits(slab.low0), bits(slab.x1), bits(slab.low1)});
        _texels.push_back({bits(slab.high0), bits(slab.high1), 0, 0});
    }
    addTiles(slabs, 0, base, 2,
             [](const Slab& s, double from, double to, double& top, double& bottom)
             {
                 const double length = s.x1 - s.x0;
                 const double a = length > 0 ? std::clamp((from - s.x0) / length, 0.0, 1.0) : 0;
                 const double b = length > 0 ? std::clamp((to - s.x0) / length, 0.0, 1.0) : 1;
                 for (const double share : {a, b})
                 {
                     const double low = s.low0 + (s.low1 - s.low0) * share;
                     const double high = s.high0 + (s.high1 - s.high0) * share;
                     top = std::min(top, std::min(low, high) - 0.5);
                     bottom = std::max(bottom, std::max(low, high) + 0.5);
                 }
             });
}

} // namespace gui::draw
