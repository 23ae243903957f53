#pragma once

#include <gui/gl/Triang2D.h>

#include <array>
#include <cstddef>
#include <span>

namespace gui::gl
{

/// Collects the vertices and indices of a band and hands them on in large pieces.
class BandOutput
{
public:
    /// @param base  the number of the first vertex
    explicit BandOutput(std::size_t base)
        : _base(static_cast<unsigned int>(base))
    {
    }
    virtual ~BandOutput() = default;
    BandOutput(const BandOutput&) = delete;
    BandOutput& operator=(const BandOutput&) = delete;

    /// The next two vertices, on the left and on the right, joined to the two before.
    void addPair(const td::Point<float>& left, const td::Point<float>& right);

    /// Joins the last pair to the first.
    void close();

    /// To be called at the end.
    void flush();

    unsigned int getNoOfVertices() const { return _nVertices; }
    unsigned int getNoOfIndices() const { return _nIndices; }

private:
    struct Pair
    {
        td::Point<float> left, right;
        unsigned int index; // of left; right follows
    };
    struct Vertex
    {
        const td::Point<float>& point;
        unsigned int index;
    };

    virtual void append(std::span<const td::Point<float>> vertices, std::span<const unsigned int> indices) = 0;

    void addTriangle(const Vertex& a, const Vertex& b, const Vertex& c);

    static constexpr std::size_t cPairs = 64; // at a time; two triangles each, and two that close the ring
    std::array<td::Point<float>, 2 * cPairs> _vertices;
    std::array<unsigned int, 6 * (cPairs + 1)> _indices;
    Pair _first{};
    Pair _last{};
    const unsigned int _base;
    unsigned int _nVertices = 0;
    unsigned int _nIndices = 0;
    unsigned int _nWaitingVertices = 0;
    unsigned int _nWaitingIndices = 0;
};

/// The pairs of a line, from its first point to its last. See Triang2D::triangulateLine.
/// @param points  n points of which neighbours may be equal
/// @return false, with nothing added, when there are fewer than two distinct points or the width is 0 or NaN
bool addBand(BandOutput& band, std::span<const td::Point<float>> points, float width, bool closed);

} // namespace gui::gl
