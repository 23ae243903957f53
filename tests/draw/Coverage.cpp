#include "Coverage.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <numeric>

namespace test
{

namespace
{

using gui::draw::Cap;
using gui::draw::Join;
using gui::draw::Path;
using gui::draw::Stroke;
using Point = Path::Point;

constexpr int cHeights = 64;
constexpr int cChords = 640;

double dot(Point a, Point b) { return a.x * b.x + a.y * b.y; }
double cross(Point a, Point b) { return a.x * b.y - a.y * b.x; }
double lengthOf(Point p) { return std::hypot(p.x, p.y); }
Point leftOf(Point p) { return {-p.y, p.x}; }
Point directionOf(Point p) { return 1 / lengthOf(p) * p; }

/// A subpath as chords. Those within a curve have no joins where they meet.
struct Subpath
{
    void append(Point p, bool endsSegment)
    {
        if (points.empty() || points.back().x != p.x || points.back().y != p.y)
        {
            points.push_back(p);
            isCorner.push_back(endsSegment);
        }
        else if (endsSegment)
            isCorner.back() = true;
    }

    std::vector<Point> points;
    std::vector<char> isCorner;
    bool isClosed = false;
};

std::vector<Subpath> subpathsOf(const Path& path)
{
    std::vector<Subpath> subpaths;
    bool isNew = true;
    for (const gui::draw::PathSegment& segment : path)
    {
        using Verb = Path::Verb;
        if (segment.verb != Verb::MoveTo && isNew)
            subpaths.emplace_back().append(segment.from, true);
        isNew = segment.verb == Verb::MoveTo || segment.verb == Verb::Close;
        if (segment.verb == Verb::MoveTo)
            continue;
        const int n = segment.verb == Verb::LineTo || segment.verb == Verb::Close ? 1 : cChords;
        for (int i = 1; i <= n; ++i)
            subpaths.back().append(segment.at(double(i) / n), i == n);
        subpaths.back().isClosed = segment.verb == Verb::Close;
    }
    return subpaths;
}

bool isDashed(const Stroke& stroke)
{
    return std::any_of(stroke.dashes.begin(), stroke.dashes.end(), [](double dash) { return dash > 0; }) &&
           std::all_of(stroke.dashes.begin(), stroke.dashes.end(), [](double dash) { return dash >= 0; });
}

/// Where dashes begin and end on a subpath of a length, in the words of SVG 2.
std::vector<std::pair<double, double>> dashesOf(const Stroke& stroke, double length)
{
    std::vector<double> dashes = stroke.dashes;
    if (dashes.size() % 2 != 0)
        dashes.insert(dashes.end(), stroke.dashes.begin(), stroke.dashes.end());
    const double sum = std::accumulate(dashes.begin(), dashes.end(), 0.0);
    double offset = std::fmod(stroke.dashOffset, sum);
    offset += offset < 0 ? sum : 0;
    std::size_t index = 0;
    double end = dashes[0];
    while (end < offset)
        end += dashes[++index];
    std::vector<std::pair<double, double>> positions;
    double position = std::min(end - offset, length);
    if (index % 2 == 0)
        positions.emplace_back(0, position);
    while (position < length)
    {
        index = (index + 1) % dashes.size();
        const double dash = std::min(dashes[index], length - position);
        if (index % 2 == 0)
            positions.emplace_back(position, position + dash);
        position += dash;
    }
    return positions;
}

/// Puts a stroke together of convex pieces.
class Brush
{
public:
    Brush(const Stroke& stroke, Rings& rings)
        : _stroke(stroke)
        , _radius(stroke.width / 2)
        , _rings(rings)
    {
    }

