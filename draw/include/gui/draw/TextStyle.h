#pragma once

#include "FontTag.h"
#include "Paint.h"
#include "Typeface.h"
#include "Unit.h"

#include <td/ColorID.h>

#include <string>
#include <vector>

namespace gui::draw
{

/// A border around letters that keeps them legible on any ground: one shape for all letters of a text that have one
/// style, below the text.
struct Halo
{
    double width = 0; ///< beyond the letters' edges, in the style's unit; none when it is not above 0
    Paint paint = td::ColorID::White;
};

/// What text looks like. A value:
///
///     TextLayout label("Lake Constance", {.face = Typeface::named("serif"), .size = 14, .paint = "#204060"});
///
/// Lengths are all in the style's unit. What makes the letters' places (face, size, letterSpacing, features, language)
/// is for TextLayout; the rest is for who draws it.
struct TextStyle
{
    Typeface face{};          ///< none stands for Typeface::named("sans-serif")
    double size = 12;         ///< of an em; below 0, or not finite, as 0
    Unit unit = Unit::Points; ///< of size and all other lengths
    Paint paint = td::ColorID::Black;
    /// Makes the letters heavier by a line of this width along their outlines, half of it on either side, without
    /// moving them. In em, so 0.02 is some 100 of weight; nothing when it is not above 0.
    double embolden = 0;
    Halo halo{};
    bool isUnderlined = false;
    bool isStruckThrough = false;
    /// Between letters (clusters of them, as readers see them) beyond what the face says; below 0 for less. Ligatures
    /// that the text could do without are off where it is not 0.
    double letterSpacing = 0;
    std::vector<FontFeature> features{}; ///< `{{"smcp"}, {"kern", 0}}`; later ones win
    /// What language the text is in, as BCP 47 has it ("de", "sr-Latn", "zh-Hant"), for letters and rules that differ;
    /// empty for the user's, which the environment says.
    std::string language{};
};

} // namespace gui::draw
