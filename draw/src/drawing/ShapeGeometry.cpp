#include "ShapeGeometry.h"

#include "TwoDoubles.h"
#include "ZOrder.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <utility>

namespace gui::draw
{

namespace
{

// Lines in a leaf, and parts that an inner node has: few enough that looking at all of them costs no more than another
// box.
constexpr std::int32_t cLeaf = 4;
constexpr std::int32_t cParts = 4;

// Steps are powers of two, which one divides by as well as one multiplies with their inverse.
GridPoint toGrid(td::Point<double> p, td::Point<double> origin, double inverse)
{
    // To the nearest whole number, without a call: sums of this size have no digits behind the point.
    constexpr double cNoFraction = 0x1.8p52;
    return {static_cast<std::int32_t>((p.x - origin.x) * inverse + cNoFraction - cNoFraction),
            static_cast<std::int32_t>((p.y - origin.y) * inverse + cNoFraction - cNoFraction)};
}

// Of vectors between points of the grid, or of length 2 at most: no square is too large, and hypot's care takes longer
// than all else here.
double lengthOf(double x, double y) { return std::sqrt(x * x + y * y); }

void widen(std::array<std::int32_t, 4>& box, const std::array<std::int32_t, 4>& by)
{
    box = {std::min(box[0], by[0]), std::min(box[1], by[1]), std::max(box[2], by[2]), std::max(box[3], by[3])};
}

} // namespace

void ShapeGeometry::clear()
{
    points.clear();
    nodes.clear();
    elements.clear();
    nTriangles = 0;
    lengths.clear();
    hasRound = false;
    reach = 1;
    mostOfLeaves = leastOfLeaves = leastOfOthers = 0;
}

double toleranceFor(const Path& path, double tolerance)
{
    if (tolerance > 0)
        return tolerance;
    if (!path.hasCurves())
        return 1;
    const std::optional<Path::Rect> bounds = path.getBounds();
    const double size = bounds ? std::max(bounds->right - bounds->left, bounds->bottom - bounds->top) : 0;
    return size > 0 && std::isfinite(size) ? size / 4096 : 1;
}

void ShapeBuilder::addElement(ShapeGeometry& shape, ElementKind kind, std::size_t first, std::size_t second)
{
    shape.elements.push_back({static_cast<std::uint32_t>(kind) << 28,
                              {static_cast<std::uint32_t>(first), static_cast<std::uint32_t>(second), 0}});
}

// With the elements of its lines, and of the node unless it is the root, whose parent is itself.
void ShapeBuilder::addChain(ShapeGeometry& shape, std::int32_t first, std::int32_t last, ElementKind kind,
                            std::size_t parent)
{
    const std::size_t number = shape.nodes.size();
    shape.nodes.emplace_back();
    _parents.push_back(static_cast<std::uint32_t>(parent));
    if (number != parent)
        addElement(shape, ElementKind::Node, number, parent);
    std::array<std::int32_t, 4> box{INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN};
    const std::int32_t n = last - first;
    if (n <= cLeaf)
        for (std::int32_t i = first; i <= last; ++i)
        {
            const auto point = static_cast<std::uint32_t>(i);
            const GridPoint p = withoutMark(shape.points[point]);
            widen(box, {p.x, p.y, p.x, p.y});
            _leaves[point] = static_cast<std::uint32_t>(number);
            if (i == last)
                break;
            addElement(shape, kind, point, number);
            if (kind == ElementKind::Line && std::binary_search(_tips.begin(), _tips.end(), point))
                addElement(shape, ElementKind::Tip, point, number);
        }
    else
    {
        const std::int32_t part = ((n + cParts - 1) / cParts + cLeaf - 1) / cLeaf * cLeaf;
        for (std::int32_t begin = first; begin < last; begin += part)
        {
            const std::size_t child = shape.nodes.size();
            addChain(shape, begin, std::min(begin + part, last), kind, number);
            widen(box, shape.nodes[child].box);
        }
    }
    shape.nodes[number] = {box, static_cast<std::int32_t>(shape.nodes.size()), first, last, 0};
    setForm(shape, number, n <= cLeaf);
}

void EdgeNode::setForm(bool isLeaf, double deviation, double turn)
{
    // One more, at the lowest bit that is left, is not less than the number was.
    constexpr double cLargest = 1e30;
    const auto bits = std::bit_cast<std::uint32_t>(static_cast<float>(std::min(deviation, cLargest)));
    const double exact = std::min(turn, double(cSharpest)) * 64;
    const auto below = static_cast<std::uint32_t>(exact);
    const std::uint32_t steps = below + (below < exact ? 1 : 0);
    form = (bits == 0 ? 0U : (bits & ~255U) + 256U) | steps << 1 | (isLeaf ? 1U : 0U);
}

// From its lines, or from its parts: they deviate from their own chord, and that from the whole one.
void ShapeBuilder::setForm(ShapeGeometry& shape, std::size_t number, bool isLeaf)
{
    using Vector = td::Point<double>;
    const auto at = [&shape](std::int32_t i)
    {
        const GridPoint p = withoutMark(shape.points[static_cast<std::size_t>(i)]);
        return Vector(p.x, p.y);
    };
    EdgeNode& node = shape.nodes[number];
    const Vector from = at(node.first), to = at(node.last), way(to.x - from.x, to.y - from.y);
    const double length = lengthOf(way.x, way.y);
    const Vector u = length > 0 ? Vector(way.x / length, way.y / length) : Vector(0, 0);
    constexpr double cMostTurn = EdgeNode::cSharpest;
    double deviation = 0, turn = length > 0 ? 0 : 2, farBefore = 0;
    const auto look = [&](Vector a, Vector b, double ownDeviation, double ownTurn)
    {
        const double along = (b.x - from.x) * u.x + (b.y - from.y) * u.y;
        const double across = (b.x - from.x) * u.y - (b.y - from.y) * u.x;
        const double beyond = std::max({-along, along - length, 0.0});
        // With no length, across is 0 and so is along.
        const double far = length == 0   ? lengthOf(b.x - from.x, b.y - from.y)
                           : beyond == 0 ? std::abs(across)
                                         : lengthOf(across, beyond);
        deviation = std::max(deviation, std::max(far, farBefore) + ownDeviation);
        farBefore = far;
        if (turn > cMostTurn)
            return; // it is told as no more
        const double own = lengthOf(b.x - a.x, b.y - a.y);
        if (own > 0)
            turn = std::max(turn, lengthOf((b.x - a.x) / own - u.x, (b.y - a.y) / own - u.y) + ownTurn);
    };
    if (!isLeaf)
        for (std::size_t i = number + 1; i < shape.nodes.size(); i = static_cast<std::size_t>(shape.nodes[i].next))
        {
            const EdgeNode& part = shape.nodes[i];
            look(at(part.first), at(part.last), part.getDeviation(), part.getTurn());
        }
    else if (node.last - node.first > 1)
    {
        // The same for lines, which deviate and turn by nothing of their own, two at a time: the largest square has the
        // largest root. The last point again is a line that counts for nothing.
        const TwoDoubles zero{0, 0};
        TwoDoubles farSquares = zero, turnSquares = zero;
        Vector a = from;
        for (std::int32_t i = node.first; i < node.last; i += 2)
        {
            const Vector b = at(i + 1), c = at(std::min(i + 2, node.last));
            const TwoDoubles bx{b.x, c.x}, by{b.y, c.y};
            const TwoDoubles x = bx - from.x, y = by - from.y, along = x * u.x + y * u.y, across = x * u.y - y * u.x;
            const TwoDoubles beyond = largerOf(largerOf(-along, along - length), zero);
            farSquares = largerOf(farSquares, length == 0 ? x * x + y * y : across * across + beyond * beyond);
            const TwoDoubles wayX = bx - TwoDoubles{a.x, b.x}, wayY = by - TwoDoubles{a.y, b.y};
            const TwoDoubles own = rootOf(wayX * wayX + wayY * wayY);
            const TwoDoubles turnX = wayX / own - u.x, turnY = wayY / own - u.y;
            // What is no number, without a length, is the smaller one.
            turnSquares = largerOf(turnX * turnX + turnY * turnY, turnSquares);
            a = c;
        }
        const double farSquare = std::max(farSquares[0], farSquares[1]);
        const double turnSquare = std::max(turnSquares[0], turnSquares[1]);
        deviation = std::sqrt(farSquare);
        turn = std::max(turn, std::sqrt(turnSquare));
    }
    node.setForm(isLeaf, deviation, turn);
}

void ShapeBuilder::addRings(ShapeGeometry& shape, std::size_t first, std::size_t last, ElementKind kind,
                            std::size_t parent)
{
    if (last - first == 1)
    {
        addChain(shape, _rings[first].first, _rings[first].last, kind, parent);
        return;
    }
    const std::size_t number = shape.nodes.size();
    shape.nodes.emplace_back();
    _parents.push_back(static_cast<std::uint32_t>(parent));
    if (number != parent)
        addElement(shape, ElementKind::Node, number, parent);
    std::array<std::int32_t, 4> box{INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN};
    const std::size_t part = (last - first + cParts - 1) / cParts;
    for (std::size_t begin = first; begin < last; begin += part)
    {
        const std::size_t child = shape.nodes.size();
        addRings(shape, begin, std::min(begin + part, last), kind, number);
        widen(box, shape.nodes[child].box);
    }
    const std::int32_t point = _rings[first].first;
    shape.nodes[number] = {box, static_cast<std::int32_t>(shape.nodes.size()), point, point, 0};
    shape.nodes[number].setForm(false, 1e30, EdgeNode::cSharpest);
}

void ShapeBuilder::makeFill(const Path& path, FillRule rule, double tolerance, ShapeGeometry& shape)
{
    shape.clear();
    _fill.addPath(path, toleranceFor(path, tolerance));
    _fill.tessellate(rule);
    const std::vector<td::Point<double>>& vertices = _fill.getVertices();
    if (_fill.getIndices().empty())
        return;
    td::Point<double> low = vertices.front(), high = low;
    for (const td::Point<double>& p : vertices)
    {
        low = {std::min(low.x, p.x), std::min(low.y, p.y)};
        high = {std::max(high.x, p.x), std::max(high.y, p.y)};
    }
    shape.step = _fill.getStep();
    // A number of the grid, so that all differences are whole.
    shape.origin = {std::nearbyint((low.x / 2 + high.x / 2) / shape.step) * shape.step,
                    std::nearbyint((low.y / 2 + high.y / 2) / shape.step) * shape.step};
    linkRings(shape);
    addElement(shape, ElementKind::Box);
    addTree(shape, ElementKind::Edge);
    addTriangles(shape);
}

// Behind the boundary, which leaves them only pixels that are inside with all they are.
void ShapeBuilder::addTriangles(ShapeGeometry& shape)
{
    const std::vector<std::uint32_t>& indices = _fill.getIndices();
    shape.nTriangles = static_cast<std::uint32_t>(indices.size() / 3);
    for (std::size_t i = 0; i < indices.size(); i += 3)
    {
        const std::uint32_t a = _numbers[indices[i]], b = _numbers[indices[i + 1]], c = _numbers[indices[i + 2]];
        const auto [low, high] = std::minmax({_leaves[a], _leaves[b], _leaves[c]});
        std::uint32_t number = low;
        while (high >= static_cast<std::uint32_t>(shape.nodes[number].next))
            number = _parents[number];
        const std::array<std::int32_t, 4>& box = shape.nodes[number].box;
        const auto size = static_cast<std::uint32_t>(std::max(box[2] - box[0], box[3] - box[1]));
        shape.elements.push_back({static_cast<std::uint32_t>(ElementKind::Triangle) << 28,
                                  {a | static_cast<std::uint32_t>(std::bit_width(size)) << cTriangleSizeShift, b, c}});
    }
}

// Joins the boundary's edges end to end: which ones, where several meet, makes no difference to what they enclose.
void ShapeBuilder::linkRings(ShapeGeometry& shape)
{
    constexpr std::uint32_t cNone = UINT32_MAX;
    const std::size_t n = _fill.getVertices().size();
    const std::vector<FillTessellator::Edge>& edges = _fill.getBoundary();
    _rings.clear();
    _numbers.assign(n, cNone); // the first point that each vertex became
    // Where one edge begins at each vertex, as in most fills.
    _next.assign(n, cNone);
    const auto isAlone = [this](const FillTessellator::Edge& edge)
    { return std::exchange(_next[edge.from], edge.to) == cNone; };
    if (std::all_of(edges.begin(), edges.end(), isAlone))
    {
        for (std::uint32_t vertex = 0; vertex < n; ++vertex)
            if (_next[vertex] != cNone && _numbers[vertex] == cNone)
                linkRing(vertex, shape, [this](std::uint32_t at) { return _next[at]; });
        return;
    }
    _starts.assign(n + 1, 0);
    for (const FillTessellator::Edge& edge : edges)
        ++_starts[edge.from + 1];
    for (std::size_t i = 1; i < _starts.size(); ++i)
        _starts[i] += _starts[i - 1];
    _next.resize(edges.size());
    _ends.assign(_starts.begin(), _starts.end() - 1);
    for (const FillTessellator::Edge& edge : edges)
        _next[_ends[edge.from]++] = edge.to;
    // From here on the edges of each vertex that are left end there.
    for (std::uint32_t vertex = 0; vertex < n; ++vertex)
        while (_ends[vertex] > _starts[vertex])
            linkRing(vertex, shape, [this](std::uint32_t at) { return _next[--_ends[at]]; });
}

template <typename Next>
void ShapeBuilder::linkRing(std::uint32_t vertex, ShapeGeometry& shape, Next next)
{
    const double inverse = 1 / shape.step;
    const auto first = static_cast<std::uint32_t>(shape.points.size());
    std::array<std::int32_t, 4> box{INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN};
    std::uint32_t at = vertex;
    do
    {
        const GridPoint p = toGrid(_fill.getVertices()[at], shape.origin, inverse);
        _numbers[at] = std::min(_numbers[at], static_cast<std::uint32_t>(shape.points.size()));
        shape.points.push_back(p);
        widen(box, {p.x, p.y, p.x, p.y});
        at = next(at);
    } while (at != vertex);
    const GridPoint begin = shape.points[first];
    shape.points.push_back(begin);
    addRing(static_cast<std::int32_t>(first), static_cast<std::int32_t>(shape.points.size()) - 1, box);
}

void ShapeBuilder::addRing(std::int32_t first, std::int32_t last, const std::array<std::int32_t, 4>& box)
{
    const auto middle = [](std::int32_t low, std::int32_t high)
    { return static_cast<std::uint32_t>(low / 2 + high / 2) + 0x80000000U; };
    _rings.push_back({first, last, zOrderOf(middle(box[0], box[2]), middle(box[1], box[3]))});
}

// Those that are near each other are to be in one node.
void ShapeBuilder::addTree(ShapeGeometry& shape, ElementKind kind)
{
    if (_rings.size() > static_cast<std::size_t>(cParts))
        std::sort(_rings.begin(), _rings.end(), [](const Ring& a, const Ring& b) { return a.place < b.place; });
    _leaves.resize(shape.points.size());
    _parents.clear();
    if (!_rings.empty())
        addRings(shape, 0, _rings.size(), kind, 0);
}

void ShapeBuilder::lookAtForms(ShapeGeometry& shape) const
{
    if (_rings.size() != 1 || shape.nodes[0].isLeaf())
        return;
    // Deviations in the high bits, which are those of floats and grow as these do, and turns.
    constexpr std::uint32_t cDeviation = ~255U, cTurn = 254;
    std::array<std::uint32_t, 2> leastDeviations{cDeviation, cDeviation}, leastTurns{cTurn, cTurn};
    std::uint32_t mostDeviation = 0, mostTurn = 0;
    for (const EdgeNode& node : shape.nodes)
    {
        // A line by itself stands for itself.
        if (node.last - node.first == 1)
            continue;
        const std::size_t i = node.isLeaf() ? 1 : 0;
        leastDeviations[i] = std::min(leastDeviations[i], node.form & cDeviation);
        leastTurns[i] = std::min(leastTurns[i], node.form & cTurn);
        mostDeviation = std::max(mostDeviation, i == 1 ? node.form & cDeviation : 0);
        mostTurn = std::max(mostTurn, i == 1 ? node.form & cTurn : 0);
    }
    shape.mostOfLeaves = mostDeviation | mostTurn;
    shape.leastOfLeaves = leastDeviations[1] | leastTurns[1];
    shape.leastOfOthers = leastDeviations[0] | leastTurns[0];
}

void ShapeBuilder::makeStroke(const Path& path, const Stroke& stroke, double tolerance, ShapeGeometry& shape,
                              double step)
{
    shape.clear();
    _lines.clear();
    path.flatten(toleranceFor(path, tolerance), _lines, true);
    constexpr double cLargest = 1e300;
    td::Point<double> low(cLargest, cLargest), high(-cLargest, -cLargest);
    const auto isUsable = [](td::Point<double> p) { return std::abs(p.x) <= cLargest && std::abs(p.y) <= cLargest; };
    for (const td::Point<double>& p : _lines.points)
        if (isUsable(p))
        {
            low = {std::min(low.x, p.x), std::min(low.y, p.y)};
            high = {std::max(high.x, p.x), std::max(high.y, p.y)};
        }
    if (low.x > high.x)
        return;
    // As the tessellator's, as far as the shaders' floats go.
    shape.step = step > 0 ? step : std::max(gridStepFor(low, high), 0x1p-100);
    shape.origin = {std::nearbyint((low.x / 2 + high.x / 2) / shape.step) * shape.step,
                    std::nearbyint((low.y / 2 + high.y / 2) / shape.step) * shape.step};
    if (low.x == high.x && low.y == high.y)
    {
        // One point, for which any step will do.
        shape.step = 1;
        shape.origin = low;
    }
    _rings.clear();
    _tips.clear();
    addElement(shape, ElementKind::Box);
    const double inverse = 1 / shape.step;
    for (const Polylines::Line& line : _lines.lines)
    {
        _line.clear();
        _areWithinCurves.clear();
        for (std::size_t i = line.first; i < line.first + line.count; ++i)
            if (isUsable(_lines.points[i]))
                if (const GridPoint g = toGrid(_lines.points[i], shape.origin, inverse);
                    _line.empty() || _line.back() != g)
                {
                    _line.push_back(g);
                    _areWithinCurves.push_back(_lines.areWithinCurves[i]);
                }
        addLine(line, stroke, shape);
    }
    addTree(shape, ElementKind::Line);
    if (stroke.dashes.empty())
        lookAtForms(shape);
    if (stroke.cap == Cap::Square)
        shape.reach = std::max(shape.reach, 1.5F);
}

// Each line of a chain finds the points before and after it beside its own: where there is none, its own again.
void ShapeBuilder::addLine(const Polylines::Line& line, const Stroke& stroke, ShapeGeometry& shape)
{
    if (line.isClosed && _line.size() > 1 && _line.front() == _line.back())
        _line.pop_back();
    if (_line.empty())
        return;
    const bool isClosed = line.isClosed && _line.size() > 1;
    const GridPoint before = isClosed ? _line.back() : _line.front();
    if (isClosed || _line.size() == 1)
        _line.push_back(_line.front());
    const GridPoint after = isClosed ? _line[1] : _line.back();
    shape.points.push_back(before);
    const auto first = static_cast<std::uint32_t>(shape.points.size());
    shape.points.insert(shape.points.end(), _line.begin(), _line.end());
    const auto last = static_cast<std::uint32_t>(shape.points.size()) - 1;
    shape.points.push_back(after);
    std::array<std::int32_t, 4> box{INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN};
    for (const GridPoint& p : _line)
        widen(box, {p.x, p.y, p.x, p.y});
    addRing(static_cast<std::int32_t>(first), static_cast<std::int32_t>(last), box);

    const auto wayTo = [&shape](std::uint32_t i)
    {
        const GridPoint a = shape.points[i - 1], b = shape.points[i];
        return td::Point<double>(double(b.x) - a.x, double(b.y) - a.y);
    };
    std::vector<std::uint32_t>& rounds = _numbers;
    rounds.clear();
    for (std::uint32_t i = first; i < last; ++i)
    {
        const td::Point<double> in = wayTo(i), out = wayTo(i + 1);
        const double lengths = std::hypot(in.x, in.y) * std::hypot(out.x, out.y);
        if (lengths == 0)
            continue;
        // A mitre ends 1 / cos(half the turn) halves of the width from its corner.
        const double cosine = std::sqrt(std::max((1 + (in.x * out.x + in.y * out.y) / lengths) / 2, 0.0));
        // A curve has no corners: where it turns as sharply as this, the brush turns.
        if (_areWithinCurves[i - first] && cosine < 0.9975)
        {
            rounds.push_back(i);
            continue;
        }
        if (stroke.join != Join::Miter)
            continue;
        if (1 > std::max(stroke.miterLimit, 1.0) * cosine * 1.000001)
            continue;
        shape.reach = std::max(shape.reach, static_cast<float>(1 / cosine));
        // Less far, the quads of its lines cover it.
        if (cosine < 0.7)
            _tips.push_back(i);
    }
    if (!stroke.dashes.empty())
        addLengths(first, last, shape);
    for (const std::uint32_t i : rounds)
        shape.points[i] = markRound(shape.points[i]);
    shape.hasRound = shape.hasRound || !rounds.empty();
}

void ShapeBuilder::addLengths(std::uint32_t first, std::uint32_t last, ShapeGeometry& shape)
{
    shape.lengths.resize(shape.points.size());
    double length = 0;
    for (std::uint32_t i = first; i <= last; ++i)
    {
        if (i > first)
        {
            const GridPoint a = shape.points[i - 1], b = shape.points[i];
            length += std::hypot(double(b.x) - a.x, double(b.y) - a.y);
        }
        shape.lengths[i] = static_cast<float>(i == last ? -std::max(length, 1e-30) : length);
    }
}

} // namespace gui::draw
