#include "FaceBaker.h"

#include "Error.h"
#include "OutputFile.h"

#include <type/BakedFace.h>
#include <type/HarfBuzzOwners.h>

#include <hb-aat.h>
#include <hb-ot.h>
#include <hb-subset.h>

#include <initializer_list>
#include <memory>
#include <span>
#include <utility>
#include <vector>

namespace fontbake
{

namespace
{

using gui::draw::Blob;
using gui::draw::Face;
using gui::draw::Release;
using Input = std::unique_ptr<hb_subset_input_t, Release<hb_subset_input_destroy>>;

constexpr hb_tag_t cKerning = HB_TAG('k', 'e', 'r', 'n');

// Minus, degree, superscript digits and so on: what axes, dimensions and lines that end in a hyphen show.
constexpr char32_t cOwnSigns[] = U"\u00B0\u00B2\u00B3\u00B7\u00B9\u00D7\u2009\u2010\u2026\u2070\u2074\u2075\u2076\u2077"
                                 U"\u2078\u2079\u207B\u2212\u2300";

bool isThere(hb_face_t* pFace, hb_tag_t tag)
{
    const Blob pTable(hb_face_reference_table(pFace, tag));
    return hb_blob_get_length(pTable.get()) > 0;
}

// HarfBuzz shapes with letters of their own for a letter and its marks where the font has them.
void addComposed(hb_set_t* pCharacters)
{
    hb_unicode_funcs_t* const pUnicode = hb_unicode_funcs_get_default();
    // Those that decompose end before the third plane. One may be composed of another one.
    for (bool isNew = true; std::exchange(isNew, false);)
        for (hb_codepoint_t c = 0xC0; c < 0x30000; ++c)
        {
            hb_codepoint_t first = 0, second = 0;
            if (hb_set_has(pCharacters, c) == 0 && hb_unicode_decompose(pUnicode, c, &first, &second) != 0 &&
                hb_set_has(pCharacters, first) != 0 && (second == 0 || hb_set_has(pCharacters, second) != 0))
            {
                hb_set_add(pCharacters, c);
                isNew = true;
            }
        }
}

} // namespace

void FaceBaker::Closer::operator()(hb_face_t* pFace) const { hb_face_destroy(pFace); }

void FaceBaker::Closer::operator()(hb_font_t* pFont) const { hb_font_destroy(pFont); }

FaceBaker::FaceBaker(const std::string& fileName, unsigned int index)
    : _fileName(fileName)
    , _bytes(contentOf(fileName))
{
    const Blob pBlob(hb_blob_create(_bytes.data(), static_cast<unsigned int>(_bytes.size()), HB_MEMORY_MODE_READONLY,
                                    nullptr, nullptr));
    const unsigned int nFaces = hb_face_count(pBlob.get());
    if (nFaces > 0 && index >= nFaces)
        throw Error(fileName + " has " + (nFaces == 1 ? "one font" : std::to_string(nFaces) + " fonts") +
                    ", counted from 0: there is no --index " + std::to_string(index));
    _pFace.reset(hb_face_create(pBlob.get(), index));
    if (nFaces == 0 || hb_face_get_glyph_count(_pFace.get()) == 0)
        throw Error(fileName + " is no TrueType or OpenType font");
    if (!hasTable(HB_TAG('g', 'l', 'y', 'f')) && !hasTable(HB_TAG('C', 'F', 'F', ' ')) &&
        !hasTable(HB_TAG('C', 'F', 'F', '2')))
        throw Error(fileName + " has no outlines; pictures can't be baked for drawings");
    if (hb_aat_layout_has_substitution(_pFace.get()) != 0 && hb_ot_layout_has_substitution(_pFace.get()) == 0)
        throw Error(fileName + " is shaped by tables of Apple's alone, which can't be baked for drawings");
    _pFont.reset(hb_font_create(_pFace.get()));
}

bool FaceBaker::hasTable(std::uint32_t tag) const { return isThere(_pFace.get(), tag); }

bool FaceBaker::has(char32_t codePoint) const
{
    hb_codepoint_t glyph = 0;
    return hb_font_get_nominal_glyph(_pFont.get(), codePoint, &glyph) != 0;
}

// For scripts without OpenType's kerning HarfBuzz takes that of the older table.
bool FaceBaker::isKernedByOldTable() const
{
    if (!hasTable(cKerning))
        return false;
    hb_face_t* const pFace = _pFace.get();
    const unsigned int nScripts = hb_ot_layout_table_get_script_tags(pFace, HB_OT_TAG_GPOS, 0, nullptr, nullptr);
    for (unsigned int script = 0; script < nScripts; ++script)
        if (unsigned int feature = 0;
            hb_ot_layout_language_find_feature(pFace, HB_OT_TAG_GPOS, script, HB_OT_LAYOUT_DEFAULT_LANGUAGE_INDEX,
                                               cKerning, &feature) == 0)
            return true;
    return nScripts == 0;
}

// For Arabic without OpenType's rules HarfBuzz takes the forms that have characters of their own.
bool FaceBaker::hasArabicRules() const
{
    unsigned int script = 0;
    return hb_ot_layout_table_find_script(_pFace.get(), HB_OT_TAG_GSUB, HB_TAG('a', 'r', 'a', 'b'), &script) != 0;
}

std::string FaceBaker::bake(const CharacterSet& characters) const
{
    const Input pInput(hb_subset_input_create_or_fail());
    if (pInput == nullptr)
        throw Error("no memory");
    hb_set_t* const pCharacters = hb_subset_input_unicode_set(pInput.get());
    for (const char32_t codePoint : characters)
    {
        hb_set_add(pCharacters, codePoint);
        // Brackets turn round in texts that run from right to left.
        hb_set_add(pCharacters, hb_unicode_mirroring(hb_unicode_funcs_get_default(), codePoint));
    }
    hb_set_add_range(pCharacters, U' ', U'~');
    for (const char32_t codePoint : cOwnSigns)
        hb_set_add(pCharacters, codePoint);
    addComposed(pCharacters);
    hb_codepoint_t letter = 0x61F;
    if (hb_set_next(pCharacters, &letter) != 0 && letter < 0x700 && !hasArabicRules())
    {
        hb_set_add_range(pCharacters, 0xFB50, 0xFBFF);
        hb_set_add_range(pCharacters, 0xFE70, 0xFEFC);
    }
    hb_set_del(pCharacters, 0);

    const auto takeAll = [&pInput](hb_subset_sets_t kind)
    {
        hb_set_t* const pSet = hb_subset_input_set(pInput.get(), kind);
        hb_set_clear(pSet);
        hb_set_invert(pSet);
    };
    takeAll(HB_SUBSET_SETS_LAYOUT_FEATURE_TAG);
    takeAll(HB_SUBSET_SETS_NAME_ID);
    hb_set_t* const pDropped = hb_subset_input_set(pInput.get(), HB_SUBSET_SETS_DROP_TABLE_TAG);
    for (const char* const tag : {"CBDT", "CBLC", "EBDT", "EBLC", "EBSC", "SVG ", "sbix", "DSIG"})
        hb_set_add(pDropped, hb_tag_from_string(tag, 4));
    unsigned int flags = HB_SUBSET_FLAGS_NO_HINTING | HB_SUBSET_FLAGS_NOTDEF_OUTLINE;
    if (isKernedByOldTable())
    {
        // It can't be reduced: so all glyphs keep their numbers.
        flags |= HB_SUBSET_FLAGS_RETAIN_GIDS;
        hb_set_del(pDropped, cKerning);
        hb_set_add(hb_subset_input_set(pInput.get(), HB_SUBSET_SETS_NO_SUBSET_TABLE_TAG), cKerning);
    }
    hb_subset_input_set_flags(pInput.get(), flags);

    const Face pSubset(hb_subset_or_fail(_pFace.get(), pInput.get()));
    if (pSubset == nullptr)
        throw Error(_fileName + " is broken: HarfBuzz can't make a smaller font of it");
    const Blob pBlob(hb_face_reference_blob(pSubset.get()));
    unsigned int n = 0;
    const char* const bytes = hb_blob_get_data(pBlob.get(), &n);
    const std::span font(reinterpret_cast<const unsigned char*>(bytes), n);
    const auto header = gui::draw::BakedFace::headerOf(font);
    std::string file(header.begin(), header.end());
    return file.append(bytes, n);
}

} // namespace fontbake
