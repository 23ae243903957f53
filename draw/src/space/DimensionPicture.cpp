#include "DimensionPicture.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace gui::draw
{

namespace
{

using ScreenPoint = DimensionPicture::Point;

// In points.
constexpr double cLeast = 3;               // a line on the screen, to be drawn
constexpr double cLeastPiece = 3;          // of a line on either side of its text
constexpr double cAroundText = 3;          // between a text and the line's ends at its sides
constexpr double cAboveLine = 2;           // between a text and the line below
constexpr double cStub = 8;                // of the line beyond an arrow that stands outside
constexpr double cArcSteps[] = {48, 2000}; // of half a circle: at least, at most
constexpr double cOffArc = 0.1;            // what a step may be

ScreenPoint along(const ScreenPoint& from, const ScreenPoint& direction, double way)
{
    return {from.x + way * direction.x, from.y + way * direction.y};
}

double distance(const ScreenPoint& a, const ScreenPoint& b) { return std::hypot(b.x - a.x, b.y - a.y); }

ScreenPoint direction(const ScreenPoint& from, const ScreenPoint& to)
{
    const double length = distance(from, to);
    return length > 0 ? ScreenPoint((to.x - from.x) / length, (to.y - from.y) / length) : ScreenPoint(1, 0);
}

ScreenPoint opposite(const ScreenPoint& direction) { return {-direction.x, -direction.y}; }

struct End
{
    ScreenPoint place;
    bool isThere; // where the line ends; else only where it leaves what the eye sees
};

// What is seen of a line: an end that is behind the eye moves along to just before it.
std::optional<std::array<End, 2>> project(const Eye& eye, const glm::dvec3& from, const glm::dvec3& to, double farthest)
{
    constexpr double cJustBefore = 1e-3; // of the other end's distance
    const auto there = [&eye](const glm::dvec3& point) { return eye.project(point); };
    auto a = there(from), b = there(to);
    if (!a && !b)
        return std::nullopt;
    std::array<End, 2> ends{End{{}, a.has_value()}, End{{}, b.has_value()}};
    if (!a || !b)
    {
        const glm::dvec3 &seen = a ? from : to, &behind = a ? to : from;
        const double d = eye.getDistance(seen), other = eye.getDistance(behind);
        const double part = (d - cJustBefore * d) / (d - other);
        auto& moved = a ? b : a;
        moved = there(seen + (behind - seen) * part);
        if (!moved)
            return std::nullopt;
    }
    ends[0].place = {a->x, a->y};
    ends[1].place = {b->x, b->y};
    for (const End& end : ends)
        if (std::abs(end.place.x) > farthest || std::abs(end.place.y) > farthest)
            return std::nullopt;
    return ends;
}

void addExtension(DimensionPicture& picture, const Eye& eye, const glm::dvec3& from, const glm::dvec3& to, double gap,
                  double overshoot, double farthest)
{
    const auto seen = project(eye, from, to, farthest);
    if (!seen)
        return;
    const auto& [begin, end] = *seen;
    const ScreenPoint way = direction(begin.place, end.place);
    const double length = distance(begin.place, end.place), first = begin.isThere ? gap : 0;
    if (length > first)
    {
        picture.lines.emplace_back(along(begin.place, way, first), along(end.place, way, end.isThere ? overshoot : 0));
        ++picture.nExtensions;
    }
}

// Half of the way that a line takes through a text's box about its middle.
double halfThrough(const td::Size<double>& text, const ScreenPoint& way)
{
    const double x = std::abs(way.x), y = std::abs(way.y);
    return std::min(x > 0 ? text.width / 2 / x : 1e9, y > 0 ? text.height / 2 / y : 1e9) + cAroundText;
}

// Readable from below or from the right: no steeper downwards than this, else upwards.
double turnAlong(const ScreenPoint& way)
{
    constexpr double cSteepest = 75 * std::numbers::pi / 180;
    const double turn = std::atan2(way.y, way.x);
    return turn >= cSteepest                     ? turn - std::numbers::pi
           : turn < cSteepest - std::numbers::pi ? turn + std::numbers::pi
                                                 : turn;
}

// Above a line that is turned so.
ScreenPoint above(const ScreenPoint& middle, double turn, double height)
{
    return along(middle, {std::sin(turn), -std::cos(turn)}, height / 2 + cAboveLine);
}

void layLine(DimensionPicture& picture, const Eye& eye, const DimensionShape& shape, const DimensionStyle& style,
             const td::Size<double>& text)
{
    const auto seen = project(eye, shape.ends[0], shape.ends[1], shape.farthest);
    if (!seen)
        return;
    const ScreenPoint a = (*seen)[0].place, b = (*seen)[1].place, way = direction(a, b);
    const double length = distance(a, b);
    if (length < cLeast)
        return;
    picture.isShown = true;
    if (shape.hasExtensions)
        for (std::size_t i = 0; i < 2; ++i)
            addExtension(picture, eye, shape.measured[i], shape.ends[i], style.gap, style.overshoot, shape.farthest);
    const bool isInLine = style.place == DimensionStyle::Text::InLine;
    const double arrow = style.arrow > 0 ? style.arrow : 0;
    const std::array<bool, 2> hasArrow{shape.hasArrow[0] && (*seen)[0].isThere && arrow > 0,
                                       shape.hasArrow[1] && (*seen)[1].isThere && arrow > 0};
    const bool isTick = style.end == DimensionStyle::End::Tick;
    const double arrows = arrow * ((hasArrow[0] ? 1 : 0) + (hasArrow[1] ? 1 : 0));
    const double half = isInLine ? halfThrough(text, way) : text.width / 2 + cAroundText;
    const bool isTextInside = length >= 2 * (isInLine ? half + cLeastPiece : half);
    const bool areArrowsInside = isTick || length >= arrows + (isTextInside ? 2 * half : 4);
    // From the ends to where the line stops for an arrow's tip to be sharp, and to the stubs' ends.
    const double blunt = areArrowsInside && !isTick ? arrow / 2 : 0;
    const double stub = isTick ? arrow / 2 : areArrowsInside ? 0 : arrow + cStub;
    for (std::size_t i = 0; i < 2; ++i)
    {
        if (!hasArrow[i])
            continue;
        const ScreenPoint tip = i == 0 ? a : b, outwards = i == 0 ? opposite(way) : way;
        picture.arrows[i] = {tip, areArrowsInside ? outwards : opposite(outwards)};
        if (!areArrowsInside)
            picture.lines.emplace_back(along(tip, outwards, arrow / 2), along(tip, outwards, stub));
    }
    const ScreenPoint from = along(a, way, hasArrow[0] ? blunt : 0), to = along(b, way, hasArrow[1] ? -blunt : 0);
    picture.turn = isInLine ? 0 : turnAlong(way);
    // A line leads to a text outside, as far as an arrow's there does.
    const bool isLed = !isTextInside && isInLine && areArrowsInside;
    const double lead = isLed ? arrow + cStub : hasArrow[1] ? stub : 0;
    const double middle = isTextInside ? length / 2 : length + lead + half - cAroundText / 2;
    const ScreenPoint place = along(a, way, middle);
    picture.text = isInLine ? place : above(place, picture.turn, text.height);
    if (isTextInside && isInLine)
    {
        picture.lines.emplace_back(from, along(place, way, -half));
        picture.lines.emplace_back(along(place, way, half), to);
        return;
    }
    picture.lines.emplace_back(from, to);
    if (isLed)
        picture.lines.emplace_back(b, along(b, way, lead));
    // Below a text that stands beyond the end the line goes on.
    if (!isTextInside && !isInLine)
        picture.lines.back().second = along(place, way, half - cAroundText);
}

struct ArcPoint
{
    ScreenPoint place;
    double way; // from the arc's beginning
};

// Between two points of an arc's length.
std::vector<ScreenPoint> pieceOf(const std::vector<ArcPoint>& arc, double from, double to)
{
    std::vector<ScreenPoint> piece;
    for (std::size_t i = 1; i < arc.size(); ++i)
    {
        const ArcPoint &a = arc[i - 1], &b = arc[i];
        const auto at = [&](double way)
        {
            const double part = b.way > a.way ? (way - a.way) / (b.way - a.way) : 0;
            return ScreenPoint(std::lerp(a.place.x, b.place.x, part), std::lerp(a.place.y, b.place.y, part));
        };
        if (b.way <= from || a.way >= to)
            continue;
        if (piece.empty())
            piece.push_back(at(std::max(from, a.way)));
        piece.push_back(at(std::min(to, b.way)));
    }
    return piece;
}

void layAngle(DimensionPicture& picture, const Eye& eye, const DimensionShape& shape, const DimensionStyle& style,
              const td::Size<double>& text)
{
    const auto apex = eye.project(shape.apex), start = eye.project(shape.onArc(0));
    const double radius = apex && start ? distance({apex->x, apex->y}, {start->x, start->y}) : 0;
    const double perHalf = std::clamp(std::numbers::pi * std::sqrt(radius / 8 / cOffArc), cArcSteps[0], cArcSteps[1]);
    const int nSteps = std::max(2, static_cast<int>(std::ceil(perHalf * shape.angle / std::numbers::pi)) / 2 * 2);
    std::vector<ArcPoint> arc;
    for (int i = 0; i <= nSteps; ++i)
    {
        const auto seen = eye.project(shape.onArc(static_cast<double>(i) / nSteps));
        if (!seen || std::abs(seen->x) > shape.farthest || std::abs(seen->y) > shape.farthest)
            return;
        const ScreenPoint place(seen->x, seen->y);
        arc.push_back({place, arc.empty() ? 0 : arc.back().way + distance(arc.back().place, place)});
    }
    const double length = arc.back().way;
    if (length < cLeast)
        return;
    picture.isShown = true;
    if (shape.hasExtensions)
        for (const glm::dvec3& end : shape.ends)
            addExtension(picture, eye, shape.apex, end, 0, style.overshoot, shape.farthest);
    const auto at = [&](double way)
    {
        const std::vector<ScreenPoint> piece = pieceOf(arc, std::max(way - 1e-3, 0.0), way);
        return piece.empty() ? arc.front().place : piece.back();
    };
    const bool isInLine = style.place == DimensionStyle::Text::InLine;
    const double arrow = style.arrow > 0 ? style.arrow : 0;
    const ScreenPoint tangent = direction(at(length * 0.45), at(length * 0.55));
    const double half = isInLine ? halfThrough(text, tangent) : text.width / 2 + cAroundText;
    const bool isTextInside = length >= 2 * half;
    const bool isTick = style.end == DimensionStyle::End::Tick;
    const bool areArrowsInside = isTick || length >= 2 * arrow + (isTextInside ? 2 * half : 4);
    const ScreenPoint a = arc.front().place, b = arc.back().place;
    const double reach = std::min(std::max(arrow, 1.0), length);
    // Where an arrow's back is, so that it lies along the arc.
    const std::array<ScreenPoint, 2> inwards{direction(a, at(reach)), direction(b, at(length - reach))};
    for (std::size_t i = 0; i < 2 && arrow > 0; ++i)
    {
        const ScreenPoint tip = i == 0 ? a : b;
        picture.arrows[i] = {tip, areArrowsInside ? opposite(inwards[i]) : inwards[i]};
        if (!areArrowsInside)
            picture.lines.emplace_back(along(tip, inwards[i], -arrow / 2), along(tip, inwards[i], -arrow - cStub));
    }
    const double blunt = areArrowsInside && !isTick ? arrow / 2 : 0, middle = length / 2;
    picture.turn = isInLine ? 0 : turnAlong(isTextInside ? tangent : inwards[1]);
    picture.text = isTextInside ? at(middle) : along(b, inwards[1], -(arrow > 0 ? arrow + cStub : 0) - half);
    if (!isInLine)
    {
        // Below a text that stands beyond the end the line goes on.
        if (!isTextInside)
            picture.lines.emplace_back(b, along(picture.text, inwards[1], cAroundText - half));
        picture.text = above(picture.text, picture.turn, text.height);
    }
    if (isTextInside && isInLine)
    {
        picture.arcs.push_back(pieceOf(arc, blunt, middle - half));
        picture.arcs.push_back(pieceOf(arc, middle + half, length - blunt));
    }
    else
        picture.arcs.push_back(pieceOf(arc, blunt, length - blunt));
}

} // namespace

glm::dvec3 DimensionShape::onArc(double part) const
{
    return apex + std::cos(part * angle) * first + std::sin(part * angle) * second;
}

DimensionPicture DimensionPicture::of(const Eye& eye, const DimensionShape& shape, const DimensionStyle& style,
                                      const td::Size<double>& text)
{
    DimensionPicture picture;
    for (const glm::dvec3& point : shape.measured)
        if (!eye.getClipping().isSeen(point))
            return picture;
    (shape.isAngle ? layAngle : layLine)(picture, eye, shape, style, text);
    return picture;
}

} // namespace gui::draw
