#pragma once

#include "OpenFont.h"

#include <gui/draw/Typeface.h>

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace gui::draw
{

/// What the copies of a Typeface share: a font, those to fall back on, and what the system was asked already.
class TypefaceImpl
{
public:
    /// What a character, or a cluster of them, wants of a face beside its glyphs.
    enum class Presentation : td::BYTE
    {
        Text, ///< the first face that has it
        Emoji ///< the first face in colour that has it, and else the first one
    };

    TypefaceImpl(std::shared_ptr<const OpenFont> pFont, std::vector<Typeface> fallbacks, bool asksSystem);

    /// Null for no face.
    static const TypefaceImpl* of(const Typeface& face) { return face._pImpl.get(); }
    /// None for no font. A baked one doesn't ask the system, another one does.
    static Typeface make(std::shared_ptr<const OpenFont> pFont);
    static Typeface make(std::shared_ptr<const TypefaceImpl> pImpl) { return Typeface(std::move(pImpl)); }

    const std::shared_ptr<const OpenFont>& getOpenFont() const { return _pFont; }
    const OpenFont& font() const { return *_pFont; }
    const std::vector<Typeface>& getFallbacks() const { return _fallbacks; }
    bool asksSystem() const { return _asksSystem; }
    /// Of this font with these faces to fall back on, never given twice.
    std::uint64_t getID() const { return _id; }

    /// What the font says of itself, a variable one at its place.
    Typeface::Look getLook() const;

    bool has(char32_t character) const { return _pFont->has(character); }

    /// The face for a character after the face itself was found to lack it, or to have it in black for an emoji; null
    /// when there is none. It lives as long as this.
    const Typeface* fallbackFor(char32_t character, Presentation presentation, std::string_view language) const;

private:
    Typeface searchFor(char32_t character, Presentation presentation, std::string_view language) const;

    std::shared_ptr<const OpenFont> _pFont;
    std::vector<Typeface> _fallbacks;
    bool _asksSystem;
    std::uint64_t _id;
    // By language, then by character and presentation. References to what is in them stay.
    using Known = std::unordered_map<std::uint32_t, Typeface>;
    mutable std::map<std::string, Known, std::less<>> _known;
    mutable std::mutex _mutex; // of what is known
};

} // namespace gui::draw
