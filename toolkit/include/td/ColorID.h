#pragma once

#include "Types.h"

namespace td
{

/// The colours of the toolkit's colour table, by the names people write; gui::Color gives their channels.
/// Values 0 to 147 are the names of CSS in alphabetical order with CSS's values, both spellings of grey included.
/// Values 148 to 182 are a ramp of greys: the number in the name is the lightness in percent, from black to white.
/// NoColor (183) stands for "no colour given": its channels are all 0.
enum class ColorID : BYTE
{
    // clang-format off
    AliceBlue, AntiqueWhite, Aqua, Aquamarine, Azure,
    Beige, Bisque, Black, BlanchedAlmond, Blue, BlueViolet, Brown, BurlyWood,
    CadetBlue, Chartreuse, Chocolate, Coral, CornflowerBlue, Cornsilk, Crimson, Cyan,
    DarkBlue, DarkCyan, DarkGoldenrod, DarkGray, DarkGreen, DarkGrey, DarkKhaki, DarkMagenta, DarkOliveGreen,
    DarkOrange, DarkOrchid, DarkRed, DarkSalmon, DarkSeaGreen, DarkSlateBlue, DarkSlateGray, DarkSlateGrey,
    DarkTurquoise, DarkViolet, DeepPink, DeepSkyBlue, DimGray, DimGrey, DodgerBlue,
    FireBrick, FloralWhite, ForestGreen, Fuchsia,
    Gainsboro, GhostWhite, Gold, Goldenrod, Gray, Green, GreenYellow, Grey,
    Honeydew, HotPink,
    IndianRed, Indigo, Ivory,
    Khaki,
    Lavender, LavenderBlush, LawnGreen, LemonChiffon, LightBlue, LightCoral, LightCyan, LightGoldenrodYellow,
    LightGray, LightGreen, LightGrey, LightPink, LightSalmon, LightSeaGreen, LightSkyBlue, LightSlateGray,
    LightSlateGrey, LightSteelBlue, LightYellow, Lime, LimeGreen, Linen,
    Magenta, Maroon, MediumAquamarine, MediumBlue, MediumOrchid, MediumPurple, MediumSeaGreen, MediumSlateBlue,
    MediumSpringGreen, MediumTurquoise, MediumVioletRed, MidnightBlue, MintCream, MistyRose, Moccasin,
    NavajoWhite, Navy,
    OldLace, Olive, OliveDrab, Orange, OrangeRed, Orchid,
    PaleGoldenrod, PaleGreen, PaleTurquoise, PaleVioletRed, PapayaWhip, PeachPuff, Peru, Pink, Plum, PowderBlue,
    Purple,
    RebeccaPurple, Red, RosyBrown, RoyalBlue,
    SaddleBrown, Salmon, SandyBrown, SeaGreen, Seashell, Sienna, Silver, SkyBlue, SlateBlue, SlateGray, SlateGrey,
    Snow, SpringGreen, SteelBlue,
    Tan, Teal, Thistle, Tomato, Turquoise,
    Violet,
    Wheat, White, WhiteSmoke,
    Yellow, YellowGreen,
    Gray0, Gray3, Gray6, Gray9, Gray12, Gray15, Gray18, Gray21, Gray24, Gray27, Gray30, Gray33, Gray36, Gray39,
    Gray42, Gray45, Gray48, Gray51, Gray54, Gray57, Gray60, Gray63, Gray66, Gray69, Gray72, Gray75, Gray78,
    Gray81, Gray84, Gray87, Gray90, Gray93, Gray96, Gray99, Gray100,
    NoColor
    // clang-format on
};

static_assert(BYTE(ColorID::NoColor) == 183);

} // namespace td
