#include "PreparedMeshImpl.h"

#include <algorithm>

namespace gui::draw
{

PreparedMesh::~PreparedMesh() = default;

PreparedMesh::PreparedMesh(PreparedMesh&& other) noexcept = default;

PreparedMesh& PreparedMesh::operator=(PreparedMesh&& other) noexcept = default;

PreparedMesh::PreparedMesh(const Mesh& mesh)
    : _pImpl(std::make_unique<Impl>())
{
    _pImpl->fault = mesh.findFault();
    if (!_pImpl->fault.empty())
        return;
    std::vector<ModelPart>& parts = _pImpl->parts;
    if (mesh.parts.empty())
        parts.push_back({.material = mesh.material});
    for (const Mesh::Part& part : mesh.parts)
        parts.push_back({.material = part.material, .tag = part.tag});
    std::vector<std::uint32_t> ranks;
    ranks.reserve(parts.size());
    for (ModelPart& part : parts)
        ranks.push_back(part.texture = _pImpl->images.take(part.material.texture));
    // Those of one texture behind each other, each by itself.
    std::vector<std::uint32_t> order(parts.size());
    for (std::uint32_t i = 0; i < order.size(); ++i)
        order[i] = i;
    std::stable_sort(order.begin(), order.end(), [&](std::uint32_t a, std::uint32_t b) { return ranks[a] < ranks[b]; });
    for (std::uint32_t i = 0; i < order.size(); ++i)
        ranks[order[i]] = i;
    _pImpl->data = ModelData::make(mesh, ranks);
}

const std::string& PreparedMesh::getFault() const
{
    static const std::string s_none;
    return _pImpl ? _pImpl->fault : s_none;
}

Box3 PreparedMesh::getBounds() const { return _pImpl ? _pImpl->data.bounds : Box3(); }

std::size_t PreparedMesh::getNumberOfTriangles() const { return _pImpl ? _pImpl->data.getNumberOfTriangles() : 0; }

} // namespace gui::draw