    void draw(const Subpath& subpath)
    {
        std::vector<Point> p = subpath.points;
        if (p.size() == 1)
        {
            drawPoint(p[0]);
            return;
        }
        if (subpath.isClosed && lengthOf(p.back() - p.front()) > 0)
            p.push_back(p.front());
        const std::size_t n = p.size() - 1;
        std::vector<double> at(p.size());
        std::vector<Point> ways;
        for (std::size_t i = 0; i < n; ++i)
        {
            at[i + 1] = at[i] + lengthOf(p[i + 1] - p[i]);
            ways.push_back(directionOf(p[i + 1] - p[i]));
        }
        const bool isRound = subpath.isClosed && !isDashed(_stroke);
        if (isRound)
            addJoin(p[0], ways[n - 1], ways[0], true);
        using Dashes = std::vector<std::pair<double, double>>;
        for (const auto& [begin, end] : isDashed(_stroke) ? dashesOf(_stroke, at[n]) : Dashes{{0, at[n]}})
        {
            std::size_t first = 0, last = n - 1;
            while (first < n - 1 && at[first + 1] <= begin)
                ++first;
            while (last > 0 && at[last] >= end)
                --last;
            // Of no length, at a corner: it lies on the line after that.
            last = std::max(first, last);
            const Point from = p[first] + (begin - at[first]) * ways[first];
            const Point to = p[last] + (end - at[last]) * ways[last];
            for (std::size_t i = first; i <= last; ++i)
            {
                addBody(i == first ? from : p[i], i == last ? to : p[i + 1]);
                if (i > first)
                    addJoin(p[i], ways[i - 1], ways[i], subpath.isCorner[i]);
            }
            if (isRound)
                continue;
            addCap(from, -1 * ways[first]);
            addCap(to, ways[last]);
        }
    }

private:
    void add(std::vector<Point> ring)
    {
        double area = 0;
        for (std::size_t i = 1; i + 1 < ring.size(); ++i)
            area += cross(ring[i] - ring[0], ring[i + 1] - ring[0]);
        if (area < 0)
            std::reverse(ring.begin(), ring.end());
        _rings.push_back(std::move(ring));
    }

    /// A piece of a disc between two directions, the shorter way round.
    void addSector(Point at, Point from, Point to, bool isWhole = false)
    {
        const double start = std::atan2(from.y, from.x);
        const double turn = std::atan2(cross(from, to) + 0.0, dot(from, to)); // of two that are opposite: positive
        const double sweep = isWhole ? 2 * std::numbers::pi : turn;
        const int n = 1 + static_cast<int>(std::abs(sweep) / 0.03);
        std::vector<Point> ring{at};
        for (int i = isWhole ? 1 : 0; i <= n; ++i)
            ring.push_back(at + _radius * Point(std::cos(start + sweep * i / n), std::sin(start + sweep * i / n)));
        if (isWhole)
            ring.erase(ring.begin());
        add(std::move(ring));
    }

    void addBody(Point a, Point b)
    {
        if (lengthOf(b - a) == 0)
            return;
        const Point side = _radius * leftOf(directionOf(b - a));
        add({a + side, b + side, b - side, a - side});
    }

    void addCap(Point at, Point outwards)
    {
        if (_stroke.cap == Cap::Round)
            addSector(at, {1, 0}, {1, 0}, true);
        if (_stroke.cap == Cap::Square)
            addBody(at, at + _radius * outwards);
    }

    void addJoin(Point at, Point before, Point after, bool isCorner)
    {
        const double turn = cross(before, after), side = turn >= 0 ? -1 : 1;
        const Point a = side * leftOf(before), b = side * leftOf(after);
        // Also for a curve's own turn, but for a cusp, where it turns in no length.
        if (isCorner ? _stroke.join == Join::Round : dot(before, after) > -0.99)
            addSector(at, a, b);
        else if (isCorner && turn != 0)
        {
            // Of half the angle between the sides, on which the length of a mitre depends.
            const double sine = std::sqrt((1 + dot(before, after)) / 2);
            std::vector<Point> ring{at, at + _radius * a, at + _radius * b};
            if (_stroke.join == Join::Miter && 1 <= _stroke.miterLimit * sine)
                ring.insert(ring.begin() + 2, at + _radius / sine * directionOf(a + b));
            add(std::move(ring));
        }
    }

    void drawPoint(Point at)
    {
        if (isDashed(_stroke) && dashesOf(_stroke, 0).empty())
            return;
        addCap(at, {1, 0});
        addCap(at, {-1, 0});
    }

