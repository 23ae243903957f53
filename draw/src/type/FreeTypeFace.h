#pragma once

#include "GlyphPaint.h"

#include <gui/draw/GlyphImage.h>

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

/// A font as FreeType sees it: pictures of glyphs, hinted or in colour. It has a FreeType library of its own, so that
/// what a font makes FreeType take of memory can be limited, and so that fonts don't wait for each other.
class FreeTypeFace
{
public:
    /// Whether the library was built with FreeType; without it no face can be opened.
    static bool isThere();
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

    /// None for a glyph that has no paint, or one that can't be drawn: see ColorPaintReader::read.
    std::optional<GlyphPaint> getPaint(std::uint32_t glyph) const;
    /// @param isColor  whether the glyph is known to have a paint, a picture or layers
    /// @param request  for a glyph and at a size that there is
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
