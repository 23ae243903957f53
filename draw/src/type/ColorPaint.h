#pragma once

#include "BlendMode.h"
#include "ColorFill.h"
#include "TableBytes.h"
#include "VariationDeltas.h"

#include <gui/draw/Affine.h>

#include <td/Color.h>

#include <array>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

struct FT_FaceRec_;
struct FT_Outline_;

namespace gui::draw
{

/// A rectangle of any size, the plane and nothing too.
struct PaintBounds
{
    double left = std::numeric_limits<double>::infinity();
    double top = left;
    double right = -left;
    double bottom = -left;

    static PaintBounds plane();
    double getArea() const { return (right - left) * (bottom - top); } ///< of one that is not empty
    bool isEmpty() const { return !(left < right && top < bottom); }
    void add(const PaintBounds& other);
    void add(td::Point<double> p) { add({p.x, p.y, p.x, p.y}); }
    void intersect(const PaintBounds& other);
    bool contains(const PaintBounds& other) const;
};

/// What a glyph of COLR's version 1 is painted with: a tree, each part of which knows where it is on the target.
struct ColorPaint
{
    enum class Kind : td::BYTE
    {
        Fill,     ///< everywhere
        Outline,  ///< its part is seen within a glyph's outline
        Box,      ///< its part is seen within a parallelogram
        Layers,   ///< its parts, from below to above
        Composite ///< its two parts, backdrop and source
    };

    Kind kind = Kind::Layers;
    PaintBounds bounds; // on the target, around what is seen of it
    ColorFill fill;
    Affine toTarget; // of an outline
    std::uint32_t glyph = 0;
    std::array<td::Point<double>, 4> corners{}; // of a box, on the target
    BlendMode mode = BlendMode::SourceOver;
    std::vector<ColorPaint> parts;
    double drawnArea = 0; // of a whole one: how much there is to draw, those over each other counted each
};

/// A glyph of a font in font units of 26.6 bits, in FreeType's slot until another one is loaded; null when it has no
/// outline. The face's size is the font's own.
FT_Outline_* loadPaintOutline(FT_FaceRec_* pFace, std::uint32_t glyph);

/// Reads paints from a font's COLR table, which may say anything. Changes the face's size and its glyph slot. FreeType
/// reads them since 2.13 only.
class ColorPaintReader
{
public:
    /// A paint that uses more than this is none: others paint themselves, or are made to take hours.
    static constexpr int cMostDepth = 64;
    static constexpr std::size_t cMostPaints = 16384;
    static constexpr double cMostOverEachOther = 256;                // on average
    static constexpr std::size_t cMostPoints = std::size_t(1) << 20; // of outlines, and numbers of gradients

    /// @param table  the font's COLR, not owned
    /// @param coordinates  of a variable font: normalised, -1 to 1, not owned
    ColorPaintReader(FT_FaceRec_* pFace, std::span<const td::BYTE> table, std::span<const float> coordinates,
                     td::Color foreground);

    /// @param toTarget  from font units, y upwards
    /// @return none for a glyph without, and where it is broken, too much, without an end or of an unknown kind
    std::optional<ColorPaint> read(std::uint32_t glyph, const Affine& toTarget);
    /// Whether what was read depends on the foreground.
    bool usesForeground() const { return _usesForeground; }

private:
    using Numbers = std::array<double, 6>;

    bool readGlyph(std::uint32_t glyph, const Affine& toTarget, int depth, ColorPaint& paint);
    bool readPaint(std::size_t at, const Affine& toTarget, int depth, ColorPaint& paint);
    bool readLayers(std::size_t at, const Affine& toTarget, int depth, ColorPaint& paint);
    bool readOutline(std::size_t at, const Affine& toTarget, int depth, ColorPaint& paint);
    bool readComposite(std::size_t at, const Affine& toTarget, int depth, ColorPaint& paint);
    bool readFill(std::size_t at, const Affine& toTarget, ColorPaint& paint);
    Affine transformOf(std::size_t at);
    Numbers numbersAt(std::size_t at, std::string_view kinds, bool isVariable);
    std::vector<ColorFill::Stop> stopsAt(std::size_t at, bool isVariable);
    std::array<float, 4> colorOf(std::uint32_t index, double alpha);
    std::optional<Numbers> boxOf(std::uint32_t glyph);
    std::optional<std::size_t> find(std::size_t records, std::size_t n, std::size_t size, std::uint32_t glyph) const;
    bool isTooMuch() const;

    FT_FaceRec_* _pFace;
    TableBytes _table;
    VariationDeltas _deltas;
    std::vector<td::Color> _palette;
    td::Color _foreground;
    bool _usesForeground = false;
    std::size_t _nPaints = 0, _nPoints = 0;
};

} // namespace gui::draw
