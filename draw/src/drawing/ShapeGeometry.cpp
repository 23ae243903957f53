#include "ShapeGeometry.h"

#include "ZOrder.h"

#include "../fill/Extent.h"
#include "../fill/TwoDoubles.h"

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
    return nearestTo((TwoDoubles{p.x, p.y} - TwoDoubles{origin.x, origin.y}) * inverse);
}

// Of vectors between points of the grid, or of length 2 at most: no square is too large, and hypot's care takes longer
// than all else here.
double lengthOf(double x, double y) { return std::sqrt(x * x + y * y); }

constexpr std::array<std::int32_t, 4> cNothing{INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN};

void widen(std::array<std::int32_t, 4>& box, const std::array<std::int32_t, 4>& by)
{
    box = {std::min(box[0], by[0]), std::min(box[1], by[1]), std::max(box[2], by[2]), std::max(box[3], by[3])};
}

void addElement(ShapeGeometry& shape, ElementKind kind, std::size_t what)
{
    shape.elements.push_back({bitsOf(kind), static_cast<std::uint32_t>(what)});
}

// @return the element that stands for it
Element addLong(ShapeGeometry& shape, ElementKind kind, const std::array<std::uint32_t, 3>& points)
{
    shape.longElements.push_back({bitsOf(kind), points});
    return {bitsOf(ElementKind::Long), static_cast<std::uint32_t>(shape.longElements.size() - 1)};
}

// A leaf's box, how far its points deviate from its chord, and how far its lines turn from that: which only strokes are
// asked. Two points at a time: the largest square has the largest root.
template <ElementKind Kind>
void setLeaf(ShapeGeometry& shape, std::size_t number, std::int32_t first, std::int32_t last)
{
    constexpr bool cHasTurns = Kind == ElementKind::Line;
    const std::int32_t n = last - first;
    const auto at = [pPoints = shape.points.data() + first](std::int32_t i)
    { return cHasTurns ? withoutMark(pPoints[i]) : pPoints[i]; };
    const TwoPoints ends(at(0), at(n));
    const td::Point<double> from(ends.x[0], ends.y[0]), way(ends.x[1] - from.x, ends.y[1] - from.y);
    const double length = lengthOf(way.x, way.y);
    const auto u = length > 0 ? td::Point<double>(way.x / length, way.y / length) : td::Point<double>(0, 0);
    const TwoDoubles zero{0, 0};
    TwoDoubles lowX = ends.x, lowY = ends.y, highX = ends.x, highY = ends.y, farSquares = zero, turnSquares = zero;
    td::Point<double> before = from;
    // The last point again is a line that counts for nothing.
    for (std::int32_t i = 1; i <= n; i += 2)
    {
        const TwoPoints next(at(i), at(std::min(i + 1, n)));
        lowX = smallerOf(lowX, next.x);
        lowY = smallerOf(lowY, next.y);
        highX = largerOf(highX, next.x);
        highY = largerOf(highY, next.y);
        const TwoDoubles x = next.x - from.x, y = next.y - from.y;
        const TwoDoubles along = x * u.x + y * u.y, across = x * u.y - y * u.x;
        const TwoDoubles beyond = largerOf(largerOf(-along, along - length), zero);
        farSquares = largerOf(farSquares, length == 0 ? x * x + y * y : across * across + beyond * beyond);
        if (!cHasTurns)
            continue;
        const TwoDoubles wayX = next.x - TwoDoubles{before.x, next.x[0]},
                         wayY = next.y - TwoDoubles{before.y, next.y[0]};
        const TwoDoubles own = rootOf(wayX * wayX + wayY * wayY);
        const TwoDoubles turnX = wayX / own - u.x, turnY = wayY / own - u.y;
        // What is no number, without a length, is the smaller one.
        turnSquares = largerOf(turnX * turnX + turnY * turnY, turnSquares);
        before = {next.x[1], next.y[1]};
    }
    const auto least = [](TwoDoubles v) { return static_cast<std::int32_t>(std::min(v[0], v[1])); };
    const auto most = [](TwoDoubles v) { return static_cast<std::int32_t>(std::max(v[0], v[1])); };
    double deviation = 0, turn = length > 0 || !cHasTurns ? 0 : 2;
    if (n > 1)
    {
        deviation = std::sqrt(std::max(farSquares[0], farSquares[1]));
        turn = std::max(turn, std::sqrt(std::max(turnSquares[0], turnSquares[1])));
    }
    EdgeNode& node = shape.nodes[number];
    node.box = {least(lowX), least(lowY), most(highX), most(highY)};
    node.next = static_cast<std::int32_t>(shape.nodes.size());
    node.first = first;
    node.last = last;
    node.setForm(true, deviation, turn);
}

