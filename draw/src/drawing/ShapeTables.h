#pragma once

#include "ShapeGeometry.h"
#include "Table.h"

#include <gui/draw/Affine.h>
#include <gui/draw/Paint.h>

#include <td/RectNormalized.h>

#include <array>
#include <cstdint>

namespace gui::draw
{

/// What the drawing program knows of a shape, as the shaders read it: six texels.
struct ShapeRecord
{
    std::array<std::uint32_t, 2> originX{}; // low and high words, in the drawing's units
    std::array<std::uint32_t, 2> originY{};
    std::array<float, 4> linear{1, 0, 0, 1}; // of its transform, by columns
    std::int32_t shift = 0;                  // the step's power of two over the unit's
    float step = 1;
    std::uint32_t flags = 0;
    std::uint32_t order = 0;
    std::uint32_t rgba = 0; // or where the gradient stands among the numbers
    std::uint32_t nodes = 0;
    std::uint32_t nNodes = 0;
    std::uint32_t points = 0;
    float halfWidth = 0;
    float miterLimit = 1;
    std::int32_t dashes = -1;  // where the pattern stands among the numbers
    std::uint32_t lengths = 0; // of a stroke without dashes ShapeGeometry::leastOfLeaves
    std::uint32_t links = 0;   // of a stroke ShapeGeometry::mostOfLeaves
    std::uint32_t nLinks = 0;  // along edges, and 65536 times as many at corners; of a stroke leastOfOthers
    float stepsPerUnit = 1;
    float reach = 1;
};
static_assert(sizeof(ShapeRecord) == 96);

/// The picture that a glyph of one size is drawn with instead of its outline.
struct GlyphPicture
{
    /// Bits of place: what there is, and where a picture begins in the atlas: x in 12 bits, y in the next 12.
    static constexpr std::uint32_t cIsThere = 1U << 31, cIsWaited = 1U << 29;
    /// It is one in colour, or would be, and the record's step and origin are those of its pixels.
    static constexpr std::uint32_t cIsColored = 1U << 28;
    /// There is none, but the outline has a colour of its own: box.
    static constexpr std::uint32_t cIsPaint = 1U << 30;

    std::uint32_t place = 0;
    std::uint32_t box = 0; // width, height, and unless it is in colour left and top, both more by 128; a byte each

    bool isThere() const { return (place & cIsThere) != 0; }
    bool isWaited() const { return (place & cIsWaited) != 0; } ///< it may be made
    bool isColored() const { return (place & cIsColored) != 0; }
    int getY() const { return static_cast<int>(place >> 12 & 4095U); }
    bool operator==(const GlyphPicture&) const = default;
};

/// An outline that texts draw, as the shaders read it: two texels.
struct GlyphRecord
{
    std::uint32_t nodes = 0;
    std::uint32_t nNodes = 0;
    std::uint32_t points = 0;
    float step = 1;                // in em
    std::array<float, 2> origin{}; // of its points, from the pen, in em
    GlyphPicture picture;
};
static_assert(sizeof(GlyphRecord) == 32);

/// Where the glyphs of a text are, in its own unit.
struct GlyphStyle
{
    double size = 0;             // of an em
    td::Point<double> offset;    // in points, downwards
    double cosine = 1, sine = 0; // of the angle that it is turned by, counterclockwise as it is seen
    bool isInPoints = true;
    double lineWidth = 0; // of strokes; 0 for fills
};

/// The bits of ShapeRecord::flags; from bit 8 on two for the cap, then two for the join.
enum ShapeFlag : std::uint32_t
{
    IsVisible = 1,
    IsStroke = 2,
    IsWidthInPoints = 4,
    AreDashesInPoints = 8,
    IsOpaque = 16,
    IsMoved = 32,      // its transform is more than a translation
    IsLinked = 64,     // it has links
    HasGradient = 128, // instead of a colour
    CapShift = 8,
    JoinShift = 10,
    AreGlyphs = 4096, // a text, in points if its width would be
    HasImage = 8192,  // instead of a colour
    IsFrame = 16384,  // of a text: on whole pixels in x as well
    IsSymbol = 32768  // no text: on no whole pixels
};

/// What the program is to know how to draw; bits, as in the shaders.
enum ShapeFeature : unsigned int
{
    HasFills = 1,
    HasStrokes = 2,
    HasRound = 4,
    HasCaps = 8,
    HasDashes = 16,
    HasLinks = 32,
    HasGradients = 64,
    HasFar = 128,
    HasGlyphs = 256,
    HasImages = 512,
    HasPictures = 1024, // of glyphs
    HasHalos = 2048,    // of glyphs, which are one shape
    HasColors = 4096,   // pictures of glyphs in colour
    HasPlaced = 8192    // glyphs whose places stand among the numbers
};

/// Some records in a row.
struct TableRange
{
    std::uint32_t first = 0;
    std::uint32_t count = 0;
};

/// Where the parts of a shape stand in the tables.
struct ShapePlaces
{
    std::uint32_t record = 0;
    TableRange points, nodes, elements, longElements, numbers, links, gradient;
    TableRange glyphs;            // that are its own
    std::uint32_t nTriangles = 0; // of a fill: the last of its elements
};

/// Everything that shapes consist of in GL memory, and the same on this side.
class ShapeTables
{
public:
    ShapeTables();

