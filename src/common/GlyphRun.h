#pragma once

#include "GlyphTable.h"

#include <td/Point.h>

namespace gui::gl
{

/// A font's metrics that are not a glyph's own.
struct FontMetrics
{
    float lineHeight;
    float glyphPadding;
    float additionalSpace;
    float lineSpacing;
};

/// Where layout is between two characters.
struct Pen
{
    float x;
    float top; ///< of the line
    float bottom;
    float widest; ///< of the lines before
    bool isFirst; ///< nothing was laid out on this line
};

/// Lays out text in one pass over its bytes, as Font's plain layout does with code points: the same operations in the same
/// order, with the same rounding, so the pen and the vertices are the same to the bit. What it saves is the decoding into a
/// buffer, the second look at each character, and everything but three additions on the way from one pen position to the
/// next, which is what laying out a character costs at least.
///
/// A space is laid out as a glyph without bearing, padding or width whose vertices are overwritten by those of the glyph
/// behind it. To add a zero is to add nothing as long as the pen is not at -0, where it can't get to from elsewhere; and
/// with numbers that are all finite at first, operations bring forth only one kind of NaN, whatever the operands' order.
/// canRun and canMeasure tell when this holds.
class GlyphRun
{
public:
    static bool canMeasure(const FontMetrics& metrics);
    static bool canRun(const FontMetrics& metrics, const td::Point<float>& pos, float scale);

    /// @param table  isForRuns; all parameters outlive the run
    GlyphRun(const GlyphTable& table, const FontMetrics& metrics, const td::Point<float>& pos, float scale, Pen& pen);

    /// Lays out the characters that begin before stop.
    /// @param end   of the text; nothing there or behind it is read
    /// @param pOut  room for a quad (six vertices) per byte before stop; behind the last quad afterwards. Of the room behind
    ///              that one more quad may be overwritten (see hasSpilled)
    /// @return behind the last of the characters; before stop where bytes are malformed
    const unsigned char* add(const unsigned char* p, const unsigned char* stop, const unsigned char* end,
                             Font::_vd*& pOut);

    /// Whether a space was laid out behind the last glyph.
    bool hasSpilled() const { return _hasSpilled; }

    /// Font::measure of a range in a table isForRuns, with metrics that canMeasure takes.
    /// @return false, with the size as it was, where bytes are malformed
    static bool measure(const GlyphTable& table, const FontMetrics& metrics, const unsigned char* p,
                        const unsigned char* end, td::Size<float>& size);

private:
    /// What a quad or a space adds beside its own metrics.
    struct Addends
    {
        float halfPadding;
        float additionalSpace;
    };

    const GlyphTable& _table;
    const FontMetrics& _metrics;
    const float _startX;
    const float _scale;
    const Addends _addends[2]; // by the number of quads
    Pen& _pen;
    bool _hasSpilled = false;
};

} // namespace gui::gl
