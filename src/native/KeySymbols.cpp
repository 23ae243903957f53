#include <gui/gl/port/KeySymbols.h>

#include <xkbcommon/xkbcommon.h>

#include <array>
#include <utility>

namespace gui::gl
{

namespace
{

// X11's dead keys and their accents.
constexpr std::array<std::pair<std::uint32_t, unsigned short>, 15> cDeadKeys{{
    {XKB_KEY_dead_grave, 0x60},
    {XKB_KEY_dead_acute, 0xB4},
    {XKB_KEY_dead_circumflex, 0x5E},
    {XKB_KEY_dead_tilde, 0x7E},
    {XKB_KEY_dead_macron, 0xAF},
    {XKB_KEY_dead_breve, 0x2D8},
    {XKB_KEY_dead_abovedot, 0x2D9},
    {XKB_KEY_dead_diaeresis, 0xA8},
    {XKB_KEY_dead_abovering, 0xB0},
    {XKB_KEY_dead_doubleacute, 0x2DD},
    {XKB_KEY_dead_caron, 0x2C7},
    {XKB_KEY_dead_cedilla, 0xB8},
    {XKB_KEY_dead_ogonek, 0x2DB},
    {XKB_KEY_dead_iota, 0x37A},
    {XKB_KEY_dead_stroke, 0x2F},
}};

} // namespace

unsigned short toCharacter(std::uint32_t symbol)
{
    for (const auto& [deadKey, accent] : cDeadKeys)
        if (symbol == deadKey)
            return accent;
    constexpr std::uint32_t cLastControl = 0x1F;
    constexpr std::uint32_t cDelete = 0x7F;
    constexpr std::uint32_t cFirstInTwoUnits = 0x10000;
    const std::uint32_t character = xkb_keysym_to_utf32(symbol);
    if (character <= cLastControl || character == cDelete)
        return 0;
    return static_cast<unsigned short>(character < cFirstInTwoUnits ? character
                                                                    : 0xD800 + ((character - cFirstInTwoUnits) >> 10));
}

} // namespace gui::gl
