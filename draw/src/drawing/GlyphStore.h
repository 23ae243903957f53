#pragma once

#include "PictureAtlas.h"
#include "ShapeTables.h"

#include <gui/draw/Typeface.h>

#include <cstdint>
#include <functional>
#include <map>
#include <span>
#include <tuple>
#include <unordered_map>
#include <vector>

namespace gui::draw
{

/// The glyphs that a drawing's texts have in its tables, each there once however often it is drawn: outlines, and
/// pictures of those that are small on the screen.
class GlyphStore
{
public:
    /// Of stroked outlines, in em.
    static constexpr double cStrokeStep = 0x1p-24;
    /// The largest letters that have pictures, in pixels per em.
    static constexpr double cLargest = 24;

    struct Glyph
    {
        std::uint32_t number = 0;
        bool isEmpty = true; // there is nothing to see
    };

    /// Adds an outline when it is not there yet. @param isStroked  for a line along it instead of its inside
    const Glyph& get(const Typeface& face, std::uint32_t glyph, bool isStroked, ShapeBuilder& builder,
                     ShapeTables& tables);
    /// The same of one size, which may have a picture. @param size, lineWidth  in points
    Glyph getSized(const Typeface& face, std::uint32_t glyph, double size, double lineWidth, ShapeBuilder& builder,
                   ShapeTables& tables);

    /// The parts of a glyph in colour: its layers, or a picture. @param size  in points; 0 when it is none of these
    /// @param foreground  of what has the text's colour in a picture
    void getColored(const Typeface& face, std::uint32_t glyph, double size, td::Color foreground, bool isStroked,
                    ShapeBuilder& builder, ShapeTables& tables, std::vector<std::uint32_t>& numbers);
    /// The same glyph where the text has another colour; the same number where that makes no difference.
    std::uint32_t recolored(std::uint32_t number, td::Color foreground, ShapeTables& tables);

    /// Whether the scale is another one than before: then there is no picture any more.
    bool setScale(double pixelsPerPoint, ShapeTables& tables);

    /// How a picture came out.
    enum class Result : td::BYTE
    {
        Drawn,
        Impossible, ///< its outline is drawn for ever
        NoRoom      ///< for now
    };
    /// Draws the picture of a glyph that waits for one. @param cost  is what it took, in microseconds or so
    /// @param pEvicted  null when none may go; else those that went, which wait again, are added to it
    Result drawPicture(std::uint32_t number, ShapeTables& tables, double& cost, std::vector<std::uint32_t>* pEvicted);

    std::size_t getNumberOfSized() const { return _sized.size(); }
    /// Gives back those of one size that aren't used. @param areUsed  by number
    void sweep(const std::vector<bool>& areUsed, ShapeTables& tables);

    PictureAtlas& getPictures() { return _pictures; }
    PictureAtlas& getColoredPictures() { return _coloredPictures; }
    PictureAtlas& atlasOf(const GlyphPicture& picture) { return picture.isColored() ? _coloredPictures : _pictures; }
    void clear();

private:
    // Face, glyph, size, line width, and the foreground of a picture that has it, else 0.
    using Key = std::tuple<std::uint64_t, std::uint32_t, float, float, std::uint32_t>;

    struct KeyHash
    {
        std::size_t operator()(const Key& key) const
        {
            const auto [face, glyph, size, lineWidth, foreground] = key;
            std::size_t hash = face;
            for (const std::size_t part :
                 {std::size_t(glyph), std::hash<float>()(size), std::hash<float>()(lineWidth), std::size_t(foreground)})
                hash = (hash ^ part) * 0x9e3779b97f4a7c15U;
            return hash ^ hash >> 32U;
        }
    };

    struct Sized
    {
        Typeface face;
        Key key;
        bool isColored;
    };

    std::uint32_t getColoredPicture(const Typeface& face, const Key& key, ShapeTables& tables);
    Result drawColored(std::uint32_t number, const Sized& sized, ShapeTables& tables,
                       std::vector<std::uint32_t>* pEvicted);
    static void makeWait(std::span<const std::uint32_t> numbers, ShapeTables& tables);

    GlyphPicture beginningOf(const Sized& sized) const;

    std::map<std::tuple<std::uint64_t, std::uint32_t, bool>, Glyph> _glyphs; // by face, glyph and whether stroked
    std::unordered_map<Key, std::uint32_t, KeyHash> _numbers;                // of those of one size
    std::unordered_map<std::uint32_t, Sized> _sized;                         // by number
    double _scale = 0;                                                       // pixels per point
    std::map<std::tuple<std::uint64_t, std::uint32_t, std::uint32_t>, std::uint32_t> _painted; // by colour
    PictureAtlas _pictures{{}};
    PictureAtlas _coloredPictures{{.nBytes = 4, .pageHeight = 256, .nMostPages = 16, .border = 8}};
    ShapeGeometry _geometry;
};

} // namespace gui::draw
