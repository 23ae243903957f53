#pragma once

#include <td/Point.h>

#include <cstddef>
#include <vector>

namespace gui::gl
{

/// Finds vertices by their exact coordinates, for points that come in another order: a search of them all for each
/// point would take the square of their number.
///
/// Equal vertices are a group that is entered once into a hash table. It lists its members upwards, and keeps a place
/// in the list that only moves on.
class VertexFinder
{
public:
    static constexpr std::size_t cNone = ~std::size_t(0);

    /// Takes n vertices, fewer than 2^32, in place of others.
    /// @param pCoordinates  x and y of each; they must stay as long as vertices are looked for
    void build(const float* pCoordinates, std::size_t n);

    /// @param begin  at least what it was the last time
    /// @return the first vertex from begin on that equals the point, else the first of all, or cNone
    std::size_t find(const td::Point<float>& point, std::size_t begin);

private:
    static constexpr unsigned int cEnd = ~0U;

    struct Group
    {
        unsigned int first; // cEnd where there is no group
        unsigned int current;
    };

    Group& groupOf(float x, float y);

    const float* _pCoordinates = nullptr;
    std::vector<Group> _groups;       // by hash, or behind; twice as many places are free
    std::vector<unsigned int> _nexts; // of the same group
    unsigned int _shift = 0;          // makes a place of a hash
};

} // namespace gui::gl