    /// Takes a record for a new shape. @param flags  ShapeFlag
    void addShape(ShapePlaces& places, std::uint32_t flags, std::uint32_t order);
    void removeShape(ShapePlaces& places);
    /// Replaces what a shape consists of; pStroke is null for a fill.
    void setGeometry(ShapePlaces& places, const ShapeGeometry& geometry, const Stroke* pStroke);
    /// @param origin, step  of the shape, in which a gradient is kept
    void setPaint(ShapePlaces& places, const Paint& paint, td::Point<double> origin, double step);
    /// Whether a shape is painted with this already, as far as colours go.
    bool hasColor(const ShapePlaces& places, const Paint& paint) const;
    /// Paints a shape with an image. @param rect  where all of it is, in the coordinates of the shape
    void setImage(ShapePlaces& places, const td::RectNormalized<double>& rect, td::Point<double> origin, double step);
    /// Adds an outline, in em about the pen, for good.
    std::uint32_t addGlyph(const ShapeGeometry& geometry);
    /// The same outline again, for a glyph of one size. @return its number
    std::uint32_t copyGlyph(std::uint32_t glyph);
    void removeCopy(std::uint32_t glyph) { _glyphs.giveBack(glyph, 1); }
    void setPicture(std::uint32_t glyph, const GlyphPicture& picture);
    /// Adds a glyph that is a picture in colour, and says where it is. @param step, left, top  in em, from the pen
    std::uint32_t addColoredGlyph();
    void setColoredPicture(std::uint32_t glyph, const GlyphPicture& picture, double step, double left, double top);
    /// Around an outline, in em from the pen.
    td::RectNormalized<double> getBoxOf(std::uint32_t glyph) const;
    const GlyphPicture& getPicture(std::uint32_t glyph) const { return _glyphs[glyph].picture; }
    /// Replaces the outline that a text has for itself alone. @return its number
    std::uint32_t setOwnGlyph(ShapePlaces& places, const ShapeGeometry& geometry);
    /// Replaces what a text consists of. @param elements  of shape 0  @param step  of stroked outlines, in em
    void setGlyphs(ShapePlaces& places, std::span<const LongElement> elements, const GlyphStyle& style, double step);
    /// The same of glyphs that are turned, or know their neighbours.
    /// @param turns  for each glyph its place, cosine and sine
    /// @param neighbours  for each how many follow, and these: each the number of an element less its own, in their
    /// order; empty for no halo
    void setPlacedGlyphs(ShapePlaces& places, std::span<const LongElement> elements, const GlyphStyle& style,
                         double step, std::span<const float> turns, std::span<const std::uint32_t> neighbours);
    /// @param turns  for each glyph its place, cosine and sine; not shown where both are 0
    void setTurns(const ShapePlaces& places, std::span<const float> turns)
    {
        _numbers.set(places.numbers.first, turns);
    }
    /// Draws another glyph in the place of one of a text's. @param i  which of the text's
    void setGlyph(const ShapePlaces& places, std::uint32_t i, std::uint32_t glyph);
    void setFlag(const ShapePlaces& places, ShapeFlag flag, bool isOn);
    void setOrder(const ShapePlaces& places, std::uint32_t order);
    /// Where the shape is: its origin, moved by a transform. @return false when the units are too small for that
    bool setPlace(const ShapePlaces& places, td::Point<double> origin, double step, const Affine& transform);
    /// The records of shapes that a fill shares edges with, then of those that it shares corners with.
    void setLinks(ShapePlaces& places, std::span<const std::uint32_t> records, std::size_t nEdges);

    /// By what power of two units must be larger for a point to have room, as the middle of a view does that is much
    /// farther from the origin than all shapes are; mostly 0.
    int getCoarseness(td::Point<double> point) const;
    /// A model coordinate in units, or in so much larger ones, held within the room there is: low and high word.
    std::array<std::uint32_t, 2> toUnits(double coordinate, int coarseness = 0) const;

    /// All that there has been since the last clear, in shapes and in glyphs.
    unsigned int getFeatures() const { return _features; }
    unsigned int getGlyphFeatures() const { return _glyphFeatures; }

    void clear();
    /// Sends what has changed.
    bool upload();
    /// To units from 0 on: records, elements, points, nodes, numbers, links, glyphs; and long elements.
    void bind() const;

    const Table<LongElement>& getLongElements() const { return _longElements; }
    /// With those that nobody has.
    std::size_t getNumberOfElements() const { return _elements.size(); }
    const Table<ShapeRecord>& getRecords() const { return _records; }
    const Table<GridPoint>& getPoints() const { return _points; }
    const Table<EdgeNode>& getNodes() const { return _nodes; }
    const Table<float>& getNumbers() const { return _numbers; }
    /// Brings elements into the order in which shapes are drawn.
    void reorderElements(std::span<ShapePlaces* const> shapes);

private:
    void giveBack(ShapePlaces& places);
    void setPaintValues(ShapePlaces& places);
    void giveBackElements(ShapePlaces& places);
    void addElements(ShapePlaces& places, const ShapeGeometry& geometry);
    /// @return whether there are some
    bool addDashes(ShapePlaces& places, const ShapeGeometry& geometry, const Stroke& stroke);
    /// Chooses the unit so that numbers of this size have room; all places are to be set again when it answers true.
    bool makeRoomFor(double largest);

    Table<ShapeRecord> _records;
    Table<Element> _elements;
    Table<LongElement> _longElements;
    Table<GridPoint> _points;
    Table<EdgeNode> _nodes;
    Table<float> _numbers;
    Table<std::uint32_t> _links;
    Table<GlyphRecord> _glyphs;
    int _unit = 0;     // a power of two
    double _scale = 1; // its inverse, or 0 where that is no number
    double _room = 0;  // what is smaller has some; 0 while there is no unit
    unsigned int _features = 0;
    unsigned int _glyphFeatures = 0;
    std::vector<Element> _ordered;
    std::vector<LongElement> _patched, _placed;
    std::vector<float> _values;
};

} // namespace gui::draw
