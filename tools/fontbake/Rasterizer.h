#pragma once

#include <memory>
#include <string>
#include <vector>

struct FT_FaceRec_;

namespace fontbake
{

enum class Hinting : unsigned char
{
    None,
    Light ///< heights are fitted to whole pixels, widths are not
};

/// A glyph's picture, and where it belongs. Pixels are whole, and so is the pen's place.
struct Picture
{
    int left = 0;                      ///< from the pen to the first column
    int top = 0;                       ///< from the baseline up to the top of the first row
    int width = 0;                     ///< 0 for a glyph without ink
    int height = 0;                    ///< 0 for a glyph without ink
    int advance = 0;                   ///< of the pen
    std::vector<unsigned char> pixels; ///< coverage, row by row from the top
};

/// Draws the glyphs of a font with FreeType.
class Rasterizer
{
public:
    /// Opens a TrueType or OpenType file. Throws Error.
    /// @param size  pixels per em
    Rasterizer(const std::string& fileName, int size, Hinting hinting);
    ~Rasterizer();
    Rasterizer(const Rasterizer&) = delete;
    Rasterizer& operator=(const Rasterizer&) = delete;

    bool has(char32_t codePoint) const;

    /// Draws a character that the font has. The advance is the font's own, not hinted, rounded to whole pixels; what
    /// rounding adds or takes goes to the left and the right of the picture in equal parts, so that stems stay evenly
    /// apart. Throws Error.
    Picture draw(char32_t codePoint) const;

    int getAscender() const;   ///< from the baseline up, in pixels
    int getDescender() const;  ///< from the baseline down, in pixels
    int getLinePitch() const;  ///< from baseline to baseline, in pixels
    int getSpaceWidth() const; ///< the advance of U+0020, a quarter em for a font that lacks it

private:
    struct Closer
    {
        void operator()(FT_FaceRec_* face) const;
    };

    const std::string _fileName;
    const int _size;
    const int _loadFlags;
    std::unique_ptr<FT_FaceRec_, Closer> _face;
};

} // namespace fontbake
