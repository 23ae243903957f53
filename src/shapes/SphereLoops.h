#pragma once

#include <cstddef>

namespace gui::gl
{

/// What is the same for all vertices of one parallel of a sphere, and what is not: see Buffer::addSphere.
struct SphereRow
{
    /// How many more numbers of each column are read.
    static constexpr std::size_t cSlack = 8;

    const float* pCos = nullptr; ///< of each column
    const float* pSin = nullptr;
    const float* pU = nullptr;
    std::size_t nColumns = 0;
    bool hasNormals = false;
    std::size_t nFloats = 0; ///< of a vertex: 3, 3 of the normal, 2 of u and v
    float xy = 0;
    float z = 0;
    float v = 0;
};

/// What a sphere's time goes into, for a machine's vectors.
struct SphereLoops
{
    /// Writes the vertices of a row, and perhaps more behind them, where the next row goes.
    /// @param pEnd  the end of the sphere's vertices; it is not passed
    void (*addRow)(const SphereRow& row, float* pTo, const float* pEnd);
};

extern const SphereLoops cSphereLoops, cSphereLoopsAVX2;

/// The best for this machine.
const SphereLoops& sphereLoops();

} // namespace gui::gl
