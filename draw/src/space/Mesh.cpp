#include <gui/draw/Mesh.h>

#include <glm/mat3x3.hpp>
#include <glm/matrix.hpp>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <type_traits>

namespace gui::draw
{

namespace
{

constexpr double cLargestNumber = 1e30;
constexpr std::size_t cMostTriangles = 700'000'000; // three indices each are below 2^31, as a draw command takes them
constexpr std::size_t cMostParts = 16'000'000;      // whole numbers that floats have

// Of a vector's components; false for NaN too.
template <class Vector>
bool isInRange(const Vector& v)
{
    for (int i = 0; i < Vector::length(); ++i)
        if (!(std::abs(v[i]) <= static_cast<typename Vector::value_type>(cLargestNumber)))
            return false;
    return true;
}

template <class Vector>
std::string findBadVector(const std::vector<Vector>& vectors, const char* what)
{
    const auto bad = std::find_if_not(vectors.begin(), vectors.end(), isInRange<Vector>);
    if (bad == vectors.end())
        return {};
    return std::string(what) + ' ' + std::to_string(bad - vectors.begin()) + " is not finite, or beyond 1e30";
}

// Where one of two meshes has none.
template <class Vector>
void addVectors(std::vector<Vector>& to, std::size_t nBefore, const std::vector<Vector>& from, std::size_t nAdded)
{
    if (to.empty() && from.empty())
        return;
    to.resize(nBefore);
    // It may be the same one.
    const std::vector<Vector> copy(from.begin(),
                                   from.begin() + static_cast<std::ptrdiff_t>(std::min(from.size(), nAdded)));
    to.insert(to.end(), copy.begin(), copy.end());
    to.resize(nBefore + nAdded);
}

} // namespace

void Mesh::setPositions(std::span<const glm::vec3> floats, const glm::dvec3& origin)
{
    positions.resize(floats.size());
    std::transform(floats.begin(), floats.end(), positions.begin(),
                   [&origin](const glm::vec3& p) { return glm::dvec3(p) + origin; });
}

void Mesh::add(const Mesh& other, const glm::dmat4& placement)
{
    if (&other == this)
        return add(Mesh(other), placement);
    if (parts.empty() && !indices.empty())
        parts.push_back({getNumberOfTriangles(), material});
    if (other.parts.empty())
        parts.push_back({other.getNumberOfTriangles(), other.material});
    else
        parts.insert(parts.end(), other.parts.begin(), other.parts.end());

    const std::size_t nBefore = positions.size();
    const glm::dmat3 linear(placement);
    for (const glm::dvec3& p : other.positions)
        positions.push_back(linear * p + glm::dvec3(placement[3]));
    addVectors(normals, nBefore, other.normals, other.positions.size());
    // Cofactors turn normals as the map turns surfaces, and exist for every map.
    const bool isMirror = glm::determinant(linear) < 0;
    const glm::dmat3 cofactors =
        (isMirror ? -1.0 : 1.0) * glm::dmat3(glm::cross(linear[1], linear[2]), glm::cross(linear[2], linear[0]),
                                             glm::cross(linear[0], linear[1]));
    for (std::size_t i = nBefore; i < normals.size(); ++i)
        normals[i] = glm::vec3(cofactors * glm::dvec3(normals[i]));
    addVectors(textureCoordinates, nBefore, other.textureCoordinates, other.positions.size());
    const std::size_t nIndices = indices.size();
    // One that named no position must not name one of the others.
    constexpr std::uint32_t cNoPosition = std::numeric_limits<std::uint32_t>::max();
    for (const std::uint32_t index : other.indices)
        indices.push_back(index < other.positions.size() ? index + static_cast<std::uint32_t>(nBefore) : cNoPosition);
    for (std::size_t i = nIndices; isMirror && i + 2 < indices.size(); i += 3)
        std::swap(indices[i + 1], indices[i + 2]);
}

void Mesh::add(const Mesh& other, const Material& material_, std::uint64_t tag, const glm::dmat4& placement)
{
    Mesh copy(other);
    copy.parts.assign(1, {copy.getNumberOfTriangles(), material_, tag});
    add(copy, placement);
}

Box3 Mesh::getBounds() const
{
    Box3 box;
    for (const std::uint32_t index : indices)
        if (index < positions.size())
            box.add(positions[index]);
    return box;
}

std::string Mesh::findFault() const
{
    const auto number = [](auto n) { return std::to_string(n); };
    const std::size_t nTriangles = getNumberOfTriangles();
    if (indices.size() % 3 != 0)
        return number(indices.size()) + " indices are not three for each triangle";
    if (!normals.empty() && normals.size() != positions.size())
        return number(normals.size()) + " normals for " + number(positions.size()) + " positions";
    if (!textureCoordinates.empty() && textureCoordinates.size() != positions.size())
        return number(textureCoordinates.size()) + " texture coordinates for " + number(positions.size()) +
               " positions";
    if (nTriangles > cMostTriangles)
        return number(nTriangles) + " triangles are too many";
    if (parts.size() > cMostParts)
        return number(parts.size()) + " parts are too many";
    // A sum of hostile numbers may wrap.
    std::size_t nLeft = nTriangles;
    for (std::size_t i = 0; i < parts.size(); nLeft -= parts[i++].nTriangles)
        if (parts[i].nTriangles > nLeft)
            return "part " + number(i) + " has " + number(parts[i].nTriangles) + " triangles, and there are " +
                   number(nLeft) + " left";
    if (!parts.empty() && nLeft != 0)
        return number(nLeft) + " triangles are in no part";
    for (std::size_t i = 0; i < indices.size(); ++i)
        if (indices[i] >= positions.size())
            return "index " + number(indices[i]) + " of triangle " + number(i / 3) + " names no position: there are " +
                   number(positions.size());
    std::string bad = findBadVector(positions, "position");
    if (bad.empty())
        bad = findBadVector(normals, "normal");
    if (bad.empty())
        bad = findBadVector(textureCoordinates, "texture coordinate");
    for (const double angle : {smoothAngle, edgeAngle})
        if (bad.empty() && !(angle >= 0 && angle <= 180))
            bad = "an angle of " + number(angle) + " degrees";
    return bad;
}

} // namespace gui::draw
