#include <gui/draw/TriangleIndex.h>

#include "PrimitiveTree.h"
#include "RayReach.h"
#include "RayTriangle.h"
#include "ScreenRegion.h"
#include "TreeBuilder.h"

#include <vo/Log.h>

#include <glm/geometric.hpp>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <numeric>
#include <utility>

namespace gui::draw
{

namespace
{

// Products of three such numbers are finite still.
constexpr double cLargest = 1e100;

template <typename Vector>
glm::dvec3 usableOf(const Vector& vertex)
{
    const glm::dvec3 p(vertex);
    const bool isUsable = std::abs(p.x) <= cLargest && std::abs(p.y) <= cLargest && std::abs(p.z) <= cLargest;
    return isUsable ? p : glm::dvec3(std::numeric_limits<double>::quiet_NaN());
}

// What is not a number leaves them as they are.
void widen(Box3& bounds, const glm::dvec3& p)
{
    bounds.min = {std::min(bounds.min.x, p.x), std::min(bounds.min.y, p.y), std::min(bounds.min.z, p.z)};
    bounds.max = {std::max(bounds.max.x, p.x), std::max(bounds.max.y, p.y), std::max(bounds.max.z, p.z)};
}

bool isUsable(const Ray& ray)
{
    const double length = glm::length(ray.direction);
    return !std::isnan(usableOf(ray.origin).x) && length >= 1 / cLargest && length <= cLargest;
}

} // namespace

struct TriangleIndex::Impl
{
    template <typename Vector>
    bool set(Kind newKind, std::span<const Vector> vertices, std::span<const std::uint32_t> indices, Build build);
    template <typename Vector>
    bool move(std::span<const Vector> vertices);
    void build(Build when);
    void endBuilding();

    /// Calls leaf(first, end) for what the ray may meet; it returns up to which distance the others matter.
    template <bool hasReach, typename Leaf>
    void search(const Ray& ray, const Reach& reach, double maxDistance, const Leaf& leaf) const;
    /// Calls found(i, meeting) for all that the ray meets; it returns what leaf does.
    template <typename Found>
    void meet(const Ray& ray, const Reach& reach, double maxDistance, const Found& found) const;
    Hit hitOf(std::size_t i, const RayTriangle::Meeting& meeting) const;
    Hit hitOf(std::size_t i, const RayReach::Meeting& meeting) const;

    struct Selection;

