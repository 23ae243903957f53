#include "ModelSection.h"

#include "NearestFloat.h"

#include <glm/geometric.hpp>

#include <algorithm>
#include <utility>

namespace gui::draw
{

namespace
{

struct SplitPoint
{
    glm::vec3 place, rest;
};

SplitPoint splitOf(const glm::dvec3& p)
{
    SplitPoint split{};
    for (int k = 0; k < 3; ++k)
    {
        split.place[k] = nearestFloat(p[k]);
        split.rest[k] = static_cast<float>(p[k] - static_cast<double>(split.place[k]));
    }
    return split;
}

// What of a line between two points is on the faces of two planes at once.
// @return false when nothing is
bool clipCrease(const Clipping& clipping, std::size_t first, std::size_t second, const glm::dvec3& origin,
                std::array<glm::dvec3, 2>& line)
{
    const double side = clipping.getKind() == Clipping::Kind::Cut ? 1 : -1;
    double from = 0, to = 1;
    for (std::size_t i = 0; i < clipping.getNumberOfPlanes(); ++i)
    {
        if (i == first || i == second)
            continue;
        const double a = side * clipping.getPlane(i).getDistance(origin + line[0]);
        const double b = side * clipping.getPlane(i).getDistance(origin + line[1]);
        if (a < 0 && b < 0)
            return false;
        if (a < 0)
            from = std::max(from, a / (a - b));
        else if (b < 0)
            to = std::min(to, a / (a - b));
    }
    line = {line[0] + from * (line[1] - line[0]), line[0] + to * (line[1] - line[0])};
    return from < to;
}

} // namespace

ModelSection::InGL::InGL()
{
    triangles.setKeptForRestore(false);
    lines.setKeptForRestore(false);
}

void ModelSection::addLine(const glm::dvec3& from, const glm::dvec3& to, std::uint32_t part)
{
    const SplitPoint a = splitOf(from), b = splitOf(to);
    _lines.emplace_back(a.place, static_cast<float>(part));
    _lines.emplace_back(b.place, static_cast<float>(part));
    if (!_hasRests)
        return;
    _lines.emplace_back(a.rest, 0);
    _lines.emplace_back(b.rest, 0);
}

void ModelSection::addFace(std::size_t number, const std::vector<SectionCutter::Face>& faces, const Clipping& clipping,
                           const glm::dvec3& origin, std::vector<std::array<glm::dvec3, 2>>& creases,
                           std::vector<std::uint32_t>& parts)
{
    Face& face = _faces[number];
    const SectionPlane& plane = face.plane;
    const std::size_t nTexels = _hasRests ? 4 : 2, floatsPerVertex = _hasRests ? 7 : 4;
    face.lines.first = static_cast<std::uint32_t>(_lines.size() / nTexels);
    for (const SectionCutter::Face& one : faces)
    {
        const auto first = static_cast<std::uint32_t>(_vertices.size() / floatsPerVertex);
        for (const glm::dvec2& corner : one.corners)
        {
            const SplitPoint p = splitOf(plane.at(corner));
            _vertices.insert(_vertices.end(), {p.place.x, p.place.y, p.place.z, static_cast<float>(one.part)});
            if (_hasRests)
                _vertices.insert(_vertices.end(), {p.rest.x, p.rest.y, p.rest.z});
        }
        face.ranges.push_back(
            {one.part, static_cast<std::uint32_t>(_indices.size()), static_cast<std::uint32_t>(one.indices.size())});
        for (const std::uint32_t index : one.indices)
            _indices.push_back(first + index);
        for (const auto& [from, to] : one.lines)
            addLine(plane.at(from), plane.at(to), one.part);
        for (std::size_t other = number + 1; other < _faces.size(); ++other)
        {
            const SectionPlane& second = _faces[other].plane;
            const glm::dvec3 line(glm::dot(plane.u, second.normal), glm::dot(plane.v, second.normal),
                                  glm::dot(plane.base - second.base, second.normal));
            for (const auto& [from, to] : SectionCutter::intersect(one, line))
            {
                std::array<glm::dvec3, 2> crease{plane.at(from), plane.at(to)};
                if (!clipCrease(clipping, number, other, origin, crease))
                    continue;
                creases.push_back(crease);
                parts.push_back(one.part);
            }
        }
    }
    face.lines.count = static_cast<std::uint32_t>(_lines.size() / nTexels) - face.lines.first;
}

void ModelSection::cut(const Clipping& clipping, const SectionCutter::Source& source, const glm::dvec3& origin,
                       double slack, bool hasRests)
{
    if (_isCut && clipping == _clipping)
        return;
    _clipping = clipping;
    _isCut = true;
    _hasRests = hasRests;
    ++_revision;
    _faces.clear();
    _vertices.clear();
    _indices.clear();
    _lines.clear();
    _faces.resize(clipping.getNumberOfPlanes());
    for (std::size_t i = 0; i < _faces.size(); ++i)
    {
        const Clipping::Plane& plane = clipping.getPlane(i);
        _faces[i].plane = SectionPlane::make(plane.point - origin + slack * plane.normal, plane.normal);
    }
    std::vector<std::array<glm::dvec3, 2>> creases;
    std::vector<std::uint32_t> parts;
    for (std::size_t i = 0; i < _faces.size(); ++i)
        addFace(i, _cutter.cut(source, _faces[i].plane), clipping, origin, creases, parts);
    const std::size_t nTexels = hasRests ? 4 : 2;
    _creases.first = static_cast<std::uint32_t>(_lines.size() / nTexels);
    for (std::size_t i = 0; i < creases.size(); ++i)
        addLine(creases[i][0], creases[i][1], parts[i]);
    _creases.count = static_cast<std::uint32_t>(creases.size());
}

bool ModelSection::upload(InGL& gl) const
{
    if (gl.revision == _revision)
        return true;
    gl.triangles.release();
    const std::size_t nVertices = _vertices.size() / (_hasRests ? 7 : 4);
    if (!_indices.empty())
    {
        if (_hasRests)
            gl.triangles.init(0, nVertices, _indices.size(),
                              {gl::DataType::Vec3, gl::DataType::Float, gl::DataType::Vec3});
        else
            gl.triangles.init(0, nVertices, _indices.size(), {gl::DataType::Vec3, gl::DataType::Float});
        gl.triangles.appendVertices(_vertices.data(), nVertices);
        gl.triangles.appendIndices(_indices.data(), _indices.size());
        if (!gl.triangles.commit() || !gl.triangles.isCommitted())
            return false;
    }
    if (!gl.lines.resize(_lines.size()))
        return false;
    gl.lines.write(0, _lines.data(), _lines.size());
    gl.revision = _revision;
    return true;
}

} // namespace gui::draw
