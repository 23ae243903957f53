#pragma once

#include "CharacterSet.h"

#include <cstdint>
#include <memory>
#include <string>

struct hb_face_t;
struct hb_font_t;

namespace fontbake
{

/// Makes of a font the file of a face for drawings: as much of the font as a set of characters needs, by HarfBuzz. It
/// keeps what measures, shapes and outlines them (all ligatures, alternates and marks that they lead to, kerning, the
/// axes of a variable font, layers in colour), and leaves out hinting, pictures and Graphite's rules.
class FaceBaker
{
public:
    /// Opens a TrueType or OpenType file. Throws Error.
    /// @param index  which font of a collection
    FaceBaker(const std::string& fileName, unsigned int index);

    bool has(char32_t codePoint) const;

    /// The bytes of the file. Printable ASCII, and what the library writes by itself (signs of axes and dimensions,
    /// hyphens), come with all sets as far as the font has them. Throws Error.
    /// @param characters  which the font has
    std::string bake(const CharacterSet& characters) const;

private:
    struct Closer
    {
        void operator()(hb_face_t* pFace) const;
        void operator()(hb_font_t* pFont) const;
    };

    bool hasTable(std::uint32_t tag) const;
    bool isKernedByOldTable() const;
    bool hasArabicRules() const;

    const std::string _fileName;
    const std::string _bytes;
    std::unique_ptr<hb_face_t, Closer> _pFace;
    std::unique_ptr<hb_font_t, Closer> _pFont;
};

} // namespace fontbake
