#include "SphereLoops.h"

#include "../simd/BestLoops.h"
#include "../simd/Lanes.h"

// Several vertices at a time. Compiled once for any machine and once for AVX2.

namespace gui::gl
{

namespace
{

// As many vertices as there are lanes, from column j on. The last one writes eight floats, however many it has.
inline void addVertices(const SphereRow& row, std::size_t j, float* pTo)
{
    const Floats x = row.xy * load(row.pCos + j), y = row.xy * load(row.pSin + j), z = all(row.z);
    const Floats u = load(row.pU + j), v = all(row.v);
    Block first{x, y, z, u};
    Block second{v, v, u, v};
    if (row.hasNormals)
    {
        const Floats length = squareRoot(x * x + y * y + z * z);
        // A vertex in the middle has none.
        const Floats scale = length > 0 ? 1.0f / length : Floats{};
        first[3] = x * scale;
        second[0] = y * scale;
        second[1] = z * scale;
    }
    transpose(first);
    transpose(second);
    for (std::size_t k = 0; k < cLanes; ++k)
        storeRecords(pTo + k * row.nFloats, first, second, k);
}

void addRow(const SphereRow& row, float* pTo, const float* pEnd)
{
    for (std::size_t j = 0; j < row.nColumns; j += cLanes, pTo += cLanes * row.nFloats)
    {
        constexpr std::size_t cFloats = 8 * cLanes;
        if (static_cast<std::size_t>(pEnd - pTo) >= cFloats) [[likely]]
        {
            addVertices(row, j, pTo);
            continue;
        }
        float last[cFloats];
        addVertices(row, j, last);
        const std::size_t n = row.nColumns - j;
        __builtin_memcpy(pTo, last, (n < cLanes ? n : cLanes) * row.nFloats * sizeof(float));
    }
}

} // namespace

#ifdef __AVX2__

const SphereLoops cSphereLoopsAVX2{addRow};

#else

const SphereLoops cSphereLoops{addRow};

const SphereLoops& sphereLoops() { return bestLoops<SphereLoops, cSphereLoops, cSphereLoopsAVX2>(); }

#endif

} // namespace gui::gl
