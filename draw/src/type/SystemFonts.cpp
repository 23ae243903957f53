#include "SystemFonts.h"

#include "OpenFont.h"
#include "TypefaceImpl.h"

#include <fontconfig/fontconfig.h>

#include <algorithm>
#include <string_view>
#include <vector>

namespace gui::draw
{

namespace
{

using Pattern = std::unique_ptr<FcPattern, Release<FcPatternDestroy>>;

const FcChar8* textOf(const std::string& text) { return reinterpret_cast<const FcChar8*>(text.c_str()); }

Pattern patternOf(const SystemFonts::Wish& wish)
{
    Pattern pPattern(FcPatternCreate());
    if (!wish.family.empty())
        FcPatternAddString(pPattern.get(), FC_FAMILY, textOf(wish.family));
    if (wish.isColored)
    {
        FcPatternAddString(pPattern.get(), FC_FAMILY, textOf("emoji"));
        FcPatternAddBool(pPattern.get(), FC_COLOR, FcTrue);
    }
    if (!wish.language.empty())
        FcPatternAddString(pPattern.get(), FC_LANG, textOf(wish.language));
    const Typeface::Slant slant = wish.look.slant;
    FcPatternAddDouble(pPattern.get(), FC_WEIGHT, FcWeightFromOpenTypeDouble(wish.look.weight));
    FcPatternAddInteger(pPattern.get(), FC_SLANT,
                        slant == Typeface::Slant::Upright  ? FC_SLANT_ROMAN
                        : slant == Typeface::Slant::Italic ? FC_SLANT_ITALIC
                                                           : FC_SLANT_OBLIQUE);
    FcPatternAddDouble(pPattern.get(), FC_WIDTH, wish.look.width);
    FcConfigSubstitute(nullptr, pPattern.get(), FcMatchPattern);
    FcDefaultSubstitute(pPattern.get());
    return pPattern;
}

std::string_view textIn(FcPattern* pPattern, const char* object)
{
    FcChar8* text = nullptr;
    if (FcPatternGetString(pPattern, object, 0, &text) != FcResultMatch)
        return {};
    return reinterpret_cast<const char*>(text);
}

} // namespace

SystemFonts& SystemFonts::instance()
{
    // Never destroyed: typefaces that outlive main() may still ask.
    static SystemFonts* const s_pInstance = new SystemFonts;
    return *s_pInstance;
}

bool SystemFonts::isUsable(FcPattern* pPattern, const Wish& wish)
{
    const std::string_view format = textIn(pPattern, FC_FONTFORMAT);
    FcBool isColored = FcFalse;
    FcPatternGetBool(pPattern, FC_COLOR, 0, &isColored);
    return (format == "TrueType" || format == "CFF") && (!wish.isColored || isColored != FcFalse);
}

Typeface SystemFonts::open(FcPattern* pPattern)
{
    int index = 0;
    FcPatternGetInteger(pPattern, FC_INDEX, 0, &index);
    const std::string path(textIn(pPattern, FC_FILE));
    const std::string_view variations = textIn(pPattern, FC_FONT_VARIATIONS);
    const auto [found, isNew] =
        _opened.try_emplace(path + '\n' + std::to_string(index) + '\n' + std::string(variations));
    if (!isNew)
        return found->second;
    std::string cause;
    // The upper half names an instance of a variable font, from 1 on; 0x8000 stands for the font as a whole.
    const unsigned int instance = static_cast<unsigned int>(index) >> 16;
    auto pFont =
        OpenFont::open(Blob(hb_blob_create_from_file(path.c_str())), static_cast<unsigned int>(index) & 0xFFFFU, cause);
    if (pFont != nullptr && instance > 0 && instance < 0x8000)
        pFont = pFont->withNamedInstance(instance - 1);
    std::vector<hb_variation_t> values;
    for (std::size_t at = 0; at < variations.size();)
    {
        const std::size_t end = std::min(variations.find(',', at), variations.size());
        hb_variation_t value;
        if (hb_variation_from_string(variations.data() + at, static_cast<int>(end - at), &value) != 0)
            values.push_back(value);
        at = end + 1;
    }
    if (pFont != nullptr && !values.empty())
        pFont = pFont->withVariations(values);
    return found->second = TypefaceImpl::make(std::move(pFont));
}

Typeface SystemFonts::find(const Wish& wish, std::optional<char32_t> character)
{
    const std::lock_guard lock(_mutex);
    const Pattern pPattern = patternOf(wish);
    FcFontSet*& pSorted = _sorted[wish];
    FcResult result = FcResultMatch;
    if (pSorted == nullptr)
        pSorted = FcFontSort(nullptr, pPattern.get(), FcFalse, nullptr, &result);
    for (int i = 0; pSorted != nullptr && i < pSorted->nfont; ++i)
    {
        FcCharSet* pCharacters = nullptr;
        FcPattern* const pCandidate = pSorted->fonts[i];
        if (!isUsable(pCandidate, wish) ||
            (character && (FcPatternGetCharSet(pCandidate, FC_CHARSET, 0, &pCharacters) != FcResultMatch ||
                           FcCharSetHasChar(pCharacters, *character) == FcFalse)))
            continue;
        const Pattern pPrepared(FcFontRenderPrepare(nullptr, pPattern.get(), pCandidate));
        if (Typeface face = open(pPrepared.get()))
            return face;
    }
    return {};
}

} // namespace gui::draw