    const Stroke& _stroke;
    const double _radius;
    Rings& _rings;
};

} // namespace

Coverage::Coverage(int width, int height)
    : _width(width)
    , _height(height)
    , _pixels(static_cast<std::size_t>(width * height))
{
}

void Coverage::add(const Rings& rings, gui::draw::FillRule rule, double alpha)
{
    const auto heightsUpTo = [this](double y)
    { return static_cast<int>(std::ceil(std::clamp(y, 0.0, double(_height)) * cHeights - 0.5)); };
    int first = _height * cHeights, last = 0;
    for (const auto& ring : rings)
        for (const Point& p : ring)
            first = std::min(first, heightsUpTo(p.y)), last = std::max(last, heightsUpTo(p.y));
    if (first >= last)
        return;
    first = first / cHeights * cHeights;
    std::vector<std::vector<std::pair<double, int>>> crossings(static_cast<std::size_t>(last - first));
    for (const auto& ring : rings)
        for (std::size_t i = 0; i < ring.size(); ++i)
        {
            Point a = ring[i], b = ring[(i + 1) % ring.size()];
            const int winding = a.y < b.y ? 1 : -1;
            if (winding < 0)
                std::swap(a, b);
            for (int h = heightsUpTo(a.y), end = heightsUpTo(b.y); h < end; ++h)
                crossings[static_cast<std::size_t>(h - first)].emplace_back(
                    a.x + ((h + 0.5) / cHeights - a.y) / (b.y - a.y) * (b.x - a.x), winding);
        }
    std::vector<double> row(static_cast<std::size_t>(_width));
    for (int h = first; h < last; ++h)
    {
        auto& line = crossings[static_cast<std::size_t>(h - first)];
        std::sort(line.begin(), line.end());
        int winding = 0;
        for (std::size_t i = 0; i + 1 < line.size(); ++i)
        {
            winding += line[i].second;
            if (rule == gui::draw::FillRule::NonZero ? winding == 0 : winding % 2 == 0)
                continue;
            const double from = std::max(line[i].first, 0.0), to = std::min(line[i + 1].first, double(_width));
            for (int x = static_cast<int>(from); x < to; ++x)
                row[static_cast<std::size_t>(x)] += (std::min(to, x + 1.0) - std::max(from, double(x))) / cHeights;
        }
        if (h % cHeights != cHeights - 1 && h != last - 1)
            continue;
        for (int x = 0; x < _width; ++x)
            at(x, h / cHeights) += alpha * row[static_cast<std::size_t>(x)] * (1 - at(x, h / cHeights));
        std::fill(row.begin(), row.end(), 0);
    }
}

Coverage readCoverage()
{
    std::array<GLint, 4> viewport{};
    glGetIntegerv(GL_VIEWPORT, viewport.data());
    Coverage coverage(viewport[2], viewport[3]);
    std::vector<unsigned char> bytes(4 * static_cast<std::size_t>(viewport[2] * viewport[3]));
    glReadPixels(viewport[0], viewport[1], viewport[2], viewport[3], GL_RGBA, GL_UNSIGNED_BYTE, bytes.data());
    for (int y = 0; y < viewport[3]; ++y)
        for (int x = 0; x < viewport[2]; ++x)
            coverage.at(x, viewport[3] - 1 - y) = 1 - bytes[4 * static_cast<std::size_t>(y * viewport[2] + x)] / 255.0;
    return coverage;
}

testing::AssertionResult isClose(const Coverage& drawn, const Coverage& exact, const Coverage::Region& region,
                                 const Closeness& limits)
{
    std::vector<double> errors{0};
    double largest = 0;
    int atX = 0, atY = 0;
    for (int y = region.top; y < region.bottom; ++y)
        for (int x = region.left; x < region.right; ++x)
        {
            const double error = 255 * std::abs(drawn.at(x, y) - exact.at(x, y));
            if (exact.at(x, y) > 1e-9 && exact.at(x, y) < 1 - 1e-9)
                errors.push_back(error);
            if (error > largest)
                largest = error, atX = x, atY = y;
        }
    std::sort(errors.begin(), errors.end());
    const double mean = std::accumulate(errors.begin(), errors.end(), 0.0) / double(errors.size());
    const double permille = errors[(errors.size() - 1) * 999 / 1000];
    auto result = mean <= limits.mean && permille <= limits.permille && largest <= limits.largest
                      ? testing::AssertionSuccess()
                      : testing::AssertionFailure();
    return result << "off by " << mean << " on average, one in a thousand by " << permille << ", the worst by "
                  << largest << ": at " << atX << ", " << atY << " by " << drawn.at(atX, atY) << " instead of "
                  << exact.at(atX, atY) << ", " << errors.size() - 1 << " pixels";
}

Rings fillRings(const Path& path)
{
    Rings rings;
    for (Subpath& subpath : subpathsOf(path))
        rings.push_back(std::move(subpath.points));
    return rings;
}

Rings strokeRings(const Path& path, const Stroke& stroke)
{
    Rings rings;
    Brush brush(stroke, rings);
    for (const Subpath& subpath : subpathsOf(path))
        brush.draw(subpath);
    return rings;
}

Rings mapped(Rings rings, const gui::draw::Affine& map)
{
    for (auto& ring : rings)
        for (Point& p : ring)
            p = map.map(p);
    return rings;
}

} // namespace test
