#include "Rasterizer.h"

#include "CharacterSet.h"
#include "Error.h"

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

#include <cerrno>
#include <cstring>
#include <fstream>

namespace fontbake
{

namespace
{

// Positions of outlines are in 64ths of a pixel, linear advances in 65,536ths.
constexpr int cOutlineBits = 6;
constexpr int cLinearBits = 16;

int rounded(long value, int fractionBits)
{
    return static_cast<int>((value + (1L << (fractionBits - 1))) >> fractionBits);
}

FT_Library library()
{
    struct Library
    {
        FT_Library handle = nullptr;
        Library()
        {
            if (FT_Init_FreeType(&handle) != 0)
                throw Error("FreeType does not start");
        }
        ~Library() { FT_Done_FreeType(handle); }
    };
    static const Library s_library;
    return s_library.handle;
}

} // namespace

void Rasterizer::Closer::operator()(FT_FaceRec_* face) const { FT_Done_Face(face); }

Rasterizer::Rasterizer(const std::string& fileName, int size, Hinting hinting)
    : _fileName(fileName)
    , _size(size)
    , _loadFlags(FT_LOAD_NO_BITMAP | (hinting == Hinting::Light ? FT_LOAD_TARGET_LIGHT : FT_LOAD_NO_HINTING))
{
    if (!std::ifstream(fileName, std::ios::binary))
        throw Error("cannot read " + fileName + ": " + std::strerror(errno));
    FT_Face face = nullptr;
    if (FT_New_Face(library(), fileName.c_str(), 0, &face) != 0)
        throw Error(fileName + " is no font that FreeType can read");
    _face.reset(face);
    if (!FT_IS_SCALABLE(face) || FT_Select_Charmap(face, FT_ENCODING_UNICODE) != 0)
        throw Error(fileName + " has no outlines of Unicode characters");
    if (FT_Set_Pixel_Sizes(face, 0, static_cast<FT_UInt>(size)) != 0)
        throw Error(fileName + " can't be drawn at " + std::to_string(size) + " pixels");
}

Rasterizer::~Rasterizer() = default;

bool Rasterizer::has(char32_t codePoint) const { return FT_Get_Char_Index(_face.get(), codePoint) != 0; }

Picture Rasterizer::draw(char32_t codePoint) const
{
    const FT_UInt index = FT_Get_Char_Index(_face.get(), codePoint);
    const FT_GlyphSlot slot = _face->glyph;
    if (index == 0 || FT_Load_Glyph(_face.get(), index, _loadFlags) != 0 || slot->format != FT_GLYPH_FORMAT_OUTLINE)
        throw Error(_fileName + " has no outline of " + nameOf(codePoint));

    Picture picture;
    picture.advance = rounded(slot->linearHoriAdvance, cLinearBits);
    const long added = (static_cast<long>(picture.advance) << cLinearBits) - slot->linearHoriAdvance;
    FT_Outline_Translate(&slot->outline, added / 2 / (1L << (cLinearBits - cOutlineBits)), 0);
    if (FT_Render_Glyph(slot, FT_RENDER_MODE_NORMAL) != 0)
        throw Error(_fileName + ": FreeType can't draw " + nameOf(codePoint));

    const FT_Bitmap& bitmap = slot->bitmap;
    if (bitmap.width == 0 || bitmap.rows == 0)
        return picture;
    picture.left = slot->bitmap_left;
    picture.top = slot->bitmap_top;
    picture.width = static_cast<int>(bitmap.width);
    picture.height = static_cast<int>(bitmap.rows);
    picture.pixels.reserve(std::size_t(bitmap.width) * bitmap.rows);
    for (int y = 0; y < picture.height; ++y)
    {
        const unsigned char* row = bitmap.buffer + std::ptrdiff_t(y) * bitmap.pitch;
        picture.pixels.insert(picture.pixels.end(), row, row + bitmap.width);
    }
    return picture;
}

int Rasterizer::getAscender() const { return rounded(_face->size->metrics.ascender, cOutlineBits); }

int Rasterizer::getDescender() const { return rounded(-_face->size->metrics.descender, cOutlineBits); }

int Rasterizer::getLinePitch() const { return rounded(_face->size->metrics.height, cOutlineBits); }

int Rasterizer::getSpaceWidth() const
{
    if (FT_Load_Char(_face.get(), U' ', _loadFlags) != 0 || !has(U' '))
        return (_size + 2) / 4;
    return rounded(_face->glyph->linearHoriAdvance, cLinearBits);
}

} // namespace fontbake
