#pragma once

#include <cstddef>

namespace gui::gl
{

/// Sine of a turn up to which two segments count as parallel. Where their edges meet has then lost four of its seven
/// digits, while the edge itself is off by less than a ten-thousandth of the width.
inline constexpr float cParallelSine = 1e-4f;

/// The loops that a thick line's time goes into, for a machine's vectors: they do what getMiddlePointOutlineVector and
/// the rules of Triang2D::triangulateLine say for one corner, with many at a time and to the bit.
///
/// A pair is four floats: x and y of the vertex on the left, x and y of the one on the right.
struct BandLoops
{
    static constexpr std::size_t cMaxCorners = 128;
    /// Loops go on to a multiple of this or of half of it: so many more points are read, pairs and indices written.
    static constexpr std::size_t cSlack = 8;

    /// Takes those of n points that differ from the point before.
    /// @param pPoints  x and y of each point; those of the point before the first stand before them
    /// @param x, y     room for n
    /// @return how many they are
    std::size_t (*takePoints)(const float* pPoints, std::size_t n, float* x, float* y);

    /// Makes the pairs of n corners, one of each or two where the corner is cut off or the line turns back.
    /// @param x, y    the points: the one before the first corner, the n corners, the one after the last; and the slack
    /// @param n       at most cMaxCorners
    /// @param pPairs  room for 2 * (n + cSlack) pairs
    /// @return the number of pairs
    std::size_t (*addCorners)(const float* x, const float* y, std::size_t n, float width, float* pPairs);

    /// Makes the two triangles between each of n + 1 pairs and the next, as six indices that turn left.
    /// @param firstIndex  the number of the first pair's left vertex
    /// @param pIndices    room for 6 * (n + cSlack) indices
    void (*addQuads)(const float* pPairs, std::size_t n, unsigned int firstIndex, unsigned int* pIndices);
};

extern const BandLoops cBandLoops, cBandLoopsAVX2;

/// The best for this machine.
const BandLoops& bandLoops();

} // namespace gui::gl