// The same of a node from its parts: they deviate from their own chords, and those from the whole one.
template <ElementKind Kind>
void setForm(ShapeGeometry& shape, std::size_t number)
{
    constexpr bool cHasTurns = Kind == ElementKind::Line;
    using Vector = td::Point<double>;
    const auto at = [pPoints = shape.points.data()](std::int32_t i)
    {
        const GridPoint p = cHasTurns ? withoutMark(pPoints[i]) : pPoints[i];
        return Vector(p.x, p.y);
    };
    EdgeNode& node = shape.nodes[number];
    const Vector from = at(node.first), to = at(node.last), way(to.x - from.x, to.y - from.y);
    const double length = lengthOf(way.x, way.y);
    const Vector u = length > 0 ? Vector(way.x / length, way.y / length) : Vector(0, 0);
    constexpr double cMostTurn = EdgeNode::cSharpest;
    double deviation = 0, turn = length > 0 || !cHasTurns ? 0 : 2, farBefore = 0;
    for (std::size_t i = number + 1; i < shape.nodes.size(); i = static_cast<std::size_t>(shape.nodes[i].next))
    {
        const EdgeNode& part = shape.nodes[i];
        const Vector a = at(part.first), b = at(part.last);
        const double along = (b.x - from.x) * u.x + (b.y - from.y) * u.y;
        const double across = (b.x - from.x) * u.y - (b.y - from.y) * u.x;
        const double beyond = std::max({-along, along - length, 0.0});
        // With no length, across is 0 and so is along.
        const double far = length == 0   ? lengthOf(b.x - from.x, b.y - from.y)
                           : beyond == 0 ? std::abs(across)
                                         : lengthOf(across, beyond);
        deviation = std::max(deviation, std::max(far, farBefore) + double(part.getDeviation()));
        farBefore = far;
        if (!cHasTurns || turn > cMostTurn)
            continue; // it is told as no more
        const double own = lengthOf(b.x - a.x, b.y - a.y);
        if (own > 0)
            turn = std::max(turn, lengthOf((b.x - a.x) / own - u.x, (b.y - a.y) / own - u.y) + double(part.getTurn()));
    }
    node.setForm(false, deviation, turn);
}

} // namespace

