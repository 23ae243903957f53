#pragma once

#include "Projection.h"

#include <common/FlatRing.h>
#include <common/TopoJSON.h>

#include <cstddef>
#include <limits>
#include <string>
#include <vector>

namespace worldmap
{

struct Country
{
    std::string name;  ///< UTF-8
    std::size_t color; ///< below cNoOfColors; no neighbour has the same
};

/// An outline of a country, or of a hole in one, in degrees of longitude (-169 to 191) and latitude.
struct Ring
{
    examples::FlatRing line;
    std::size_t country;
    bool isHole;
    Box box;
    double area; ///< in square degrees
};

/// The countries of the world, their outlines and borders, without any picture of them.
class Countries
{
public:
    static constexpr std::size_t cNone = std::numeric_limits<std::size_t>::max();
    using Line = std::vector<td::Point<double>>;

    /// @return false, after a line in the log, when the program's data cannot be read
    [[nodiscard]] bool load();

    const std::vector<Country>& getCountries() const { return _countries; }

    /// From the largest to the smallest: drawn in this order, each ring covers those it lies in. A country in another
    /// lies on the hole that is there for it. Rings that reach across the maps' edge are there twice, once on each
    /// side.
    const std::vector<Ring>& getRings() const { return _rings; }

    /// The lines between countries. One that is closed ends with its first point.
    const std::vector<Line>& getBorders() const { return _borders; }

    /// @param degrees  longitude (-169 to 191) and latitude  @return the country there, or cNone
    std::size_t find(const td::Point<double>& degrees) const;

private:
    void addRing(const examples::TopoJSON::Ring& points, std::size_t country, bool isHole);

    std::vector<Country> _countries;
    std::vector<Ring> _rings;
    std::vector<Line> _borders;
};

} // namespace worldmap
