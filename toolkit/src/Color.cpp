#include <gui/Color.h>

#include <array>
#include <cstddef>
#include <cstdint>

namespace gui
{

namespace
{

struct NamedColor
{
    td::ColorID id;
    std::uint32_t rgb; // red << 16 | green << 8 | blue
};

constexpr std::array<NamedColor, 183> cColors{{
    {td::ColorID::AliceBlue, 0xF0F8FF},
    {td::ColorID::AntiqueWhite, 0xFAEBD7},
    {td::ColorID::Aqua, 0x00FFFF},
    {td::ColorID::Aquamarine, 0x7FFFD4},
    {td::ColorID::Azure, 0xF0FFFF},
    {td::ColorID::Beige, 0xF5F5DC},
    {td::ColorID::Bisque, 0xFFE4C4},
    {td::ColorID::Black, 0x000000},
    {td::ColorID::BlanchedAlmond, 0xFFEBCD},
    {td::ColorID::Blue, 0x0000FF},
    {td::ColorID::BlueViolet, 0x8A2BE2},
    {td::ColorID::Brown, 0xA52A2A},
    {td::ColorID::BurlyWood, 0xDEB887},
    {td::ColorID::CadetBlue, 0x5F9EA0},
    {td::ColorID::Chartreuse, 0x7FFF00},
    {td::ColorID::Chocolate, 0xD2691E},
    {td::ColorID::Coral, 0xFF7F50},
    {td::ColorID::CornflowerBlue, 0x6495ED},
    {td::ColorID::Cornsilk, 0xFFF8DC},
    {td::ColorID::Crimson, 0xDC143C},
    {td::ColorID::Cyan, 0x00FFFF},
    {td::ColorID::DarkBlue, 0x00008B},
    {td::ColorID::DarkCyan, 0x008B8B},
    {td::ColorID::DarkGoldenrod, 0xB8860B},
    {td::ColorID::DarkGray, 0xA9A9A9},
    {td::ColorID::DarkGreen, 0x006400},
    {td::ColorID::DarkGrey, 0xA9A9A9},
    {td::ColorID::DarkKhaki, 0xBDB76B},
    {td::ColorID::DarkMagenta, 0x8B008B},
    {td::ColorID::DarkOliveGreen, 0x556B2F},
    {td::ColorID::DarkOrange, 0xFF8C00},
    {td::ColorID::DarkOrchid, 0x9932CC},
    {td::ColorID::DarkRed, 0x8B0000},
    {td::ColorID::DarkSalmon, 0xE9967A},
    {td::ColorID::DarkSeaGreen, 0x8FBC8F},
    {td::ColorID::DarkSlateBlue, 0x483D8B},
    {td::ColorID::DarkSlateGray, 0x2F4F4F},
    {td::ColorID::DarkSlateGrey, 0x2F4F4F},
    {td::ColorID::DarkTurquoise, 0x00CED1},
    {td::ColorID::DarkViolet, 0x9400D3},
    {td::ColorID::DeepPink, 0xFF1493},
    {td::ColorID::DeepSkyBlue, 0x00BFFF},
    {td::ColorID::DimGray, 0x696969},
    {td::ColorID::DimGrey, 0x696969},
    {td::ColorID::DodgerBlue, 0x1E90FF},
    {td::ColorID::FireBrick, 0xB22222},
    {td::ColorID::FloralWhite, 0xFFFAF0},
    {td::ColorID::ForestGreen, 0x228B22},
    {td::ColorID::Fuchsia, 0xFF00FF},
    {td::ColorID::Gainsboro, 0xDCDCDC},
    {td::ColorID::GhostWhite, 0xF8F8FF},
    {td::ColorID::Gold, 0xFFD700},
    {td::ColorID::Goldenrod, 0xDAA520},
    {td::ColorID::Gray, 0x808080},
    {td::ColorID::Green, 0x008000},
    {td::ColorID::GreenYellow, 0xADFF2F},
    {td::ColorID::Grey, 0x808080},
    {td::ColorID::Honeydew, 0xF0FFF0},
    {td::ColorID::HotPink, 0xFF69B4},
    {td::ColorID::IndianRed, 0xCD5C5C},
    {td::ColorID::Indigo, 0x4B0082},
    {td::ColorID::Ivory, 0xFFFFF0},
    {td::ColorID::Khaki, 0xF0E68C},
    {td::ColorID::Lavender, 0xE6E6FA},
    {td::ColorID::LavenderBlush, 0xFFF0F5},
    {td::ColorID::LawnGreen, 0x7CFC00},
    {td::ColorID::LemonChiffon, 0xFFFACD},
    {td::ColorID::LightBlue, 0xADD8E6},
    {td::ColorID::LightCoral, 0xF08080},
    {td::ColorID::LightCyan, 0xE0FFFF},
    {td::ColorID::LightGoldenrodYellow, 0xFAFAD2},
    {td::ColorID::LightGray, 0xD3D3D3},
    {td::ColorID::LightGreen, 0x90EE90},
    {td::ColorID::LightGrey, 0xD3D3D3},
    {td::ColorID::LightPink, 0xFFB6C1},
    {td::ColorID::LightSalmon, 0xFFA07A},
    {td::ColorID::LightSeaGreen, 0x20B2AA},
    {td::ColorID::LightSkyBlue, 0x87CEFA},
    {td::ColorID::LightSlateGray, 0x778899},
    {td::ColorID::LightSlateGrey, 0x778899},
    {td::ColorID::LightSteelBlue, 0xB0C4DE},
    {td::ColorID::LightYellow, 0xFFFFE0},
    {td::ColorID::Lime, 0x00FF00},
    {td::ColorID::LimeGreen, 0x32CD32},
    {td::ColorID::Linen, 0xFAF0E6},
    {td::ColorID::Magenta, 0xFF00FF},
    {td::ColorID::Maroon, 0x800000},
    {td::ColorID::MediumAquamarine, 0x66CDAA},
    {td::ColorID::MediumBlue, 0x0000CD},
    {td::ColorID::MediumOrchid, 0xBA55D3},
    {td::ColorID::MediumPurple, 0x9370DB},
    {td::ColorID::MediumSeaGreen, 0x3CB371},
    {td::ColorID::MediumSlateBlue, 0x7B68EE},
    {td::ColorID::MediumSpringGreen, 0x00FA9A},
    {td::ColorID::MediumTurquoise, 0x48D1CC},
    {td::ColorID::MediumVioletRed, 0xC71585},
    {td::ColorID::MidnightBlue, 0x191970},
    {td::ColorID::MintCream, 0xF5FFFA},
    {td::ColorID::MistyRose, 0xFFE4E1},
    {td::ColorID::Moccasin, 0xFFE4B5},
    {td::ColorID::NavajoWhite, 0xFFDEAD},
    {td::ColorID::Navy, 0x000080},
    {td::ColorID::OldLace, 0xFDF5E6},
    {td::ColorID::Olive, 0x808000},
    {td::ColorID::OliveDrab, 0x6B8E23},
    {td::ColorID::Orange, 0xFFA500},
    {td::ColorID::OrangeRed, 0xFF4500},
    {td::ColorID::Orchid, 0xDA70D6},
    {td::ColorID::PaleGoldenrod, 0xEEE8AA},
    {td::ColorID::PaleGreen, 0x98FB98},
    {td::ColorID::PaleTurquoise, 0xAFEEEE},
    {td::ColorID::PaleVioletRed, 0xDB7093},
    {td::ColorID::PapayaWhip, 0xFFEFD5},
    {td::ColorID::PeachPuff, 0xFFDAB9},
    {td::ColorID::Peru, 0xCD853F},
    {td::ColorID::Pink, 0xFFC0CB},
    {td::ColorID::Plum, 0xDDA0DD},
    {td::ColorID::PowderBlue, 0xB0E0E6},
    {td::ColorID::Purple, 0x800080},
    {td::ColorID::RebeccaPurple, 0x663399},
    {td::ColorID::Red, 0xFF0000},
    {td::ColorID::RosyBrown, 0xBC8F8F},
    {td::ColorID::RoyalBlue, 0x4169E1},
    {td::ColorID::SaddleBrown, 0x8B4513},
    {td::ColorID::Salmon, 0xFA8072},
    {td::ColorID::SandyBrown, 0xF4A460},
    {td::ColorID::SeaGreen, 0x2E8B57},
    {td::ColorID::Seashell, 0xFFF5EE},
    {td::ColorID::Sienna, 0xA0522D},
    {td::ColorID::Silver, 0xC0C0C0},
    {td::ColorID::SkyBlue, 0x87CEEB},
    {td::ColorID::SlateBlue, 0x6A5ACD},
    {td::ColorID::SlateGray, 0x708090},
    {td::ColorID::SlateGrey, 0x708090},
    {td::ColorID::Snow, 0xFFFAFA},
    {td::ColorID::SpringGreen, 0x00FF7F},
    {td::ColorID::SteelBlue, 0x4682B4},
    {td::ColorID::Tan, 0xD2B48C},
    {td::ColorID::Teal, 0x008080},
    {td::ColorID::Thistle, 0xD8BFD8},
    {td::ColorID::Tomato, 0xFF6347},
    {td::ColorID::Turquoise, 0x40E0D0},
    {td::ColorID::Violet, 0xEE82EE},
    {td::ColorID::Wheat, 0xF5DEB3},
    {td::ColorID::White, 0xFFFFFF},
    {td::ColorID::WhiteSmoke, 0xF5F5F5},
    {td::ColorID::Yellow, 0xFFFF00},
    {td::ColorID::YellowGreen, 0x9ACD32},
    {td::ColorID::Gray0, 0x000000},
    {td::ColorID::Gray3, 0x080808},
    {td::ColorID::Gray6, 0x0F0F0F},
    {td::ColorID::Gray9, 0x171717},
    {td::ColorID::Gray12, 0x1F1F1F},
    {td::ColorID::Gray15, 0x262626},
    {td::ColorID::Gray18, 0x2E2E2E},
    {td::ColorID::Gray21, 0x363636},
    {td::ColorID::Gray24, 0x3D3D3D},
    {td::ColorID::Gray27, 0x454545},
    {td::ColorID::Gray30, 0x4D4D4D},
    {td::ColorID::Gray33, 0x545454},
    {td::ColorID::Gray36, 0x5C5C5C},
    {td::ColorID::Gray39, 0x636363},
    {td::ColorID::Gray42, 0x6B6B6B},
    {td::ColorID::Gray45, 0x737373},
    {td::ColorID::Gray48, 0x7A7A7A},
    {td::ColorID::Gray51, 0x828282},
    {td::ColorID::Gray54, 0x8A8A8A},
    {td::ColorID::Gray57, 0x919191},
    {td::ColorID::Gray60, 0x999999},
    {td::ColorID::Gray63, 0xA1A1A1},
    {td::ColorID::Gray66, 0xA8A8A8},
    {td::ColorID::Gray69, 0xB0B0B0},
    {td::ColorID::Gray72, 0xB8B8B8},
    {td::ColorID::Gray75, 0xBFBFBF},
    {td::ColorID::Gray78, 0xC7C7C7},
    {td::ColorID::Gray81, 0xCFCFCF},
    {td::ColorID::Gray84, 0xD6D6D6},
    {td::ColorID::Gray87, 0xDEDEDE},
    {td::ColorID::Gray90, 0xE5E5E5},
    {td::ColorID::Gray93, 0xEDEDED},
    {td::ColorID::Gray96, 0xF5F5F5},
    {td::ColorID::Gray99, 0xFCFCFC},
    {td::ColorID::Gray100, 0xFFFFFF},
}};

constexpr bool isInOrder()
{
    for (std::size_t i = 0; i < cColors.size(); ++i)
        if (std::size_t(cColors[i].id) != i)
            return false;
    return true;
}

static_assert(cColors.size() == std::size_t(td::ColorID::NoColor));
static_assert(isInOrder());

struct Channels
{
    unsigned int r = 0, g = 0, b = 0, a = 0;
};

Channels channels(td::ColorID id)
{
    if (std::size_t(id) >= cColors.size())
        return {};
    const std::uint32_t rgb = cColors[std::size_t(id)].rgb;
    return {rgb >> 16, rgb >> 8 & 0xFF, rgb & 0xFF, 255};
}

} // namespace

void Color::getRGBA(td::ColorID id, float& r, float& g, float& b, float& a)
{
    const Channels c = channels(id);
    r = float(c.r) / 255.0f;
    g = float(c.g) / 255.0f;
    b = float(c.b) / 255.0f;
    a = float(c.a) / 255.0f;
}

td::Color Color::toTDColor(td::ColorID id)
{
    const Channels c = channels(id);
    return td::Color(td::GLRGBA(c.r, c.g, c.b, c.a));
}

} // namespace gui
