#pragma once

#include "GlyphOutlines.h"
#include "GlyphPaint.h"
#include "HarfBuzzOwners.h"

#include <gui/draw/Typeface.h>

#include <td/Color.h>

#include <hb.h>

#include <bitset>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace gui::draw
{

class FreeTypeFace;
class WordShapes;

/// A font at a place on its axes, for all handles that share it: opened by HarfBuzz, which measures, shapes and has the
/// outlines, and, unless it is a baked face, by FreeType, which makes images. Unchanged from then on; HarfBuzz's part
/// is for any number of threads at once.
class OpenFont
{
public:
    /// @param cause  set when it can't be used  @return null then
    static std::shared_ptr<const OpenFont> open(Blob pBlob, unsigned int index, std::string& cause);
    ~OpenFont();
    OpenFont(const OpenFont&) = delete;
    OpenFont& operator=(const OpenFont&) = delete;

    /// The same font elsewhere on its axes; null when that fails.
    std::shared_ptr<const OpenFont> withVariations(std::span<const hb_variation_t> variations) const;
    /// The same at one of the places that the font's maker has named.
    std::shared_ptr<const OpenFont> withNamedInstance(unsigned int instance) const;

    std::uint64_t getID() const { return _id; }
    hb_font_t* getFont() const { return _pFont; }
    hb_face_t* getFace() const { return hb_font_get_face(_pFont); }
    const GlyphOutlines& getOutlines() const { return _outlines; }
    /// For Typeface::getImage, and for glyphs that are pictures. @return null, or else what is wrong
    const char* getImage(std::uint32_t glyph, const GlyphRequest& request, GlyphImage& image) const;
    /// Whether it was made ahead.
    bool isBaked() const { return _isBaked; }
    WordShapes& getWordShapes() const { return *_pWordShapes; }
    const Typeface::Metrics& getMetrics() const { return _metrics; }
    /// The coordinate on each axis, in the axes' units.
    std::span<const float> getCoordinates() const { return _coordinates; }
    std::string getName(unsigned int preferredID, unsigned int nameID) const;
    bool isColorGlyph(std::uint32_t glyph) const;
    /// Of COLR's version 1, which goes before layers and pictures; none for a glyph without.
    std::optional<GlyphPaint> getPaint(std::uint32_t glyph) const;

    /// A part of a glyph in colour.
    struct Layer
    {
        std::uint32_t glyph; // whose outline it has
        td::Color color;     // of the font's first palette
        bool isText;         // it has the text's colour instead
    };
    /// From below to above; none for a glyph without.
    std::vector<Layer> getLayers(std::uint32_t glyph) const;
    /// Whether there is a glyph for a character.
    bool has(char32_t character) const
    {
        return character < _hasFirst.size() ? _hasFirst[character] : hb_set_has(_pCharacters.get(), character) != 0;
    }
    /// Whether it has pictures, layers or paints in colour at all.
    bool isColored() const { return _hasPictures || _hasLayers || _pPaints != nullptr; }

private:
    OpenFont(Blob pBlob, hb_font_t* pFont, std::unique_ptr<FreeTypeFace> pFreeType, unsigned int index, bool isBaked);

    // Takes the font. Null when FreeType can't open it.
    static std::shared_ptr<const OpenFont> make(Blob pBlob, hb_font_t* pFont, unsigned int index, bool isBaked,
                                                std::string& cause);
    std::shared_ptr<const OpenFont> moved(hb_font_t* pFont) const;
    void readMetrics();
    void readCoordinates();

    Blob _pBlob;
    hb_font_t* _pFont;
    GlyphOutlines _outlines;
    std::unique_ptr<FreeTypeFace> _pFreeType; // null for a baked face, and where the library has no FreeType
    unsigned int _index;
    bool _isBaked;
    std::uint64_t _id;
    Blob _pPaints; // its table of paints; null for none, and for nobody to draw them
    bool _hasPictures;
    bool _hasLayers;
    Typeface::Metrics _metrics;
    std::vector<float> _coordinates;
    std::unique_ptr<hb_set_t, Release<hb_set_destroy>> _pCharacters;
    std::bitset<0x10000> _hasFirst; // of these characters, which most texts consist of
    std::unique_ptr<WordShapes> _pWordShapes;
};

} // namespace gui::draw
