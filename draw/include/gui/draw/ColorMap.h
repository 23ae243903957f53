#pragma once

#include <td/Color.h>
#include <td/Export.h>

#include <array>
#include <cstddef>
#include <span>

namespace gui::draw
{

/// Colours for numbers: 256 of them, from the lowest number to the highest. A value.
///
///     Series::scatter(x, y).colorBy(depth, ColorMap::viridis());
///
/// The first two are as even to the eye in grey as in colour, and to those who tell fewer colours apart; turbo tells
/// more steps apart; the diverging one has its middle in the middle.
class GUIGL_API ColorMap
{
public:
    static constexpr std::size_t cSize = 256; ///< colours

    static const ColorMap&
    viridis(); ///< violet, green, yellow: S. van der Walt and N. Smith, as M. Zucker's polynomials
    static const ColorMap& cividis();  ///< blue, grey, yellow: J. Nuñez, C. Anderton, R. Renslow, PLOS ONE 2018
    static const ColorMap& turbo();    ///< a rainbow without false edges: A. Mikhailov's polynomials, 2019
    static const ColorMap& coolWarm(); ///< blue, white, red: K. Moreland, Diverging Color Maps, 2009
    static const ColorMap& grey();     ///< black to white

    /// Colours at even distances, mixed in between; of one, everywhere the same; of none, grey.
    explicit ColorMap(std::span<const td::Color> colors);

    /// @param share  0 for the first colour, 1 for the last; beyond as there. NaN is transparent
    td::Color getColor(double share) const;
    const std::array<td::Color, cSize>& getColors() const { return _colors; } ///< in their order

    bool operator==(const ColorMap&) const = default; ///< whether all colours are equal

private:
    ColorMap() = default;
    template <typename Function>
    static ColorMap fromFunction(const Function& function);

    std::array<td::Color, cSize> _colors;
};

} // namespace gui::draw
