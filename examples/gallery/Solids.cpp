#include "Solids.h"

#include <gui/draw/FillTessellator.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace gallery
{

using gui::draw::Mesh;
using gui::draw::Path;

Mesh extrude(const Path& path, double from, double to)
{
    gui::draw::FillTessellator fill;
    fill.addPath(path, 0.02);
    fill.tessellate(gui::draw::FillRule::EvenOdd);
    const auto n = static_cast<std::uint32_t>(fill.getVertices().size());
    Mesh mesh;
    for (const double z : {from, to})
        for (const td::Point<double>& p : fill.getVertices())
            mesh.positions.emplace_back(p.x, p.y, z);
    const std::vector<std::uint32_t>& caps = fill.getIndices();
    for (std::size_t i = 0; i < caps.size(); i += 3)
        for (const std::uint32_t index :
             {caps[i], caps[i + 2], caps[i + 1], n + caps[i], n + caps[i + 1], n + caps[i + 2]})
            mesh.indices.push_back(index);
    for (const auto& [begin, end] : fill.getBoundary())
        for (const std::uint32_t index : {begin, end, n + end, begin, n + end, n + begin})
            mesh.indices.push_back(index);
    return mesh;
}

Mesh revolve(std::span<const glm::dvec2> profile, int nSectors)
{
    Mesh mesh;
    const auto n = static_cast<std::uint32_t>(profile.size()), all = n * static_cast<std::uint32_t>(nSectors);
    for (int sector = 0; sector < nSectors; ++sector)
    {
        const double angle = 2 * std::numbers::pi * sector / nSectors;
        for (const glm::dvec2& p : profile)
            mesh.positions.emplace_back(p.x * std::cos(angle), p.x * std::sin(angle), p.y);
    }
    for (std::uint32_t first = 0; first < all; first += n)
        for (std::uint32_t i = 0; i + 1 < n; ++i)
        {
            const std::uint32_t here = first + i, there = (first + n) % all + i;
            for (const std::uint32_t index : {here, there, there + 1, here, there + 1, here + 1})
                mesh.indices.push_back(index);
        }
    return mesh;
}

Path toothedWheel(int nTeeth, double module)
{
    constexpr double cPressure = 20 * std::numbers::pi / 180;
    constexpr int cSteps = 6;
    const double pitch = module * nTeeth / 2, base = pitch * std::cos(cPressure);
    const double root = pitch - 1.25 * module, tip = pitch + module, start = std::max(base, root);
    const auto involute = [](double angle) { return std::tan(angle) - angle; };
    // Half of a tooth's width as an angle, at a radius.
    const auto halfAt = [&](double radius) {
        return std::numbers::pi / (2 * nTeeth) + involute(cPressure) -
               involute(std::acos(std::min(base / radius, 1.0)));
    };
    std::vector<Path::Point> ring;
    for (int tooth = 0; tooth < nTeeth; ++tooth)
    {
        const double middle = 2 * std::numbers::pi * tooth / nTeeth;
        const auto add = [&](double radius, double angle)
        { ring.emplace_back(radius * std::cos(middle + angle), radius * std::sin(middle + angle)); };
        add(root, -halfAt(start));
        for (int i = 0; i <= cSteps; ++i)
        {
            const double radius = start + (tip - start) * i / cSteps;
            add(radius, -halfAt(radius));
        }
        for (int i = cSteps; i >= 0; --i)
        {
            const double radius = start + (tip - start) * i / cSteps;
            add(radius, halfAt(radius));
        }
        add(root, halfAt(start));
    }
    return Path().addPolygon(ring);
}

} // namespace gallery
