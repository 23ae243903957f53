#include "TextRoute.h"

#include "ShapeGeometry.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace gui::draw
{

namespace
{

double finiteOr0(double number) { return std::isfinite(number) ? number : 0; }

td::Point<double> moved(const Affine& map, td::Point<double> p)
{
    return {map.a * p.x + map.c * p.y, map.b * p.x + map.d * p.y};
}

} // namespace

TextRoute::TextRoute(const Path& path, const TextOnPath& placement)
    : _placement(placement)
{
    _placement.along = std::clamp(finiteOr0(_placement.along), 0.0, 1.0);
    _placement.offset = {finiteOr0(_placement.offset.x), finiteOr0(_placement.offset.y)};
    setPath(path);
}

// Its longest subpath.
void TextRoute::setPath(const Path& path)
{
    _points.clear();
    _isClosed = false;
    _isStale = true;
    _origin = {};
    const Polylines lines = path.flatten(toleranceFor(path, 0) / 4);
    double longest = -1;
    for (const Polylines::Line& line : lines.lines)
    {
        std::vector<Point> points;
        double length = 0;
        const auto add = [&](Point p)
        {
            if (!std::isfinite(p.x) || !std::isfinite(p.y))
                return;
            length += points.empty() ? 0 : std::hypot(p.x - points.back().x, p.y - points.back().y);
            points.push_back(p);
        };
        for (std::size_t i = 0; i < line.count; ++i)
            add(lines.points[line.first + i]);
        if (line.isClosed && !points.empty())
            add(points.front());
        if (!(length > longest))
            continue;
        longest = length;
        _isClosed = line.isClosed;
        _points = std::move(points);
    }
    if (_points.empty())
        return;
    measure({});
    _origin = pointAt(_placement.along * _lengths.back());
    _origin = {finiteOr0(_origin.x), finiteOr0(_origin.y)};
    for (Point& p : _points)
        p = {p.x - _origin.x, p.y - _origin.y};
}

void TextRoute::measure(const Affine& toText)
{
    _line.clear();
    _lengths.clear();
    for (const Point& p : _points)
    {
        const Point q = moved(toText, p);
        _lengths.push_back(_line.empty() ? 0
                                         : _lengths.back() + std::hypot(q.x - _line.back().x, q.y - _line.back().y));
        _line.push_back(q);
    }
}

// Before and behind an open one it goes straight on.
TextRoute::Point TextRoute::pointAt(double length) const
{
    if (_line.size() < 2 || !(_lengths.back() > 0))
        return _line.empty() ? Point() : _line.front();
    const double all = _lengths.back();
    if (_isClosed)
        length -= std::floor(length / all) * all;
    const auto above = std::upper_bound(_lengths.begin() + 1, _lengths.end() - 1, length);
    auto i = static_cast<std::size_t>(above - _lengths.begin());
    // At the ends, past points that are the same.
    while (i > 1 && !(_lengths[i] > _lengths[i - 1]))
        --i;
    while (i + 1 < _lengths.size() && !(_lengths[i] > _lengths[i - 1]))
        ++i;
    const double t = (length - _lengths[i - 1]) / (_lengths[i] - _lengths[i - 1]);
    const Point a = _line[i - 1], b = _line[i];
    return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t};
}

// What has its own advance begins a letter; marks and the like go with the letter of their cluster that is the widest.
void TextRoute::setLayout(const TextLayout& layout, Point anchor)
{
    _letters.clear();
    _firstOf.clear();
    _letterOf.clear();
    _isStale = true;
    const auto lineOf = [&layout](double baseline) -> const TextLayout::Line*
    {
        const auto lines = layout.getLines();
        const auto found =
            std::min_element(lines.begin(), lines.end(),
                             [baseline](const TextLayout::Line& a, const TextLayout::Line& b)
                             { return std::abs(a.baseline - baseline) < std::abs(b.baseline - baseline); });
        return found == lines.end() ? nullptr : &*found;
    };
    for (const TextLayout::Run& run : layout.getRuns())
    {
        _firstOf.push_back(_letterOf.size());
        const TextLayout::Line* pLine = lineOf(run.origin.y);
        for (std::size_t i = 0, end = 0; i < run.glyphs.size(); i = end)
        {
            std::size_t widest = i;
            for (end = i; end < run.glyphs.size() && run.glyphs[end].offset == run.glyphs[i].offset; ++end)
                if (run.glyphs[end].advance > run.glyphs[widest].advance)
                    widest = end;
            const TextLayout::Glyph& glyph = run.glyphs[widest];
            Letter letter;
            letter.width = std::max(double(glyph.advance), 0.0);
            letter.middle = run.origin.x + double(glyph.x) + letter.width / 2 - anchor.x;
            letter.top = (pLine != nullptr ? pLine->top : 0) - anchor.y;
            letter.bottom = (pLine != nullptr ? pLine->bottom : 0) - anchor.y;
            _letters.push_back(letter);
            _letterOf.insert(_letterOf.end(), end - i, _letters.size() - 1);
        }
    }
    _begin = _end = 0;
    for (std::size_t i = 0; i < _letters.size(); ++i)
    {
        const Letter& letter = _letters[i];
        const double begin = letter.middle - letter.width / 2, end = letter.middle + letter.width / 2;
        _begin = i == 0 ? begin : std::min(_begin, begin);
        _end = i == 0 ? end : std::max(_end, end);
    }
}

