#pragma once

#include "TableBytes.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace gui::draw
{

/// How much numbers of a font's table differ from what stands there, at a place on the font's axes: an item variation
/// store, with a map to it where there is one.
class VariationDeltas
{
public:
    static constexpr std::uint32_t cNone = 0xffffffff; // the index of what never differs

    /// @param map, store  where they are in the table; 0 for none
    /// @param coordinates  normalised, -1 to 1, not owned
    VariationDeltas(const TableBytes& table, std::size_t map, std::size_t store, std::span<const float> coordinates);

    /// In the number's own unit; 0 where there is none.
    double of(std::uint32_t index);
    /// How much work was done so far, in additions or so.
    std::size_t getCost() const { return _cost; }

private:
    std::uint32_t mapped(std::uint32_t index) const;
    double shareOf(std::size_t region);

    TableBytes _table;
    std::size_t _map, _store, _regions;
    std::span<const float> _coordinates;
    std::vector<std::optional<double>> _shares; // of regions
    std::size_t _cost = 0;
};

} // namespace gui::draw
