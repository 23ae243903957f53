#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace gui::draw
{

/// A name of four characters, as OpenType gives them to features ("liga"), axes ("wght") and tables.
struct FontTag
{
    std::uint32_t value = 0; ///< the first character in the highest byte

    constexpr FontTag() = default;
    /// @param text  four characters: `FontTag("smcp")`, and "smcp" wherever a tag is taken
    constexpr FontTag(const char (&text)[5])
    {
        for (std::size_t i = 0; i < 4; ++i)
            value = value << 8 | static_cast<unsigned char>(text[i]);
    }
    /// As HarfBuzz and FreeType have it.
    static constexpr FontTag of(std::uint32_t value)
    {
        FontTag tag;
        tag.value = value;
        return tag;
    }

    /// The four characters.
    std::string toText() const
    {
        return {char(value >> 24), char(value >> 16 & 255U), char(value >> 8 & 255U), char(value & 255U)};
    }

    constexpr bool operator==(const FontTag&) const = default;
};

/// An OpenType feature, switched on or off: `{"smcp"}` for small capitals, `{"liga", 0}` for no ligatures.
struct FontFeature
{
    FontTag tag;
    std::uint32_t value = 1; ///< 0 for off; which one, where a feature has alternatives

    constexpr bool operator==(const FontFeature&) const = default;
};

/// A place on an axis of a variable font: `{"wght", 650}`.
struct FontVariation
{
    FontTag axis;
    double value = 0; ///< in the axis' own units; held between its ends

    constexpr bool operator==(const FontVariation&) const = default;
};

} // namespace gui::draw
