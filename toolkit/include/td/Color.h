#pragma once

#include "Types.h"

namespace td
{

/// Packs four components of 0 to 255 into a word: red in the lowest byte, alpha in the highest. Larger components are
/// not masked and spill into their neighbours.
constexpr unsigned int GLRGBA(unsigned int r, unsigned int g, unsigned int b, unsigned int a)
{
    return r | g << 8 | b << 16 | a << 24;
}

/// The components of a word packed by GLRGBA.
constexpr BYTE GetRColor(unsigned int rgba) { return BYTE(rgba & 255U); }
constexpr BYTE GetGColor(unsigned int rgba) { return BYTE(rgba >> 8 & 255U); }
constexpr BYTE GetBColor(unsigned int rgba) { return BYTE(rgba >> 16 & 255U); }
constexpr BYTE GetAColor(unsigned int rgba) { return BYTE(rgba >> 24); }

/// A colour of 8 bits per component in one word. The default is transparent black, 0.
class Color
{
public:
    constexpr Color() = default;
    /// @param rgba  a word as GLRGBA packs it
    constexpr explicit Color(unsigned int rgba)
        : _rgba(rgba)
    {
    }
    /// Components of 0 to 255, packed with GLRGBA.
    constexpr Color(unsigned int r, unsigned int g, unsigned int b, unsigned int a)
        : _rgba(GLRGBA(r, g, b, a))
    {
    }

    /// The components, 0 to 255.
    constexpr BYTE red() const { return GetRColor(_rgba); }
    constexpr BYTE green() const { return GetGColor(_rgba); }
    constexpr BYTE blue() const { return GetBColor(_rgba); }
    constexpr BYTE alpha() const { return GetAColor(_rgba); }

    /// Changes the alpha alone. @param a  its low 8 bits count
    constexpr void setAlpha(unsigned int a) { _rgba = GLRGBA(red(), green(), blue(), a); }

    /// The packed word, which GL reads as RGBA bytes on a little-endian machine.
    constexpr unsigned int rgba() const { return _rgba; }

    constexpr bool operator==(const Color&) const = default;

private:
    unsigned int _rgba = 0;
};

static_assert(sizeof(Color) == 4);

} // namespace td
