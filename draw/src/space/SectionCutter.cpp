#include "SectionCutter.h"

#include <glm/common.hpp>
#include <glm/geometric.hpp>

#include <algorithm>
#include <bit>
#include <cmath>
#include <iterator>
#include <utility>

namespace gui::draw
{

namespace
{

// Of the length of a part's open chains, how far ends may be from each other to be joined.
constexpr double cLargestGap = 0.01;

bool isLess(const glm::dvec3& a, const glm::dvec3& b)
{
    return a.x != b.x ? a.x < b.x : a.y != b.y ? a.y < b.y : a.z < b.z;
}

// The same whichever way round a triangle has the side.
glm::dvec3 crossingOf(glm::dvec3 a, double da, glm::dvec3 b, double db)
{
    if (isLess(b, a))
    {
        std::swap(a, b);
        std::swap(da, db);
    }
    return a + da / (da - db) * (b - a);
}

// Whether some of a cell's box is on either side, or in the plane.
bool crosses(const SectionPlane& plane, const ModelCell& cell)
{
    const double middle = glm::dot(glm::dvec3(cell.center) - plane.base, plane.normal);
    const double reach = glm::dot(glm::dvec3(cell.halfSize), glm::abs(plane.normal));
    return std::abs(middle) <= reach * (1 + 1e-6);
}

} // namespace

SectionPlane SectionPlane::make(const glm::dvec3& point, const glm::dvec3& normal)
{
    SectionPlane plane;
    plane.normal = normal;
    plane.base = glm::dot(point, normal) * normal;
    const glm::dvec3 upwards = std::abs(normal.z) < 0.9 ? glm::dvec3(0, 0, 1) : glm::dvec3(0, 1, 0);
    plane.u = glm::normalize(glm::cross(upwards, normal));
    plane.v = glm::cross(normal, plane.u);
    return plane;
}

glm::dvec3 SectionCutter::Source::getPosition(std::uint32_t vertex) const
{
    const float* p = &vertices[vertex * floatsPerVertex];
    const glm::dvec3 position(p[0], p[1], p[2]);
    return restAt > 0 ? position + glm::dvec3(p[restAt], p[restAt + 1], p[restAt + 2]) : position;
}

std::size_t SectionCutter::BitsHash::operator()(const std::array<std::uint64_t, 2>& bits) const
{
    const std::uint64_t mixed = (bits[0] ^ bits[1] >> 32) * 0x9e3779b97f4a7c15U ^ bits[1] * 0xc2b2ae3d27d4eb4fU;
    return static_cast<std::size_t>(mixed ^ mixed >> 29);
}

std::uint32_t SectionCutter::numberOf(const glm::dvec2& point)
{
    // 0 is one number with either sign.
    const std::array bits{std::bit_cast<std::uint64_t>(point.x + 0.0), std::bit_cast<std::uint64_t>(point.y + 0.0)};
    const auto [place, isNew] = _numbers.try_emplace(bits, static_cast<std::uint32_t>(_points.size()));
    if (isNew)
        _points.push_back(point);
    return place->second;
}

void SectionCutter::cutTriangle(const Source& source, const SectionPlane& plane, std::uint32_t part, std::size_t index)
{
    std::array<glm::dvec3, 3> corners;
    std::array<double, 3> distances{};
    for (std::size_t i = 0; i < 3; ++i)
    {
        corners[i] = source.getPosition(source.indices[index + i]);
        distances[i] = glm::dot(corners[i] - plane.base, plane.normal);
    }
    Segment segment{part, 0, 0};
    int nCrossings = 0;
    for (std::size_t i = 0; i < 3; ++i)
    {
        const std::size_t next = (i + 1) % 3;
        if ((distances[i] > 0) == (distances[next] > 0))
            continue;
        const glm::dvec3 place = crossingOf(corners[i], distances[i], corners[next], distances[next]) - plane.base;
        const std::uint32_t number = numberOf({glm::dot(place, plane.u), glm::dot(place, plane.v)});
        (distances[i] > 0 ? segment.to : segment.from) = number;
        ++nCrossings;
    }
    if (nCrossings == 2 && segment.from != segment.to)
        _segments.push_back(segment);
}

const std::vector<SectionCutter::Face>& SectionCutter::cut(const Source& source, const SectionPlane& plane)
{
    _segments.clear();
    _points.clear();
    _numbers.clear();
    _faces.clear();
    for (const ModelCell& cell : source.cells)
        if (crosses(plane, cell))
            for (std::size_t i = cell.first; i < cell.first + cell.count; i += 3)
                cutTriangle(source, plane, cell.part, i);
    std::stable_sort(_segments.begin(), _segments.end(),
                     [](const Segment& a, const Segment& b) { return a.part < b.part; });
    for (std::size_t begin = 0, end; begin < _segments.size(); begin = end)
    {
        for (end = begin + 1; end < _segments.size() && _segments[end].part == _segments[begin].part;)
            ++end;
        fill(std::span(_segments).subspan(begin, end - begin));
    }
    return _faces;
}

// Chains of segments end to end: first those that begin where fewer end, then rings.
// @param isDirected  whether segments are followed from their beginning to their end only
void SectionCutter::link(std::span<const Segment> segments, bool isDirected)
{
    struct Way
    {
        std::uint32_t from, to;
        std::size_t segment;
    };
    _chains.clear();
    std::vector<Way> ways;
    for (std::size_t i = 0; i < segments.size(); ++i)
    {
        ways.push_back({segments[i].from, segments[i].to, i});
        if (!isDirected)
            ways.push_back({segments[i].to, segments[i].from, i});
    }
    std::stable_sort(ways.begin(), ways.end(), [](const Way& a, const Way& b) { return a.from < b.from; });
    std::vector<bool> isUsed(segments.size());
    // A point's ways follow each other; its unused ones are from here on.
    std::unordered_map<std::uint32_t, std::size_t> nexts;
    std::unordered_map<std::uint32_t, int> excess;
    for (std::size_t i = 0; i < ways.size(); ++i)
    {
        nexts.try_emplace(ways[i].from, i);
        ++excess[ways[i].from];
        if (isDirected)
            --excess[ways[i].to];
    }
    const auto follow = [&](std::size_t first)
    {
        Chain chain;
        std::uint32_t at = ways[first].from;
        chain.points.push_back(at);
        while (true)
        {
            const auto found = nexts.find(at);
            if (found == nexts.end())
                break;
            std::size_t& next = found->second;
            while (next < ways.size() && ways[next].from == at && isUsed[ways[next].segment])
                ++next;
            if (next == ways.size() || ways[next].from != at)
                break;
            isUsed[ways[next].segment] = true;
            at = ways[next].to;
            chain.points.push_back(at);
        }
        chain.isRing = at == chain.points.front();
        if (chain.points.size() > 1)
            _chains.push_back(std::move(chain));
    };
    const auto isEnd = [&](std::uint32_t point) { return isDirected ? excess[point] > 0 : excess[point] % 2 != 0; };
    for (const bool isOpen : {true, false})
        for (std::size_t i = 0; i < ways.size(); ++i)
            if (!isUsed[ways[i].segment] && (!isOpen || isEnd(ways[i].from)))
                follow(i);
}

double SectionCutter::getLength(const Chain& chain) const
{
    double length = 0;
    for (std::size_t i = 1; i < chain.points.size(); ++i)
        length += glm::distance(_points[chain.points[i - 1]], _points[chain.points[i]]);
    return length;
}

// Goes on from each open chain's end with the one that begins nearest to it, until that is itself.
void SectionCutter::join()
{
    const auto middle = std::stable_partition(_chains.begin(), _chains.end(), [](const Chain& c) { return c.isRing; });
    std::vector<Chain> open(std::make_move_iterator(middle), std::make_move_iterator(_chains.end()));
    _chains.erase(middle, _chains.end());
    const auto beginOf = [this](const Chain& chain) { return _points[chain.points.front()]; };
    const auto isLefter = [&](const Chain& a, const Chain& b) { return beginOf(a).x < beginOf(b).x; };
    std::stable_sort(open.begin(), open.end(), isLefter);
    double gap = 0;
    for (const Chain& chain : open)
        gap += cLargestGap * getLength(chain);
    std::vector<bool> isUsed(open.size());
    for (std::size_t first = 0; first < open.size(); ++first)
    {
        if (isUsed[first])
            continue;
        Chain whole = open[first];
        for (std::size_t next = first; !whole.isRing && next < open.size();)
        {
            isUsed[next] = true;
            const glm::dvec2 end = _points[whole.points.back()];
            double least = gap;
            next = open.size();
            auto at = std::lower_bound(open.begin(), open.end(), end.x - gap,
                                       [&](const Chain& chain, double x) { return beginOf(chain).x < x; });
            for (; at != open.end() && beginOf(*at).x <= end.x + gap; ++at)
            {
                const auto i = static_cast<std::size_t>(at - open.begin());
                const double distance = glm::distance(beginOf(*at), end);
                if (distance > least || (isUsed[i] && i != first))
                    continue;
                least = distance;
                next = i;
            }
            whole.isRing = next == first;
            if (next < open.size() && next != first)
                whole.points.insert(whole.points.end(), open[next].points.begin(), open[next].points.end());
        }
        _chains.push_back(std::move(whole));
    }
}

// @param segments  of one part
void SectionCutter::fill(std::span<const Segment> segments)
{
    Face& face = _faces.emplace_back();
    face.part = segments.front().part;
    const auto areRings = [this]
    { return std::all_of(_chains.begin(), _chains.end(), [](const Chain& chain) { return chain.isRing; }); };
    link(segments, true);
    FillRule rule = FillRule::NonZero;
    if (!areRings())
    {
        link(segments, false);
        rule = FillRule::EvenOdd;
        if (!areRings())
        {
            link(segments, true);
            join();
            rule = FillRule::NonZero;
        }
    }
    std::vector<td::Point<double>> ring;
    for (const Chain& chain : _chains)
    {
        if (chain.isRing)
        {
            ring.clear();
            for (const std::uint32_t point : chain.points)
                ring.emplace_back(_points[point].x, _points[point].y);
            _tessellator.addRing(ring);
            continue;
        }
        for (std::size_t i = 1; i < chain.points.size(); ++i)
            face.lines.push_back({_points[chain.points[i - 1]], _points[chain.points[i]]});
    }
    _tessellator.tessellate(rule);
    for (const td::Point<double>& corner : _tessellator.getVertices())
        face.corners.emplace_back(corner.x, corner.y);
    face.indices = _tessellator.getIndices();
    for (const FillTessellator::Edge& edge : _tessellator.getBoundary())
        face.lines.push_back({face.corners[edge.from], face.corners[edge.to]});
}

std::vector<std::array<glm::dvec2, 2>> SectionCutter::intersect(const Face& face, const glm::dvec3& line)
{
    const glm::dvec2 across(line), along(-line.y, line.x);
    std::vector<std::array<glm::dvec2, 2>> pieces;
    const auto distanceOf = [&](const glm::dvec2& p) { return glm::dot(across, p) + line.z; };
    for (std::size_t i = 0; i < face.indices.size(); i += 3)
    {
        std::array<glm::dvec2, 2> piece;
        std::size_t nCrossings = 0;
        for (std::size_t k = 0; k < 3; ++k)
        {
            const glm::dvec2 &a = face.corners[face.indices[i + k]], &b = face.corners[face.indices[i + (k + 1) % 3]];
            const double da = distanceOf(a), db = distanceOf(b);
            if ((da > 0) != (db > 0) && nCrossings < 2)
                piece[nCrossings++] = a + da / (da - db) * (b - a);
        }
        if (nCrossings < 2)
            continue;
        if (glm::dot(along, piece[0]) > glm::dot(along, piece[1]))
            std::swap(piece[0], piece[1]);
        pieces.push_back(piece);
    }
    // Those of triangles beside each other are one.
    std::sort(pieces.begin(), pieces.end(),
              [&](const auto& a, const auto& b) { return glm::dot(along, a[0]) < glm::dot(along, b[0]); });
    std::vector<std::array<glm::dvec2, 2>> whole;
    double size = 0;
    for (const auto& piece : pieces)
        size = std::max({size, glm::length(piece[0]), glm::length(piece[1])});
    for (const auto& piece : pieces)
    {
        const double gap = whole.empty() ? 1 : glm::dot(along, piece[0] - whole.back()[1]) / glm::length(along);
        if (whole.empty() || gap > 1e-9 * size)
            whole.push_back(piece);
        else if (glm::dot(along, piece[1] - whole.back()[1]) > 0)
            whole.back()[1] = piece[1];
    }
    return whole;
}

} // namespace gui::draw
