#pragma once

#include "ColorID.h"
#include "ColorTable.h"
#include "Export.h"
#include "Types.h"

#include <concepts>
#include <cstddef>
#include <string_view>

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
///
/// A colour of the table and a text become one without a word, so whoever takes a td::Color takes these too:
/// @code
/// gui::gl::Context::clear("#204060");
/// pCommand->setColor(td::ColorID::SteelBlue);
/// constexpr td::Color sea = td::Color::fromRGB(0x204060);
/// constexpr td::Color leaf = td::Color::fromHSL(120, 0.6f, 0.35f);
/// @endcode
class Color
{
public:
    constexpr Color() = default;
    /// @param rgba  a word as GLRGBA packs it; see fromRGB for one as people write it
    constexpr explicit Color(unsigned int rgba)
        : _rgba(rgba)
    {
    }
    /// Components of 0 to 255, packed with GLRGBA.
    constexpr Color(unsigned int r, unsigned int g, unsigned int b, unsigned int a)
        : _rgba(GLRGBA(r, g, b, a))
    {
    }
    /// The table's colour, opaque; NoColor, and any value beyond it, is transparent black.
    constexpr Color(ColorID id)
    {
        if (std::size_t(id) < cColorTable.size())
            *this = fromRGB(cColorTable[std::size_t(id)].rgb);
    }
    /// "#rrggbb", "#rrggbbaa", "#rgb" or "#rgba", in digits of either case. Another text does not compile where the
    /// colour is a constant; elsewhere it writes "Error! td::Color cannot read a colour in 'TEXT'" (its first 40
    /// characters), asserts, and gives transparent black. For texts from outside, where a bad one is no programming
    /// error, there is read.
    /// @param text  a literal, a pointer to characters that end in 0 (null counts as an empty text), or whatever else
    ///              becomes a std::string_view
    // A template, as a function of a pointer would make td::Color(0) ambiguous.
    template <std::convertible_to<std::string_view> Text>
    constexpr Color(const Text& text)
        : Color(fromText(viewOf(text)))
    {
    }

    /// @param rgb    0xRRGGBB, what is above being ignored  @param alpha  0 to 255, its low 8 bits count
    static constexpr Color fromRGB(unsigned int rgb, unsigned int alpha = 255)
    {
        return Color(rgb >> 16 & 255U, rgb >> 8 & 255U, rgb & 255U, alpha & 255U);
    }

    /// A colour by its hue, as CSS has it: the components are rounded to the nearest of 256 steps.
    /// @param hue         in degrees: red 0, green 120, blue 240; any number of turns. One beyond 1e15, or
    ///                    not finite, counts as 0
    /// @param saturation  0 (grey) to 1; these three are brought into their range, and NaN counts as 0
    /// @param lightness   0 (black) to 1 (white); the purest colours are at 0.5
    /// @param alpha       0 (transparent) to 1
    static constexpr Color fromHSL(float hue, float saturation, float lightness, float alpha = 1)
    {
        const double s = inUnit(saturation);
        const double l = inUnit(lightness);
        const double sector = toSector(hue);
        const double reach = s * (l < 1 - l ? l : 1 - l);
        return Color(hslChannel(0, sector, l, reach), hslChannel(8, sector, l, reach), hslChannel(4, sector, l, reach),
                     toByte(inUnit(alpha)));
    }

    /// Reads a text as the constructor does. @return false, with the colour unchanged and nothing said, when it is none
    static constexpr bool read(std::string_view text, Color& color)
    {
        if (text.empty() || text[0] != '#' ||
            (text.size() != 4 && text.size() != 5 && text.size() != 7 && text.size() != 9))
            return false;
        unsigned int value = 0;
        for (const char character : text.substr(1))
        {
            const unsigned int digit = toDigit(character);
            if (digit > 15)
                return false;
            value = value << 4 | digit;
        }
        if (text.size() == 4)
            color = Color((value >> 8) * 17, (value >> 4 & 15U) * 17, (value & 15U) * 17, 255);
        else if (text.size() == 5)
            color = Color((value >> 12) * 17, (value >> 8 & 15U) * 17, (value >> 4 & 15U) * 17, (value & 15U) * 17);
        else if (text.size() == 7)
            color = fromRGB(value);
        else
            color = fromRGB(value >> 8, value);
        return true;
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
    static constexpr std::string_view viewOf(const char* text)
    {
        return text != nullptr ? std::string_view(text) : std::string_view();
    }
    static constexpr std::string_view viewOf(std::string_view text) { return text; }

    static constexpr Color fromText(std::string_view text)
    {
        Color color;
        if (!read(text, color))
            refuse(text);
        return color;
    }
    // No constant can be made where this is called.
    GUIGL_API static void refuse(std::string_view text);

    static constexpr unsigned int toDigit(char c)
    {
        if (c >= '0' && c <= '9')
            return static_cast<unsigned int>(c - '0');
        if (c >= 'a' && c <= 'f')
            return static_cast<unsigned int>(c - 'a') + 10;
        if (c >= 'A' && c <= 'F')
            return static_cast<unsigned int>(c - 'A') + 10;
        return 16;
    }

    static constexpr double inUnit(double value) { return value >= 1 ? 1 : value > 0 ? value : 0; }
    static constexpr unsigned int toByte(double value)
    {
        const double steps = value * 255;
        const auto whole = static_cast<unsigned int>(steps);
        return steps - whole < 0.5 ? whole : whole + 1;
    }

    // 0 to 12, a twelfth of the circle each.
    static constexpr double toSector(double hue)
    {
        constexpr double cTurn = 360;
        constexpr double cFarthest = 1e15;
        if (!(hue > -cFarthest && hue < cFarthest))
            return 0;
        double rest = hue - cTurn * static_cast<double>(static_cast<long long>(hue / cTurn));
        if (rest < 0)
            rest += cTurn;
        return rest / 30;
    }

    // The formula of CSS Color, level 4: n is 0 for red, 8 for green, 4 for blue.
    static constexpr unsigned int hslChannel(int n, double sector, double lightness, double reach)
    {
        double k = sector + n;
        if (k >= 12)
            k -= 12;
        const double low = k - 3 < 9 - k ? k - 3 : 9 - k;
        const double clipped = low > 1 ? 1 : low < -1 ? -1 : low;
        return toByte(lightness - reach * clipped);
    }

    unsigned int _rgba = 0;
};

static_assert(sizeof(Color) == 4);

} // namespace td
