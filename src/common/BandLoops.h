#pragma once

#include <cstddef>

namespace gui::gl
{

/// Sine of a turn up to which two segments count as parallel. Where their edges meet has then lost four of its seven
/// digits, while the edge itself is off by less than a ten-thousandth of the width.
inline constexpr float cParallelSine = 1e-4f;

/// The two loops that a thick line's time goes into, for a machine's vectors: they do what getMiddlePointOutlineVector and the
/// rules of Triang2D::triangulateLine say for one corner, with many at a time and to the bit.
///
/// A pair is four floats: x and y of the vertex on the left, x and y of the one on the right.
struct BandLoops
{
    /// How many numbers may be read, and pairs or indices written, past the last that counts.
    static constexpr std::size_t cSlack = 8;
    static constexpr std::size_t cMaxCorners = 128;

    /// Makes the pairs of n corners, one of each or two where the corner is cut off or the line turns back.
    /// @param x, y    the points: the one before the first corner, the n corners, the one after the last; and cSlack more
    /// @param n       at most cMaxCorners
    /// @param pPairs  room for 2 * n pairs and the slack
    /// @return the number of pairs
    std::size_t (*addCorners)(const float* x, const float* y, std::size_t n, float width, float* pPairs);

    /// Makes the two triangles between each of n + 1 pairs and the next, as six indices that turn left.
    /// @param firstIndex  the number of the first pair's left vertex
    /// @param pIndices    room for 6 * n indices and the slack
    void (*addQuads)(const float* pPairs, std::size_t n, unsigned int firstIndex, unsigned int* pIndices);
};

extern const BandLoops cBandLoops;
#ifdef GUIGL_AVX2
extern const BandLoops cBandLoopsAVX2;
#endif

/// The best for this machine.
const BandLoops& bandLoops();

} // namespace gui::gl
