#include "TypefaceImpl.h"

#include "SystemFonts.h"

#include <hb-ot.h>

#include <atomic>

namespace gui::draw
{

TypefaceImpl::TypefaceImpl(std::shared_ptr<const OpenFont> pFont, std::vector<Typeface> fallbacks, bool asksSystem)
    : _pFont(std::move(pFont))
    , _fallbacks(std::move(fallbacks))
    , _asksSystem(asksSystem)
{
    static std::atomic<std::uint64_t> s_last{0};
    _id = ++s_last;
}

Typeface TypefaceImpl::make(std::shared_ptr<const OpenFont> pFont)
{
    if (pFont == nullptr)
        return Typeface();
    // The system's fonts would bring FreeType, and look different on each machine.
    const bool asksSystem = !pFont->isBaked();
    return Typeface(std::make_shared<const TypefaceImpl>(std::move(pFont), std::vector<Typeface>(), asksSystem));
}

Typeface::Look TypefaceImpl::getLook() const
{
    hb_font_t* const pFont = _pFont->getFont();
    Typeface::Look look;
    look.weight = double(hb_style_get_value(pFont, HB_STYLE_TAG_WEIGHT));
    look.width = double(hb_style_get_value(pFont, HB_STYLE_TAG_WIDTH));
    if (hb_style_get_value(pFont, HB_STYLE_TAG_ITALIC) != 0)
        look.slant = Typeface::Slant::Italic;
    else if (hb_style_get_value(pFont, HB_STYLE_TAG_SLANT_ANGLE) != 0)
        look.slant = Typeface::Slant::Oblique;
    return look;
}

const Typeface* TypefaceImpl::fallbackFor(char32_t character, Presentation presentation,
                                          std::string_view language) const
{
    const std::lock_guard lock(_mutex);
    auto known = _known.find(language);
    if (known == _known.end())
        known = _known.emplace(language, Known()).first;
    const std::uint32_t key = std::uint32_t(character) << 1 | std::uint32_t(presentation);
    const auto [found, isNew] = known->second.try_emplace(key);
    if (isNew)
        found->second = searchFor(character, presentation, language);
    return found->second ? &found->second : nullptr;
}

Typeface TypefaceImpl::searchFor(char32_t character, Presentation presentation, std::string_view language) const
{
    if (presentation == Presentation::Emoji)
    {
        for (const Typeface& face : _fallbacks)
            if (const TypefaceImpl* const pImpl = of(face); pImpl && pImpl->font().isColored() && pImpl->has(character))
                return face;
        if (_asksSystem)
            if (Typeface face = SystemFonts::instance().find({.isColored = true}, character))
                return face;
        if (has(character))
            return {};
    }
    for (const Typeface& face : _fallbacks)
        if (const TypefaceImpl* const pImpl = of(face); pImpl && pImpl->has(character))
            return face;
    if (!_asksSystem)
        return {};
    const SystemFonts::Wish wish{.family = _pFont->getName(HB_OT_NAME_ID_TYPOGRAPHIC_FAMILY, HB_OT_NAME_ID_FONT_FAMILY),
                                 .look = getLook(),
                                 .language = std::string(language)};
    return SystemFonts::instance().find(wish, character);
}

} // namespace gui::draw