bool TextRoute::place(const Affine& toText, const Affine& toScreen)
{
    const bool isElsewhere = _isStale || toText != _toText;
    if (isElsewhere)
        measure(toText);
    const double all = _lengths.empty() ? 0 : _lengths.back();
    const double start = all * _placement.along + _placement.offset.x;
    bool isReversed = false;
    if (_placement.isKeptUpright)
    {
        const Point from = pointAt(start + _begin), to = pointAt(start + _end);
        isReversed = moved(toScreen, {to.x - from.x, to.y - from.y}).x < 0;
    }
    if (!isElsewhere && isReversed == _isReversed)
        return false;
    _toText = toText;
    _isReversed = isReversed;
    _isStale = false;
    _start = start;
    placeLetters(start, isReversed);
    return true;
}

void TextRoute::placeLetters(double start, bool isReversed)
{
    const double all = _lengths.empty() ? 0 : _lengths.back();
    // Sums of lengths are off by rounding.
    const double slack = 1e-9 * all;
    const bool isTooLong = !(all > 0) || _end - _begin > all + slack ||
                           (!_isClosed && (start + _begin < -slack || start + _end > all + slack));
    const bool isHidden = !(all > 0) || (isTooLong && _placement.overflow == TextOnPath::Overflow::Hide);
    for (Letter& letter : _letters)
    {
        // The other way round on the same part of the path.
        const double from = letter.middle - letter.width / 2,
                     middle = isReversed ? _begin + _end - letter.middle : letter.middle;
        const double at = start + middle, half = std::max(letter.width / 2, 1e-6 * all);
        letter.way = {0, 0};
        const bool isOff = isTooLong && (_isClosed ? from > _begin + all - letter.width
                                                   : at - half < -slack || at + half > all + slack);
        if (isHidden || isOff)
            continue;
        letter.at = pointAt(at);
        // The way from the letter's beginning to its end is steadier than the tangent where a path is rough.
        const Point a = pointAt(at - half), b = pointAt(at + half);
        const double length = std::hypot(b.x - a.x, b.y - a.y), sign = isReversed ? -1 : 1;
        if (length > 0)
            letter.way = {sign * (b.x - a.x) / length, sign * (b.y - a.y) / length};
        // Across the path.
        letter.at.x -= letter.way.y * _placement.offset.y;
        letter.at.y += letter.way.x * _placement.offset.y;
    }
}

void TextRoute::addBent(const Rect& rect, double step, Path& path) const
{
    constexpr double cMostSteps = 1000;
    // Side by side, letters have one line.
    std::vector<std::pair<double, double>> pieces;
    const double y = (rect.top + rect.bottom) / 2;
    for (const Letter& letter : _letters)
    {
        const double from = std::max(letter.middle - letter.width / 2, rect.left),
                     to = std::min(letter.middle + letter.width / 2, rect.right);
        if ((letter.way.x == 0 && letter.way.y == 0) || !(from < to) || y < letter.top || y > letter.bottom)
            continue;
        if (!pieces.empty() && std::abs(pieces.back().second - from) < step / 16)
            pieces.back().second = to;
        else
            pieces.emplace_back(from, to);
    }
    const double sign = _isReversed ? -1 : 1, shift = _placement.offset.y;
    for (const auto& [from, to] : pieces)
    {
        const double n = std::clamp(std::ceil((to - from) / step), 1.0, cMostSteps);
        std::vector<Point> lower;
        Point way{1, 0};
        for (double i = 0; i <= n; ++i)
        {
            const double x = std::lerp(from, to, i / n), at = _start + (_isReversed ? _begin + _end - x : x);
            const Point p = pointAt(at), a = pointAt(at - step / 2), b = pointAt(at + step / 2);
            if (const double length = std::hypot(b.x - a.x, b.y - a.y); length > 0)
                way = {sign * (b.x - a.x) / length, sign * (b.y - a.y) / length};
            const auto across = [&](double down) { return Point(p.x - way.y * down, p.y + way.x * down); };
            const Point upper = across(rect.top + shift);
            if (i == 0)
                path.moveTo(upper);
            else
                path.lineTo(upper);
            lower.push_back(across(rect.bottom + shift));
        }
        for (std::size_t i = lower.size(); i-- > 0;)
            path.lineTo(lower[i]);
        path.close();
    }
}

Affine TextRoute::toLetter(const Letter& letter)
{
    const Point way = letter.way;
    return Affine{way.x, -way.y, way.y, way.x, 0, 0} * Affine::translation(-letter.at.x, -letter.at.y);
}

} // namespace gui::draw