    Kind kind = Kind::Triangles;
    Primitives primitives;
    PrimitiveTree tree;
    Box3 bounds;
    std::size_t nVertices = 0;
    bool isBuilt = true;
    std::unique_ptr<TreeBuilder> pBuilder;
};

template <typename Vector>
bool TriangleIndex::Impl::set(Kind newKind, std::span<const Vector> vertices, std::span<const std::uint32_t> indices,
                              Build when)
{
    const std::size_t nCorners = newKind == Kind::Triangles ? 3 : newKind == Kind::Lines ? 2 : 1;
    const char* name = newKind == Kind::Triangles ? "triangles" : newKind == Kind::Lines ? "lines" : "points";
    const std::size_t n = newKind == Kind::Points ? vertices.size() : indices.size() / nCorners;
    if (indices.size() % nCorners != 0)
    {
        vo::dbgLog("Error! TriangleIndex: %zu indices are no %s", indices.size(), name);
        return false;
    }
    if (n >= std::size_t(1) << 31 || vertices.size() >= std::size_t(1) << 32)
    {
        vo::dbgLog("Error! TriangleIndex: %zu %s are too many", n, name);
        return false;
    }
    const auto isOut = [&](std::uint32_t index) { return index >= vertices.size(); };
    if (const auto out = std::find_if(indices.begin(), indices.end(), isOut); out != indices.end())
    {
        vo::dbgLog("Error! TriangleIndex: index %u, at %zu, of %zu vertices", *out,
                   static_cast<std::size_t>(out - indices.begin()), vertices.size());
        return false;
    }
    Primitives given;
    given.nCorners = nCorners;
    given.vertices.resize(vertices.size());
    std::transform(vertices.begin(), vertices.end(), given.vertices.begin(), usableOf<Vector>);
    given.corners.resize(n * nCorners);
    if (newKind == Kind::Points)
        std::iota(given.corners.begin(), given.corners.end(), 0U);
    else
        std::copy(indices.begin(), indices.end(), given.corners.begin());
    pBuilder.reset();
    kind = newKind;
    primitives = std::move(given);
    tree = {};
    nVertices = vertices.size();
    build(when);
    return true;
}

void TriangleIndex::Impl::build(Build when)
{
    bounds = {};
    std::vector<std::uint8_t> isCorner(primitives.vertices.size());
    for (const std::uint32_t corner : primitives.corners)
        isCorner[corner] = 1;
    for (std::size_t i = 0; i < isCorner.size(); ++i)
        if (isCorner[i] != 0)
            widen(bounds, primitives.vertices[i]);
    isBuilt = false;
    pBuilder = std::make_unique<TreeBuilder>(primitives, bounds);
    if (when == Build::InPieces)
        return;
    while (!pBuilder->step())
        ;
    endBuilding();
}

void TriangleIndex::Impl::endBuilding()
{
    pBuilder->take(tree, primitives);
    pBuilder.reset();
    isBuilt = true;
}

template <typename Vector>
bool TriangleIndex::Impl::move(std::span<const Vector> vertices)
{
    if (vertices.size() != nVertices)
    {
        vo::dbgLog("Error! TriangleIndex::move: %zu vertices, not %zu", vertices.size(), nVertices);
        return false;
    }
    LargeVector<glm::dvec3>& own = primitives.vertices;
    if (primitives.originals.empty())
        std::transform(vertices.begin(), vertices.end(), own.begin(), usableOf<Vector>);
    else
        std::transform(primitives.originals.begin(), primitives.originals.end(), own.begin(),
                       [&](std::uint32_t original) { return usableOf(vertices[original]); });
    bool isFitting = isBuilt;
    for (std::size_t i = tree.nInTree; i < primitives.size() && isFitting; ++i)
        isFitting = !primitives.isUsable(i);
    if (!isFitting)
    {
        // Also when there are some for which the tree has no place.
        const Build when = isBuilt ? Build::Now : Build::InPieces;
        build(when);
        return true;
    }
    bounds = {};
    for (const glm::dvec3& vertex : own)
        widen(bounds, vertex);
    tree.setFrame(bounds);
    for (std::size_t i = tree.nodes.size(); i-- > 0;)
        tree.fitNode(primitives, i);
    return true;
}

template <bool hasReach, typename Leaf>
void TriangleIndex::Impl::search(const Ray& ray, const Reach& reach, double maxDistance, const Leaf& leaf) const
{
    if (!isUsable(ray) || !(maxDistance >= 0))
        return;
    if (!isBuilt)
    {
        leaf(0, primitives.size());
        return;
    }
    const PrimitiveTree::Search s(tree, ray, reach.atOrigin, reach.perDistance);
    tree.search<hasReach>(s, s.limitOf(maxDistance),
                          [&](std::size_t first, std::size_t count, float& limit)
                          { limit = std::min(limit, s.limitOf(leaf(first, first + count))); });
}

template <typename Found>
void TriangleIndex::Impl::meet(const Ray& ray, const Reach& reach, double maxDistance, const Found& found) const
{
    double limit = maxDistance;
    if (kind == Kind::Triangles)
    {
        const RayTriangle test(ray);
        RayTriangle::Meeting meeting;
        search<false>(ray, {}, maxDistance,
                      [&](std::size_t first, std::size_t end)
                      {
                          for (std::size_t i = first; i < end; ++i)
                              if (test.meet(primitives.corner(i, 0), primitives.corner(i, 1), primitives.corner(i, 2),
                                            limit, meeting))
                                  limit = found(i, meeting);
                          return limit;
                      });
        return;
    }
    // What is below 0 or not a number reaches nothing beside the ray.
    const auto usable = [](double d) { return d > 0 ? std::min(d, cLargest) : 0; };
    const Reach usableReach(usable(reach.atOrigin), usable(reach.perDistance));
    const RayReach test(ray, usableReach.atOrigin, usableReach.perDistance, maxDistance);
    RayReach::Meeting meeting;
    search<true>(ray, usableReach, maxDistance,
                 [&](std::size_t first, std::size_t end)
                 {
                     for (std::size_t i = first; i < end; ++i)
                         if (kind == Kind::Lines ? test.meet(primitives.corner(i, 0), primitives.corner(i, 1), meeting)
                                                 : test.meet(primitives.corner(i, 0), meeting))
                             limit = found(i, meeting);
                     return limit;
                 });
}

TriangleIndex::Hit TriangleIndex::Impl::hitOf(std::size_t i, const RayTriangle::Meeting& meeting) const
{
    const glm::dvec3& w = meeting.weights;
    const glm::dvec3 point =
        w.x * primitives.corner(i, 0) + w.y * primitives.corner(i, 1) + w.z * primitives.corner(i, 2);
    return {primitives.number(i), meeting.distance, point, w, meeting.isFront, 0};
}

TriangleIndex::Hit TriangleIndex::Impl::hitOf(std::size_t i, const RayReach::Meeting& meeting) const
{
    const glm::dvec3 weights(1 - meeting.weight, meeting.weight, 0), from = primitives.corner(i, 0);
    const glm::dvec3 point = kind == Kind::Lines ? from + meeting.weight * (primitives.corner(i, 1) - from) : from;
    return {primitives.number(i), meeting.distance, point, weights, true, meeting.aside};
}

/// What is within a region of the screen.
struct TriangleIndex::Impl::Selection
{
    void addAll(const PrimitiveTree::Node& node, std::size_t i)
    {
        if (node.count[i] != 0)
            for (std::size_t p = node.first[i], end = p + node.count[i]; p < end; ++p)
                add(p);
        else
            for (std::size_t k = 0; k < 4; ++k)
                if (const PrimitiveTree::Node& below = index.tree.nodes[node.first[i]]; !below.isNone(k))
                    addAll(below, k);
    }

