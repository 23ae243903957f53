#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace gui::gl
{

/// Sorts points along a curve that fills the plane, cell after cell of a grid, so that those near each other in the
/// order are mostly near each other in the plane. The points in a crowded cell get a grid of their own.
class CurveOrder
{
public:
    struct Item
    {
        float x, y;
        unsigned int number; ///< the caller's
        std::uint32_t cell;
    };

    void reserve(std::size_t n)
    {
        _items.reserve(n);
        _sorted.reserve(n);
    }

    /// Empties it and makes room for n points, to be filled in before they are sorted.
    std::span<Item> take(std::size_t n);
    void sort() { sort(0, _items.size()); }

private:
    void sort(std::size_t first, std::size_t last);
    void sortByCell(std::size_t first, std::size_t last);

    std::vector<Item> _items, _sorted;
};

} // namespace gui::gl