void ShapeGeometry::clear()
{
    points.clear();
    nodes.clear();
    elements.clear();
    longElements.clear();
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

// With its element, unless it is the root, whose parent is itself.
std::size_t ShapeBuilder::addNode(ShapeGeometry& shape, std::size_t parent)
{
    constexpr unsigned int cBits = Element::cWayBits;
    const std::size_t number = shape.nodes.size(), way = number - parent;
    shape.nodes.emplace_back();
    _parents.push_back(static_cast<std::uint32_t>(parent));
    if (way >> cBits == 0 && number >> (32 - cBits) == 0)
    {
        if (way != 0)
            addElement(shape, ElementKind::Node, way | number << cBits);
    }
    else
        shape.elements.push_back(addLong(shape, ElementKind::Node,
                                         {static_cast<std::uint32_t>(number), static_cast<std::uint32_t>(parent), 0}));
    return number;
}

template <ElementKind Kind>
void ShapeBuilder::addLeaf(ShapeGeometry& shape, std::int32_t first, std::int32_t last, std::size_t number)
{
    setLeaf<Kind>(shape, number, first, last);
    auto what = static_cast<std::uint32_t>(number << Element::cLineBits);
    if constexpr (Kind == ElementKind::Edge)
    {
        std::fill(_leaves.begin() + first, _leaves.begin() + last + 1, static_cast<std::uint32_t>(number));
        const auto n = static_cast<std::size_t>(last - first), nBefore = shape.elements.size();
        shape.elements.resize(nBefore + n);
        for (Element& element : std::span(shape.elements).subspan(nBefore))
            element = {bitsOf(Kind), what++};
    }
    else
        for (std::int32_t i = first; i < last; ++i, ++what)
        {
            addElement(shape, Kind, what);
            if (!_tips.empty() && std::binary_search(_tips.begin(), _tips.end(), static_cast<std::uint32_t>(i)))
                addElement(shape, ElementKind::Tip, what);
        }
}

// With the elements of its lines.
template <ElementKind Kind>
void ShapeBuilder::addChain(ShapeGeometry& shape, std::int32_t first, std::int32_t last, std::size_t parent)
{
    const std::size_t number = addNode(shape, parent);
    const std::int32_t n = last - first;
    if (n <= cLeaf)
    {
        addLeaf<Kind>(shape, first, last, number);
        return;
    }
    std::array<std::int32_t, 4> box = cNothing;
    const std::int32_t part = ((n + cParts - 1) / cParts + cLeaf - 1) / cLeaf * cLeaf;
    for (std::int32_t begin = first; begin < last; begin += part)
    {
        const std::size_t child = shape.nodes.size();
        addChain<Kind>(shape, begin, std::min(begin + part, last), number);
        widen(box, shape.nodes[child].box);
    }
    shape.nodes[number] = {box, static_cast<std::int32_t>(shape.nodes.size()), first, last, 0};
    setForm<Kind>(shape, number);
}

template <ElementKind Kind>
void ShapeBuilder::addRings(ShapeGeometry& shape, std::size_t first, std::size_t last, std::size_t parent)
{
    if (last - first == 1)
    {
        addChain<Kind>(shape, _rings[first].first, _rings[first].last, parent);
        return;
    }
    const std::size_t number = addNode(shape, parent);
    std::array<std::int32_t, 4> box = cNothing;
    const std::size_t part = (last - first + cParts - 1) / cParts;
    for (std::size_t begin = first; begin < last; begin += part)
    {
        const std::size_t child = shape.nodes.size();
        addRings<Kind>(shape, begin, std::min(begin + part, last), number);
        widen(box, shape.nodes[child].box);
    }
    const std::int32_t point = _rings[first].first;
    shape.nodes[number] = {box, static_cast<std::int32_t>(shape.nodes.size()), point, point, 0};
    shape.nodes[number].setForm(false, 1e30, EdgeNode::cSharpest);
}

// Those that are near each other are to be in one node.
void ShapeBuilder::sortRings(const ShapeGeometry& shape)
{
    const auto middle = [](std::int32_t low, std::int32_t high)
    { return static_cast<std::uint32_t>(low / 2 + high / 2) + 0x80000000U; };
    for (Ring& ring : _rings)
    {
        std::array<std::int32_t, 4> box = cNothing;
        for (std::int32_t i = ring.first; i <= ring.last; ++i)
        {
            const GridPoint p = withoutMark(shape.points[static_cast<std::size_t>(i)]);
            widen(box, {p.x, p.y, p.x, p.y});
        }
        ring.place = zOrderOf(middle(box[0], box[2]), middle(box[1], box[3]));
    }
    std::sort(_rings.begin(), _rings.end(), [](const Ring& a, const Ring& b) { return a.place < b.place; });
}

template <ElementKind Kind>
void ShapeBuilder::addTree(ShapeGeometry& shape)
{
    if (_rings.size() > static_cast<std::size_t>(cParts))
        sortRings(shape);
    if (Kind == ElementKind::Edge)
        _leaves.resize(shape.points.size());
    _parents.clear();
    if (!_rings.empty())
        addRings<Kind>(shape, 0, _rings.size(), 0);
}

void ShapeBuilder::makeFill(const Path& path, FillRule rule, double tolerance, ShapeGeometry& shape)
{
    shape.clear();
    _fill.addPath(path, toleranceFor(path, tolerance));
    _fill.tessellate(rule);
    if (_fill.getIndices().empty())
        return;
    linkRings(shape);
    addElement(shape, ElementKind::Box, 0);
    addTree<ElementKind::Edge>(shape);
    addTriangles(shape);
}

// Behind the boundary, which leaves them only pixels that are inside with all they are.
void ShapeBuilder::addTriangles(ShapeGeometry& shape)
{
    constexpr unsigned int cBits = Element::cPointBits;
    const std::vector<std::uint32_t>& indices = _fill.getIndices();
    shape.nTriangles = static_cast<std::uint32_t>(indices.size() / 3);
    const std::size_t nBefore = shape.elements.size();
    shape.elements.resize(nBefore + shape.nTriangles);
    Element* pElement = shape.elements.data() + nBefore;
    for (std::size_t i = 0; i < indices.size(); i += 3)
    {
        const std::uint32_t a = _numbers[indices[i]], b = _numbers[indices[i + 1]], c = _numbers[indices[i + 2]];
        const std::uint32_t low = std::min({_leaves[a], _leaves[b], _leaves[c]}),
                            high = std::max({_leaves[a], _leaves[b], _leaves[c]});
        // A leaf, or what it is part of: without a branch, as one cannot guess which.
        std::uint32_t number = low == high ? low : _parents[low];
        while (high >= static_cast<std::uint32_t>(shape.nodes[number].next))
            number = _parents[number];
        const std::array<std::int32_t, 4>& box = shape.nodes[number].box;
        const auto most = static_cast<std::uint32_t>(std::max(box[2] - box[0], box[3] - box[1]));
        const std::uint32_t size = static_cast<std::uint32_t>(std::bit_width(most)) << cTriangleSizeShift;
        if ((a | b | c) >> cBits == 0)
            *pElement++ = {bitsOf(ElementKind::Triangle), a | b << cBits | c << 2 * cBits | size};
        else
            *pElement++ = addLong(shape, ElementKind::Triangle, {a | size, b, c});
    }
}

// Joins the boundary's edges end to end: which ones, where several meet, makes no difference to what they enclose.
void ShapeBuilder::linkRings(ShapeGeometry& shape)
{
    static constexpr std::uint32_t cNone = UINT32_MAX;
    const std::span<const GridPoint> vertices = _fill.getVertices();
    const std::vector<FillSweep::BoundaryEdge>& edges = _fill.getBoundary();
    const auto n = static_cast<std::uint32_t>(vertices.size());
    // Where one edge begins at each vertex, as in most fills.
    _next.assign(n, cNone);
    bool areAlone = true;
    GridPoint low{INT32_MAX, INT32_MAX}, high{INT32_MIN, INT32_MIN};
    for (const FillSweep::BoundaryEdge& edge : edges)
    {
        areAlone = std::exchange(_next[edge.from], edge.to) == cNone && areAlone;
        const GridPoint p = vertices[edge.from];
        low = {std::min(low.x, p.x), std::min(low.y, p.y)};
        high = {std::max(high.x, p.x), std::max(high.y, p.y)};
    }
    const td::Point<double> gridOrigin = _fill.getOrigin();
    shape.step = _fill.getStep();
    const double inverse = 1 / shape.step;
    // A number of the grid, so that all differences are whole.
    const auto middle = [&](double at, std::int32_t least, std::int32_t most) {
        return std::nearbyint(((at + shape.step * least) / 2 + (at + shape.step * most) / 2) / shape.step) * shape.step;
    };
    shape.origin = {middle(gridOrigin.x, low.x, high.x), middle(gridOrigin.y, low.y, high.y)};
    const GridPoint shift = toGrid(shape.origin, gridOrigin, inverse);

    _rings.clear();
    // No ring has less than two edges, and each has its first point once more.
    shape.points.resize(edges.size() + edges.size() / 2);
    GridPoint* pPoint = shape.points.data();
    // _numbers: the first point that each vertex became.
    if (areAlone)
    {
        _numbers.resize(n);
        const auto next = [this](std::uint32_t at, std::uint32_t number)
        {
            _numbers[at] = number;
            return std::exchange(_next[at], cNone);
        };
        for (std::uint32_t vertex = 0; vertex < n; ++vertex)
            if (_next[vertex] != cNone)
                pPoint = linkRing(vertex, shift, shape, pPoint, next);
    }
    else
    {
        _numbers.assign(n, cNone);
        _starts.assign(n + std::size_t(1), 0);
        for (const FillSweep::BoundaryEdge& edge : edges)
            ++_starts[edge.from + 1];
        for (std::size_t i = 1; i < _starts.size(); ++i)
            _starts[i] += _starts[i - 1];
        _next.resize(edges.size());
        _ends.assign(_starts.begin(), _starts.end() - 1);
        for (const FillSweep::BoundaryEdge& edge : edges)
            _next[_ends[edge.from]++] = edge.to;
        // From here on the edges of each vertex that are left end there.
        const auto next = [this](std::uint32_t at, std::uint32_t number)
        {
            _numbers[at] = std::min(_numbers[at], number);
            return _next[--_ends[at]];
        };
        for (std::uint32_t vertex = 0; vertex < n; ++vertex)
            while (_ends[vertex] > _starts[vertex])
                pPoint = linkRing(vertex, shift, shape, pPoint, next);
    }
    shape.points.resize(static_cast<std::size_t>(pPoint - shape.points.data()));
}

// @param next  takes a vertex and the number of its point @return behind the ring's points
template <typename Next>
GridPoint* ShapeBuilder::linkRing(std::uint32_t vertex, GridPoint shift, const ShapeGeometry& shape, GridPoint* pPoint,
                                  Next next)
{
    const GridPoint* const pVertices = _fill.getVertices().data();
    const auto first = static_cast<std::int32_t>(pPoint - shape.points.data());
    std::int32_t number = first;
    std::uint32_t at = vertex;
    do
    {
        pPoint->x = pVertices[at].x - shift.x;
        pPoint->y = pVertices[at].y - shift.y;
        ++pPoint;
        at = next(at, static_cast<std::uint32_t>(number++));
    } while (at != vertex);
    *pPoint++ = shape.points[static_cast<std::size_t>(first)];
    _rings.push_back({first, number, 0});
    return pPoint;
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
    const Extent extent(_lines.points);
    const td::Point<double> low = extent.getLow(), high = extent.getHigh();
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
    addElement(shape, ElementKind::Box, 0);
    const double inverse = 1 / shape.step;
    const bool areThereCurves = path.hasCurves();
    for (const Polylines::Line& line : _lines.lines)
    {
        _areWithinCurves.clear();
        _line.resize(line.count);
        std::size_t n = 0;
        for (std::size_t i = line.first; i < line.first + line.count; ++i)
            if (extent.isWhole() || Extent::isUsable(_lines.points[i]))
                if (const GridPoint g = toGrid(_lines.points[i], shape.origin, inverse); n == 0 || _line[n - 1] != g)
                {
                    _line[n++] = g;
                    if (areThereCurves)
                        _areWithinCurves.push_back(_lines.areWithinCurves[i]);
                }
        _line.resize(n);
        addLine(line, stroke, shape);
    }
    finishStroke(stroke, shape);
}

void ShapeBuilder::remakeStroke(const Stroke& stroke, ShapeGeometry& shape)
{
    _rings.clear();
    for (const EdgeNode& node : shape.nodes)
        if (node.isLeaf() && !_rings.empty() && _rings.back().last == node.first)
            _rings.back().last = node.last;
        else if (node.isLeaf())
            _rings.push_back({node.first, node.last, 0});
    std::sort(_rings.begin(), _rings.end(), [](const Ring& a, const Ring& b) { return a.first < b.first; });
    std::vector<GridPoint> points;
    points.swap(shape.points);
    shape.clear();
    points.swap(shape.points);
    _tips.clear();
    if (_rings.empty())
        return;
    addElement(shape, ElementKind::Box, 0);
    for (const Ring& ring : _rings)
    {
        // Of what is within curves those corners are different that were round, and are so with any stroke.
        _areWithinCurves.clear();
        for (std::int32_t i = ring.first; i < ring.last; ++i)
        {
            GridPoint& p = shape.points[static_cast<std::size_t>(i)];
            _areWithinCurves.push_back(isMarkedRound(p));
            p = withoutMark(p);
        }
        addCorners(static_cast<std::uint32_t>(ring.first), static_cast<std::uint32_t>(ring.last), stroke, shape);
    }
    finishStroke(stroke, shape);
}

void ShapeBuilder::finishStroke(const Stroke& stroke, ShapeGeometry& shape)
{
    addTree<ElementKind::Line>(shape);
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
    _rings.push_back({static_cast<std::int32_t>(first), static_cast<std::int32_t>(last), 0});
    addCorners(first, last, stroke, shape);
}

void ShapeBuilder::addCorners(std::uint32_t first, std::uint32_t last, const Stroke& stroke, ShapeGeometry& shape)
{
    std::vector<std::uint32_t>& rounds = _numbers;
    rounds.clear();
    const bool isMiter = stroke.join == Join::Miter;
    const double limit = std::max(stroke.miterLimit, 1.0);
    // A curve has no corners: where it turns as sharply as this, the brush turns.
    constexpr double cRound = 0.9975;
    // Less far, the quads of its lines cover a mitre.
    constexpr double cTip = 0.7;
    // Squares of the cosines of half the turns: above which nothing is to be done but to find the least.
    const double most = _areWithinCurves.empty() ? cTip : cRound;
    const double sharp = std::max(most * most, 1 / (limit * limit)) * 1.0001;
    TwoDoubles least{1, 1};
    const GridPoint* const pPoints = shape.points.data();
    for (std::uint32_t i = first; i < last; i += 2)
    {
        const TwoPoints from(pPoints[i - 1], pPoints[i]), at(pPoints[i], pPoints[i + 1]),
            to(pPoints[i + 1], pPoints[i + 2]);
        const TwoDoubles inX = at.x - from.x, inY = at.y - from.y, outX = to.x - at.x, outY = to.y - at.y;
        const TwoDoubles squares = (inX * inX + inY * inY) * (outX * outX + outY * outY);
        const TwoDoubles both = (1 + (inX * outX + inY * outY) / rootOf(squares)) / 2;
        if (both[0] >= sharp && both[1] >= sharp)
        {
            least = smallerOf(both, least);
            continue;
        }
        for (std::uint32_t k = 0; k < std::min(last - i, 2U); ++k)
        {
            if (squares[k] == 0)
                continue;
            const double cosine = std::sqrt(std::max(both[k], 0.0));
            if (!_areWithinCurves.empty() && _areWithinCurves[i + k - first] && cosine < cRound)
            {
                rounds.push_back(i + k);
                continue;
            }
            if (!isMiter || 1 > limit * cosine * 1.000001)
                continue;
            least[0] = std::min(least[0], std::max(both[k], 0.0));
            if (cosine < cTip)
                _tips.push_back(i + k);
        }
    }
    // A mitre ends 1 / cos(half the turn) halves of the width from its corner.
    if (isMiter)
        shape.reach = std::max(shape.reach, static_cast<float>(1 / std::sqrt(std::min(least[0], least[1]))));
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