    void add(std::size_t i)
    {
        const Primitives& p = index.primitives;
        if (p.isUsable(i) && (p.nCorners < 3 || glm::cross(p.corner(i, 1) - p.corner(i, 0),
                                                           p.corner(i, 2) - p.corner(i, 0)) != glm::dvec3(0)))
            isTaken[p.number(i)] = true;
    }

    void addSome(std::size_t first, std::size_t end, ScreenRegion::Edges edges)
    {
        const Primitives& p = index.primitives;
        for (std::size_t i = first; i < end; ++i)
        {
            std::array<glm::dvec3, 3> corners;
            for (std::size_t k = 0; k < p.nCorners; ++k)
                corners[k] = p.corner(i, k);
            if (p.isUsable(i) && region.has({corners.data(), p.nCorners}, isWhole, edges))
                add(i);
        }
    }

    void addWithin(const PrimitiveTree::Node& node, ScreenRegion::Edges edges)
    {
        std::vector<std::uint32_t> touching;
        for (std::size_t i = 0; i < 4; ++i)
        {
            if (node.isNone(i) || !(node.bounds[0][i] <= node.bounds[3][i]))
                continue;
            Box3 box;
            for (int axis = 0; axis < 3; ++axis)
            {
                box.min[axis] = double(node.bounds[axis][i]) - cBoxSlack;
                box.max[axis] = double(node.bounds[axis + 3][i]) + cBoxSlack;
            }
            box = {index.tree.toModel(box.min), index.tree.toModel(box.max)};
            touching.clear();
            const ScreenRegion::Place place = region.find(box, edges, touching);
            if (place == ScreenRegion::Place::Inside)
                addAll(node, i);
            else if (place == ScreenRegion::Place::Either && node.count[i] != 0)
                addSome(node.first[i], std::size_t(node.first[i]) + node.count[i], touching);
            else if (place == ScreenRegion::Place::Either)
                addWithin(index.tree.nodes[node.first[i]], touching);
        }
    }

    std::vector<std::uint32_t> find()
    {
        std::vector<std::uint32_t> found;
        if (!region.isValid())
            return found;
        isTaken.resize(index.primitives.size());
        if (!index.isBuilt)
            addSome(0, index.primitives.size(), region.getEdges());
        else if (!index.tree.nodes.empty())
            addWithin(index.tree.nodes[0], region.getEdges());
        for (std::size_t i = 0; i < isTaken.size(); ++i)
            if (isTaken[i])
                found.push_back(static_cast<std::uint32_t>(i));
        return found;
    }

