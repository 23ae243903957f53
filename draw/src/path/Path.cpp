#include <gui/draw/Path.h>

#include "SVGPathParser.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace gui::draw
{

namespace
{

// Of the affine map that a circle around 0 of radius 1 goes through to be the ellipse.
PathSegment::Arc makeArc(Path::Point center, Path::Point radii, double rotation, double start, double sweep)
{
    const double cosine = std::cos(rotation), sine = std::sin(rotation);
    const auto turned = [&](double x, double y)
    { return Path::Point(x * radii.x * cosine - y * radii.y * sine, x * radii.x * sine + y * radii.y * cosine); };
    return {center, turned(std::cos(start), std::sin(start)), turned(-std::sin(start), std::cos(start)), sweep};
}

} // namespace

Path Path::fromSVG(std::string_view data, SVGError* pError)
{
    Path path;
    path.addSVG(data, pError);
    return path;
}

bool Path::addSVG(std::string_view data, SVGError* pError)
{
    Path path;
    const std::optional<SVGError> error = SVGPathParser(data).parse(path);
    addPath(path);
    if (error && pError != nullptr)
        *pError = *error;
    return !error;
}

Path& Path::moveTo(Point p)
{
    if (!_verbs.empty() && _verbs.back() == Verb::MoveTo)
    {
        _points.back() = p;
        return *this;
    }
    _start = _points.size();
    _verbs.push_back(Verb::MoveTo);
    _points.push_back(p);
    return *this;
}

// A segment that no moveTo stands before begins a subpath: at p, or where the closed one before it began.
void Path::startAt(Point p)
{
    if (_verbs.empty())
        moveTo(p);
    else if (_verbs.back() == Verb::Close)
        moveTo(_points[_start]);
}

Path& Path::lineTo(Point p)
{
    startAt(p);
    _verbs.push_back(Verb::LineTo);
    _points.push_back(p);
    return *this;
}

Path& Path::quadTo(Point control, Point p)
{
    startAt(control);
    _verbs.push_back(Verb::QuadTo);
    _points.insert(_points.end(), {control, p});
    return *this;
}

Path& Path::cubicTo(Point control1, Point control2, Point p)
{
    startAt(control1);
    _verbs.push_back(Verb::CubicTo);
    _points.insert(_points.end(), {control1, control2, p});
    return *this;
}

Path& Path::addArc(const PathSegment::Arc& arc, Point to)
{
    _verbs.push_back(Verb::ArcTo);
    _arcs.push_back(arc);
    _points.push_back(to);
    return *this;
}

// SVG 2, "Implementation notes": B.2.4 for the centre, B.2.5 for radii that are too small.
Path& Path::arcTo(Point radii, double rotation, bool isLarge, bool isPositive, Point p)
{
    startAt(p);
    const Point from = getCurrentPoint();
    if (from == p)
        return *this;
    radii = {std::abs(radii.x), std::abs(radii.y)};
    if (radii.x == 0 || radii.y == 0)
        return lineTo(p);

    // Where the ellipse is a circle of radius 1, with the middle of the two points in the origin.
    const double cosine = std::cos(rotation), sine = std::sin(rotation);
    const Point half((from.x - p.x) / 2, (from.y - p.y) / 2);
    Point unit((half.x * cosine + half.y * sine) / radii.x, (half.y * cosine - half.x * sine) / radii.y);
    double reach = std::hypot(unit.x, unit.y);
    if (reach > 1)
    {
        radii = {radii.x * reach, radii.y * reach};
        unit = {unit.x / reach, unit.y / reach};
        reach = 1;
    }
    // The centre is on the bisector, to the left or the right of it.
    const double away = (isLarge == isPositive ? -1 : 1) * std::sqrt((1 - reach) * (1 + reach)) / reach;
    const Point center(away * unit.y, -away * unit.x);
    const double start = std::atan2(unit.y - center.y, unit.x - center.x);
    double sweep = std::atan2(-unit.y - center.y, -unit.x - center.x) - start;
    if (isPositive && sweep <= 0)
        sweep += 2 * std::numbers::pi;
    else if (!isPositive && sweep >= 0)
        sweep -= 2 * std::numbers::pi;
    const Point middle(from.x - half.x + radii.x * center.x * cosine - radii.y * center.y * sine,
                       from.y - half.y + radii.x * center.x * sine + radii.y * center.y * cosine);
    return addArc(makeArc(middle, radii, rotation, start, sweep), p);
}

Path& Path::close()
{
    if (!_verbs.empty() && _verbs.back() != Verb::Close)
        _verbs.push_back(Verb::Close);
    return *this;
}

Path& Path::arc(Point center, Point radii, double start, double sweep, double rotation)
{
    const PathSegment::Arc arc = makeArc(center, radii, rotation, start, sweep);
    const Point from(center.x + arc.u.x, center.y + arc.u.y);
    startAt(from);
    if (getCurrentPoint() != from)
        lineTo(from);
    const double cosine = std::cos(sweep), sine = std::sin(sweep);
    return addArc(arc, {center.x + cosine * arc.u.x + sine * arc.v.x, center.y + cosine * arc.u.y + sine * arc.v.y});
}

Path& Path::addRect(const Rect& rect)
{
    moveTo({rect.left, rect.top}).lineTo({rect.right, rect.top});
    return lineTo({rect.right, rect.bottom}).lineTo({rect.left, rect.bottom}).close();
}

Path& Path::addRoundedRect(const Rect& rect, Point radii)
{
    const double rx = std::min(std::abs(radii.x), (rect.right - rect.left) / 2);
    const double ry = std::min(std::abs(radii.y), (rect.bottom - rect.top) / 2);
    if (!(rx > 0 && ry > 0))
        return addRect(rect);
    const auto corner = [&](double x, double y, double ux, double uy, Point to) {
        addArc({{x, y}, {ux * rx, uy * ry}, {-uy * rx, ux * ry}, std::numbers::pi / 2}, to);
    };
    moveTo({rect.left + rx, rect.top}).lineTo({rect.right - rx, rect.top});
    corner(rect.right - rx, rect.top + ry, 0, -1, {rect.right, rect.top + ry});
    lineTo({rect.right, rect.bottom - ry});
    corner(rect.right - rx, rect.bottom - ry, 1, 0, {rect.right - rx, rect.bottom});
    lineTo({rect.left + rx, rect.bottom});
    corner(rect.left + rx, rect.bottom - ry, 0, 1, {rect.left, rect.bottom - ry});
    lineTo({rect.left, rect.top + ry});
    corner(rect.left + rx, rect.top + ry, -1, 0, {rect.left + rx, rect.top});
    return close();
}

Path& Path::addRoundedRect(const Rect& rect, double radius)
{
    const double limited = std::min({std::abs(radius), (rect.right - rect.left) / 2, (rect.bottom - rect.top) / 2});
    return addRoundedRect(rect, Point(limited, limited));
}

Path& Path::addEllipse(Point center, Point radii)
{
    const Point from(center.x + radii.x, center.y);
    moveTo(from);
    return addArc({center, {radii.x, 0}, {0, radii.y}, 2 * std::numbers::pi}, from).close();
}

Path& Path::addPath(const Path& path)
{
    if (path._verbs.empty())
        return *this;
    if (&path == this)
        return addPath(Path(path));
    // A beginning with nothing after it goes, as in moveTo.
    if (!_verbs.empty() && _verbs.back() == Verb::MoveTo)
    {
        _verbs.pop_back();
        _points.pop_back();
    }
    _start = _points.size() + path._start;
    _verbs.insert(_verbs.end(), path._verbs.begin(), path._verbs.end());
    _points.insert(_points.end(), path._points.begin(), path._points.end());
    _arcs.insert(_arcs.end(), path._arcs.begin(), path._arcs.end());
    return *this;
}

Path& Path::transform(const Affine& affine)
{
    for (Point& p : _points)
        p = affine.map(p);
    for (PathSegment::Arc& arc : _arcs)
        arc = {affine.map(arc.center), affine.mapVector(arc.u), affine.mapVector(arc.v), arc.sweep};
    return *this;
}

Path Path::transformed(const Affine& affine) const
{
    Path path(*this);
    path.transform(affine);
    return path;
}

// Twice as much at least: room asked for bit by bit must not be copied each time.
void Path::reserve(std::size_t nLines)
{
    const auto grow = [nLines](auto& list)
    {
        if (list.capacity() - list.size() < nLines)
            list.reserve(std::max(list.size() + nLines, 2 * list.capacity()));
    };
    grow(_verbs);
    grow(_points);
}

void Path::clear()
{
    _verbs.clear();
    _points.clear();
    _arcs.clear();
    _start = 0;
}

bool Path::hasCurves() const
{
    return std::any_of(_verbs.begin(), _verbs.end(),
                       [](Verb verb) { return verb == Verb::QuadTo || verb == Verb::CubicTo || verb == Verb::ArcTo; });
}

Path::Point Path::getCurrentPoint() const
{
    if (_verbs.empty())
        return {};
    return _verbs.back() == Verb::Close ? _points[_start] : _points.back();
}

Path::Iterator Path::begin() const
{
    Iterator i;
    i._pPath = this;
    return i;
}

Path::Iterator Path::end() const
{
    Iterator i;
    i._pPath = this;
    i._verb = _verbs.size();
    return i;
}

PathSegment Path::Iterator::operator*() const
{
    PathSegment segment{
        .verb = _pPath->_verbs[_verb], .from = _at, .control1 = {}, .control2 = {}, .to = {}, .arc = {}};
    const Point* const points = _pPath->_points.data() + _point;
    switch (segment.verb)
    {
    case Verb::MoveTo:
        segment.from = segment.to = points[0];
        break;
    case Verb::LineTo:
        segment.to = points[0];
        break;
    case Verb::QuadTo:
        segment.control1 = points[0];
        segment.to = points[1];
        break;
    case Verb::CubicTo:
        segment.control1 = points[0];
        segment.control2 = points[1];
        segment.to = points[2];
        break;
    case Verb::ArcTo:
        segment.arc = _pPath->_arcs[_arc];
        segment.to = points[0];
        break;
    case Verb::Close:
        segment.to = _start;
        break;
    }
    return segment;
}

Path::Iterator& Path::Iterator::operator++()
{
    const Verb verb = _pPath->_verbs[_verb++];
    if (verb == Verb::Close)
    {
        _at = _start;
        return *this;
    }
    _point += verb == Verb::CubicTo ? 3 : verb == Verb::QuadTo ? 2 : 1;
    _arc += verb == Verb::ArcTo ? 1 : 0;
    _at = _pPath->_points[_point - 1];
    if (verb == Verb::MoveTo)
        _start = _at;
    return *this;
}

Path::Iterator Path::Iterator::operator++(int)
{
    const Iterator before = *this;
    ++*this;
    return before;
}

std::optional<Path::Rect> Path::getBounds() const
{
    constexpr double cInfinity = std::numeric_limits<double>::infinity();
    Rect rect;
    rect.left = rect.top = cInfinity;
    rect.right = rect.bottom = -cInfinity;
    for (const PathSegment& segment : *this)
        segment.widen(rect);
    if (!(rect.left <= rect.right && rect.top <= rect.bottom))
        return std::nullopt;
    return rect;
}

double Path::getLength() const
{
    double length = 0;
    for (const PathSegment& segment : *this)
        length += segment.getLength();
    return length;
}

std::optional<Path::Place> Path::placeAt(double length) const
{
    std::optional<Place> last;
    length = length > 0 ? length : 0;
    for (const PathSegment& segment : *this)
    {
        if (segment.verb == Verb::MoveTo)
            continue;
        const double own = segment.getLength();
        // A segment that is one point has a place only when there is no other.
        if (last && !(own > 0))
            continue;
        if (length < own)
        {
            const double t = segment.parameterAt(length);
            return Place{segment.at(t), segment.direction(t)};
        }
        length -= own;
        last = Place{segment.to, segment.direction(1)};
    }
    return last;
}

} // namespace gui::draw
