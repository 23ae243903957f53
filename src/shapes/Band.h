#pragma once

#include "BandLoops.h"

#include <td/Point.h>

#include <array>
#include <cstddef>
#include <span>

namespace gui::gl
{

/// The triangles along a line: takes its points, and gives vertices and indices away in large pieces. See
/// Triang2D::triangulateLine.
class Band
{
public:
    using Point = td::Point<float>;

    /// @param base  the number of the first vertex
    Band(const BandLoops& loops, std::size_t base)
        : _loops(loops)
        , _base(static_cast<unsigned int>(base))
    {
    }
    virtual ~Band() = default;
    Band(const Band&) = delete;
    Band& operator=(const Band&) = delete;

    /// The whole of one line, once.
    /// @param points  of which neighbours may be equal
    /// @return false, with nothing given away, when there are fewer than two distinct points or the width is 0 or NaN
    bool add(std::span<const Point> points, float width, bool closed);

    unsigned int getNoOfVertices() const { return 2 * _nPairs; }
    unsigned int getNoOfIndices() const { return _nIndices; }

private:
    virtual void append(std::span<const Point> vertices, std::span<const unsigned int> indices) = 0;

    void addPoint(const Point& point);
    void addDistinct(std::span<const Point> points);
    void addCorners();
    void addPair(const Point& point, const Point& offset);
    void flush(bool closes);

    static constexpr std::size_t cCorners = BandLoops::cMaxCorners;

    const BandLoops& _loops;
    const unsigned int _base;
    float _width = 0;
    std::size_t _nPoints = 0;  // of x and y
    std::size_t _nWaiting = 0; // of pairs that are not given away
    unsigned int _nPairs = 0;  // given away
    unsigned int _nIndices = 0;
    std::array<float, 4> _firstPair;

    // Points of which all but the first and the last become corners.
    float _x[cCorners + 2 + BandLoops::cSlack];
    float _y[cCorners + 2 + BandLoops::cSlack];
    // The last pair that was given away, then those of the line's start, of the corners and of the line's end.
    float _pairs[4 * (1 + 1 + 2 * (cCorners + BandLoops::cSlack) + 1)];
    unsigned int _indices[6 * (1 + 2 * cCorners + 1 + BandLoops::cSlack)];
};

} // namespace gui::gl