    const Impl& index;
    const ScreenRegion region;
    const bool isWhole;
    std::vector<bool> isTaken{};
};

TriangleIndex::Reach::Reach(const Eye& eye, const Ray& ray, double points)
    : atOrigin(points * eye.getSizeAt(ray.origin))
    , perDistance(points * (eye.getSizeAt(ray.at(1)) - eye.getSizeAt(ray.origin)))
{
}

TriangleIndex::TriangleIndex()
    : _pImpl(std::make_unique<Impl>())
{
}

TriangleIndex::~TriangleIndex() = default;

TriangleIndex::TriangleIndex(TriangleIndex&& other) noexcept
    : TriangleIndex()
{
    std::swap(_pImpl, other._pImpl);
}

TriangleIndex& TriangleIndex::operator=(TriangleIndex&& other) noexcept
{
    TriangleIndex moved(std::move(other));
    std::swap(_pImpl, moved._pImpl);
    return *this;
}

bool TriangleIndex::setTriangles(std::span<const glm::vec3> vertices, std::span<const std::uint32_t> indices,
                                 Build build)
{
    return _pImpl->set(Kind::Triangles, vertices, indices, build);
}

bool TriangleIndex::setTriangles(std::span<const glm::dvec3> vertices, std::span<const std::uint32_t> indices,
                                 Build build)
{
    return _pImpl->set(Kind::Triangles, vertices, indices, build);
}

bool TriangleIndex::setLines(std::span<const glm::vec3> vertices, std::span<const std::uint32_t> indices, Build build)
{
    return _pImpl->set(Kind::Lines, vertices, indices, build);
}

bool TriangleIndex::setLines(std::span<const glm::dvec3> vertices, std::span<const std::uint32_t> indices, Build build)
{
    return _pImpl->set(Kind::Lines, vertices, indices, build);
}

bool TriangleIndex::setPoints(std::span<const glm::vec3> vertices, Build build)
{
    return _pImpl->set(Kind::Points, vertices, {}, build);
}

bool TriangleIndex::setPoints(std::span<const glm::dvec3> vertices, Build build)
{
    return _pImpl->set(Kind::Points, vertices, {}, build);
}

void TriangleIndex::clear() { _pImpl = std::make_unique<Impl>(); }

bool TriangleIndex::buildSome(double milliseconds)
{
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::duration<double, std::milli>(milliseconds);
    while (!_pImpl->isBuilt)
    {
        if (_pImpl->pBuilder->step())
            _pImpl->endBuilding();
        else if (!(Clock::now() < end))
            break;
    }
    return _pImpl->isBuilt;
}

bool TriangleIndex::isBuilt() const { return _pImpl->isBuilt; }

double TriangleIndex::getProgress() const { return _pImpl->isBuilt ? 1 : _pImpl->pBuilder->getProgress(); }

bool TriangleIndex::move(std::span<const glm::vec3> vertices) { return _pImpl->move(vertices); }

bool TriangleIndex::move(std::span<const glm::dvec3> vertices) { return _pImpl->move(vertices); }

TriangleIndex::Kind TriangleIndex::getKind() const { return _pImpl->kind; }

std::size_t TriangleIndex::size() const { return _pImpl->primitives.size(); }

std::size_t TriangleIndex::getNumberOfVertices() const { return _pImpl->nVertices; }

const Box3& TriangleIndex::getBounds() const { return _pImpl->bounds; }

std::size_t TriangleIndex::getMemory() const
{
    const auto bytes = [](const auto& list) { return list.capacity() * sizeof list[0]; };
    const Primitives& p = _pImpl->primitives;
    return sizeof(Impl) + bytes(p.vertices) + bytes(p.corners) + bytes(p.numbers) + bytes(p.originals) +
           _pImpl->tree.nodes.size() * sizeof(PrimitiveTree::Node);
}

std::optional<TriangleIndex::Hit> TriangleIndex::getNearest(const Ray& ray, const Reach& reach,
                                                            double maxDistance) const
{
    std::optional<Hit> best;
    const Impl& impl = *_pImpl;
    double distance = maxDistance;
    const auto take = [&](std::size_t i, const auto& meeting)
    {
        if (!best || meeting.distance < distance ||
            (meeting.distance == distance && impl.primitives.number(i) < best->index))
        {
            best = impl.hitOf(i, meeting);
            distance = meeting.distance;
        }
        return distance;
    };
    impl.meet(ray, reach, maxDistance, take);
    return best;
}

std::optional<TriangleIndex::Hit> TriangleIndex::getClosest(const Ray& ray, const Reach& reach,
                                                            double maxDistance) const
{
    std::optional<Hit> best;
    const Impl& impl = *_pImpl;
    const auto take = [&](std::size_t i, const auto& meeting)
    {
        const Hit hit = impl.hitOf(i, meeting);
        const auto rank = [](const Hit& h) { return std::tie(h.aside, h.distance, h.index); };
        if (!best || rank(hit) < rank(*best))
            best = hit;
        // Triangles are never beside it.
        return impl.kind == Kind::Triangles ? best->distance : maxDistance;
    };
    impl.meet(ray, reach, maxDistance, take);
    return best;
}

std::vector<TriangleIndex::Hit> TriangleIndex::getAll(const Ray& ray, const Reach& reach, double maxDistance) const
{
    std::vector<Hit> hits;
    const auto take = [&](std::size_t i, const auto& meeting)
    {
        hits.push_back(_pImpl->hitOf(i, meeting));
        return maxDistance;
    };
    _pImpl->meet(ray, reach, maxDistance, take);
    std::sort(hits.begin(), hits.end(),
              [](const Hit& a, const Hit& b) { return std::tie(a.distance, a.index) < std::tie(b.distance, b.index); });
    return hits;
}

std::vector<std::uint32_t> TriangleIndex::getWithin(const Eye& eye, const td::RectNormalized<double>& rect,
                                                    Take take) const
{
    const td::Point<double> corners[] = {
        {rect.left, rect.top}, {rect.right, rect.top}, {rect.right, rect.bottom}, {rect.left, rect.bottom}};
    return getWithin(eye, corners, take);
}

std::vector<std::uint32_t> TriangleIndex::getWithin(const Eye& eye, std::span<const td::Point<double>> lasso, Take take,
                                                    FillRule rule) const
{
    return Impl::Selection{*_pImpl, ScreenRegion(eye, lasso, rule), take == Take::Whole}.find();
}

} // namespace gui::draw
