#include <gui/draw/PathSegment.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace gui::draw
{

namespace
{

using Point = PathSegment::Point;
using Verb = PathSegment::Verb;

double norm(Point p) { return std::hypot(p.x, p.y); }

Point between(Point p, Point q, double t) { return (1 - t) * p + t * q; }

// Gauss and Legendre's rule of seven points: exact for polynomials up to degree 13 (Abramowitz and Stegun, table 25.4).
double gaussLength(const PathSegment& segment, double t0, double t1)
{
    constexpr double cNodes[] = {0.405845151377397, 0.741531185599394, 0.949107912342759};
    constexpr double cWeights[] = {0.381830050505119, 0.279705391489277, 0.129484966168870};
    const double middle = (t0 + t1) / 2, half = (t1 - t0) / 2;
    double sum = 0.417959183673469 * norm(segment.derivative(middle));
    for (int i = 0; i < 3; ++i)
        sum += cWeights[i] * (norm(segment.derivative(middle - half * cNodes[i])) +
                              norm(segment.derivative(middle + half * cNodes[i])));
    return half * sum;
}

// Halves the range until halving makes no difference. About a cusp only the half that has it goes on.
double lengthBetween(const PathSegment& segment, double t0, double t1, double whole, double tolerance, int nHalvings)
{
    const double middle = (t0 + t1) / 2;
    const double first = gaussLength(segment, t0, middle), second = gaussLength(segment, middle, t1);
    if (nHalvings == 0 || !(std::abs(first + second - whole) > tolerance))
        return first + second;
    return lengthBetween(segment, t0, middle, first, tolerance, nHalvings - 1) +
           lengthBetween(segment, middle, t1, second, tolerance, nHalvings - 1);
}

/// One coordinate of a segment: its control numbers, or the centre and two axes of an arc.
struct Coordinate
{
    double Point::*coordinate;
    double td::RectNormalized<double>::*low;
    double td::RectNormalized<double>::*high;
};

constexpr Coordinate cAxes[] = {{&Point::x, &td::RectNormalized<double>::left, &td::RectNormalized<double>::right},
                                {&Point::y, &td::RectNormalized<double>::top, &td::RectNormalized<double>::bottom}};

/// The parameters between 0 and 1 at which one coordinate turns: at most two, of an arc as many as half turns.
template <typename Turn>
void forEachTurn(const PathSegment& segment, double Point::*coordinate, Turn turn)
{
    const double p0 = segment.from.*coordinate, p1 = segment.control1.*coordinate;
    if (segment.verb == Verb::QuadTo)
    {
        turn((p0 - p1) / (p0 - 2 * p1 + segment.to.*coordinate));
    }
    else if (segment.verb == Verb::CubicTo)
    {
        // The derivative's coefficients. The root that cancels nothing first, the other by their product.
        const double p2 = segment.control2.*coordinate, p3 = segment.to.*coordinate;
        const double a = p3 - p0 + 3 * (p1 - p2), b = 2 * (p0 - 2 * p1 + p2), c = p1 - p0;
        const double root = std::sqrt(std::max(b * b - 4 * a * c, 0.0));
        const double q = -(b + std::copysign(root, b)) / 2;
        turn(q / a);
        turn(c / q);
    }
    else if (segment.verb == Verb::ArcTo && segment.arc.sweep != 0)
    {
        const double sweep = segment.arc.sweep;
        const double angle = std::atan2(segment.arc.v.*coordinate, segment.arc.u.*coordinate);
        // More than a full turn shows nothing new.
        const double first = std::ceil((std::min(sweep, 0.0) - angle) / std::numbers::pi);
        for (int i = 0; i < 3; ++i)
            turn((angle + (first + i) * std::numbers::pi) / sweep);
    }
}

} // namespace

Point PathSegment::at(double t) const
{
    if (t == 0 || verb == Verb::MoveTo)
        return from;
    if (t == 1)
        return to;
    const Point p = between(from, control1, t), q = between(control1, control2, t);
    switch (verb)
    {
    case Verb::QuadTo:
        return between(p, between(control1, to, t), t);
    case Verb::CubicTo:
        return between(between(p, q, t), between(q, between(control2, to, t), t), t);
    case Verb::ArcTo:
        return arc.center + std::cos(t * arc.sweep) * arc.u + std::sin(t * arc.sweep) * arc.v;
    default:
        return between(from, to, t);
    }
}

Point PathSegment::derivative(double t) const
{
    switch (verb)
    {
    case Verb::MoveTo:
        return {};
    case Verb::QuadTo:
        return 2 * between(control1 - from, to - control1, t);
    case Verb::CubicTo:
    {
        const Point p = control1 - from, q = control2 - control1, r = to - control2;
        return 3 * between(between(p, q, t), between(q, r, t), t);
    }
    case Verb::ArcTo:
        return arc.sweep * (std::cos(t * arc.sweep) * arc.v - std::sin(t * arc.sweep) * arc.u);
    default:
        return to - from;
    }
}

Point PathSegment::direction(double t) const
{
    Point along = derivative(t);
    for (double step = 1.0 / (1 << 20); !(norm(along) > 0) && step <= 1; step *= 32)
        along = at(std::min(t + step, 1.0)) - at(std::max(t - step, 0.0));
    const double length = norm(along);
    return length > 0 ? Point(along.x / length, along.y / length) : Point();
}

double PathSegment::getLength(double t) const
{
    if (verb == Verb::MoveTo)
        return 0;
    if (verb == Verb::LineTo || verb == Verb::Close)
        return t * norm(to - from);
    const double whole = gaussLength(*this, 0, t);
    return lengthBetween(*this, 0, t, whole, 1e-12 * whole, 24);
}

double PathSegment::parameterAt(double length) const
{
    const double whole = getLength();
    if (!(length > 0))
        return 0;
    if (length >= whole)
        return 1;
    // Newton's method, held between the bounds that are known; where the curve stands still it halves them.
    double low = 0, high = 1, t = length / whole;
    for (int i = 0; i < 60; ++i)
    {
        const double excess = getLength(t) - length;
        if (std::abs(excess) <= 1e-13 * whole)
            break;
        (excess > 0 ? high : low) = t;
        t -= excess / norm(derivative(t));
        if (!(t > low && t < high))
            t = (low + high) / 2;
    }
    return t;
}

void PathSegment::widen(td::RectNormalized<double>& rect) const
{
    if (verb == Verb::MoveTo)
        return;
    for (const Coordinate& axis : cAxes)
    {
        const auto take = [&rect, &axis](Point p)
        {
            const double value = p.*axis.coordinate;
            if (value < rect.*axis.low)
                rect.*axis.low = value;
            if (value > rect.*axis.high)
                rect.*axis.high = value;
        };
        take(from);
        take(to);
        // Roots that are none, infinite and NaN, fail the comparison.
        forEachTurn(*this, axis.coordinate,
                    [this, take](double t)
                    {
                        if (t > 0 && t < 1)
                            take(at(t));
                    });
    }
}

// A chord of a curve p stays within h^2 / 8 max |p''| when it spans h of the parameter: the error of linear
// interpolation. A Bézier curve's second derivative is bounded by its control points' second differences (as in G.
// Wang, "The subdivision method for finding the intersection between two Bézier curves or surfaces", 1984):
// 2 |d| for a quadratic one, 6 max |d| for a cubic one. A chord over an angle h of a unit circle is 1 - cos(h / 2) away
// from it, and an affine map enlarges that by no more than its norm, the largest singular value.
unsigned int PathSegment::nPieces(double tolerance) const
{
    double n = 1;
    if (verb == Verb::QuadTo)
    {
        n = std::sqrt(norm(from - 2 * control1 + to) / (4 * tolerance));
    }
    else if (verb == Verb::CubicTo)
    {
        const double bend = std::max(norm(from - 2 * control1 + control2), norm(control1 - 2 * control2 + to));
        n = std::sqrt(0.75 * bend / tolerance);
    }
    else if (verb == Verb::ArcTo)
    {
        // The largest singular value of the matrix (u, v).
        const Point u = arc.u, v = arc.v;
        const double sum = u.x * u.x + u.y * u.y + v.x * v.x + v.y * v.y, determinant = u.x * v.y - u.y * v.x;
        const double radius =
            std::sqrt((sum + std::sqrt(std::max(sum * sum - 4 * determinant * determinant, 0.0))) / 2);
        // asin of the root keeps the digits that acos of nearly 1 loses.
        const double half = 2 * std::asin(std::sqrt(std::min(tolerance / (2 * radius), 0.5)));
        n = std::abs(arc.sweep) / (2 * half);
    }
    return n > 1 ? static_cast<unsigned int>(std::ceil(std::min(n, 65536.0))) : 1;
}

} // namespace gui::draw
