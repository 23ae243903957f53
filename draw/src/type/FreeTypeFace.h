#pragma once

#include <gui/draw/GlyphImage.h>
#include <gui/draw/Path.h>

#include <td/Types.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

struct FT_FaceRec_;
struct FT_LibraryRec_;
struct FT_MemoryRec_;

namespace gui::draw
{

/// Four pictures of how far pixels are covered: with the pen on a pixel's left edge, and one, two and three quarters of
/// a pixel to the right of it.
struct GlyphCoverage
{
    int left = 0;            ///< from the pen's pixel to the left column
    int top = 0;             ///< from the base line up to the upper edge of the top row
    unsigned int width = 0;  ///< of each picture
    unsigned int height = 0; ///< of each
    /// Row by row from the bottom, in each row the four pictures' one after the other.
    std::vector<td::BYTE> pixels;
};

/// What a glyph of COLR's version 1 is like.
struct GlyphPaint
{
    double width = 0, height = 0; ///< of what is seen of it, in font units
    bool usesForeground = false;
};

/// A font as FreeType sees it: outlines and pictures of glyphs. It has a FreeType library of its own, so that what a
/// font makes FreeType take of memory can be limited, and so that fonts don't wait for each other.
class FreeTypeFace
{
public:
    /// @param bytes  not owned: they must be there as long as the face
    /// @param cause  set when there is no such face
    /// @return null then
    static std::unique_ptr<FreeTypeFace> open(std::span<const td::BYTE> bytes, unsigned int index, std::string& cause);
    ~FreeTypeFace();
    FreeTypeFace(const FreeTypeFace&) = delete;
    FreeTypeFace& operator=(const FreeTypeFace&) = delete;

    /// One coordinate for each axis, in the axes' units. Before the face is used.
    void setCoordinates(std::span<const float> coordinates);

    /// The font's COLR table of version 1, which is not owned; before the face is used.
    void setPaints(std::span<const td::BYTE> table) { _paintTable = table; }

    /// In font units, y downwards; empty when there is none.
    Path getOutline(std::uint32_t glyph) const;
    /// How an outline covers pixels, for the four places that the pen may have in one. @param pixelsPerEm  above 0
    /// @return none when there is nothing to see, it is no outline, or it is larger than this is for
    std::optional<GlyphCoverage> getCoverage(std::uint32_t glyph, double pixelsPerEm) const;
    /// The same of a round line along it. @param lineWidth  in pixels, above 0
    std::optional<GlyphCoverage> getStrokeCoverage(std::uint32_t glyph, double pixelsPerEm, double lineWidth) const;
    /// None for a glyph that has no paint, or one that can't be drawn: see ColorPaintReader::read.
    std::optional<GlyphPaint> getPaint(std::uint32_t glyph) const;
    /// @param isColor  whether the glyph is known to have a paint, a picture or layers
    /// @return null, or else what is wrong
    const char* getImage(std::uint32_t glyph, bool isColor, const GlyphRequest& request, GlyphImage& image) const;

private:
    FreeTypeFace();

    std::optional<GlyphPaint> findPaint(std::uint32_t glyph) const;
    const char* paint(std::uint32_t glyph, const GlyphPaint& paint, const GlyphRequest& request,
                      GlyphImage& image) const;
    const char* loadSized(std::uint32_t glyph, bool isColor, const GlyphRequest& request, double& pixelsPerEm) const;

    std::unique_ptr<FT_MemoryRec_> _pMemory;
    std::size_t _nBytes = 0; // that FreeType holds
    FT_LibraryRec_* _pLibrary = nullptr;
    FT_FaceRec_* _pFace = nullptr;
    std::span<const td::BYTE> _paintTable;
    std::vector<float> _place;                                                    // on the axes, normalised
    mutable std::unordered_map<std::uint32_t, std::optional<GlyphPaint>> _paints; // that were asked for
    mutable std::mutex _mutex; // of the face, whose glyph slot and size each drawing changes, and of what was asked
};

} // namespace gui::draw
