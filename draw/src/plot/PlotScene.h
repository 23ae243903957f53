#pragma once

#include <gui/draw/ColorMap.h>
#include <gui/draw/Marker.h>

#include <td/Color.h>
#include <td/RectNormalized.h>

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace gui::draw
{

/// What a plot's picture consists of but for its texts, in device pixels from the picture's top left corner: a table
/// for the GPU, and passes over it.
class PlotScene
{
public:
    using Texel = std::array<std::uint32_t, 4>;
    using Rect = td::RectNormalized<double>;

    /// A piece of a line, or a side of an area.
    struct Segment
    {
        double x0, y0, x1, y1;
        double along = 0; ///< the line's length before it, from where dashes begin
    };
    /// A piece of an area, between two such sides.
    struct Slab
    {
        double x0, low0, high0, x1, low1, high1;
    };
    /// Colours of an area from one y to another.
    struct Shade
    {
        td::Color from, to;
        double fromY = 0, toY = 1;
    };

    /// Markers that the GPU has once and places by itself, until their series changes: a texel for each, with its place
    /// from 0 to 1 in a rectangle, and its colour.
    struct Cloud
    {
        std::uint64_t id = 0;
        std::size_t version = 0;
        bool isLogarithmicX = false, isLogarithmicY = false;
        double lowX = 0, lowY = 0, lengthX = 1, lengthY = 1; // of the rectangle, in places of the axes
        td::Color color;
        std::vector<Texel> texels;
    };

    enum class Kind : td::BYTE
    {
        Marks,
        Line,
        Area,
        Cloud,
        Grid
    };

    /// A rectangle of cells.
    struct GridLook
    {
        std::uint64_t id = 0;
        std::size_t version = 0;
        const ColorMap* pMap = nullptr;
        std::span<const float> values;
        std::size_t columns = 0, rows = 0;
        double low = 0, high = 1;
        bool isSmooth = false;
        int nSamples = 1; ///< in a pixel, each way
        std::array<bool, 2> areLogarithmic{};
        std::array<double, 4> toPlace{}; ///< from pixels: factors of x and y, and what is added
        std::array<double, 4> toCell{};  ///< from values to cells
    };

    struct Pass
    {
        Kind kind;
        std::uint32_t first; ///< texel of the first quad
        std::uint32_t count; ///< of quads
        Rect clip;
        float halfWidth = 0;
        Shade shade;
        std::vector<float> dashes{};
        const Cloud* pCloud = nullptr;
        std::array<double, 4> toPixels{}; ///< of a cloud: factors of x and y, and what is added
        Marker marker = Marker::None;
        double size = 0, edgeWidth = 0;
        td::Color edge{};
        Rect box{};
        std::shared_ptr<const GridLook> pGrid{};
    };

    void clear();
    bool isEmpty() const { return _passes.empty(); }

    /// Of what is added from now on.
    void setClip(const Rect& clip) { _clip = clip; }
    const Rect& getClip() const { return _clip; }

    void addRect(const Rect& rect, td::Color color);
    void addRoundRect(const Rect& rect, double radius, td::Color color);
    /// Dashes along the longer side. @param period  of a dash and a gap, in pixels
    void addDashedRect(const Rect& rect, double period, td::Color color);
    void addMark(Marker marker, double x, double y, double size, td::Color color, double edgeWidth = 0,
                 td::Color edge = {});

    /// Segments in the order of x, of any gaps. @param dashes  lengths in pixels, in turn; empty for none
    void addLine(const std::vector<Segment>& segments, double halfWidth, td::Color color,
                 const std::vector<double>& dashes = {}, bool isSorted = true);
    /// Slabs in the order of x.
    void addArea(const std::vector<Slab>& slabs, const Shade& shade);

    /// @param cloud  must live as long as this is drawn
    void addCloud(const Cloud& cloud, const std::array<double, 4>& toPixels, Marker marker, double size,
                  double edgeWidth, td::Color edge);

    /// @param look  its map and values must live as long as this is drawn
    void addGrid(const Rect& box, const GridLook& look);

    const std::vector<Texel>& getTexels() const { return _texels; }
    const std::vector<Pass>& getPasses() const { return _passes; }

    static std::uint32_t bits(double value) { return std::bit_cast<std::uint32_t>(static_cast<float>(value)); }
    /// The shaders' number of a marker.
    static std::uint32_t shapeOf(Marker marker);

private:
    struct Tile
    {
        int left, right; // columns of pixels
        double top, bottom;
        std::uint32_t first, end;
        std::uint32_t own = 0; // the number of the piece whose pixels these are, from 1 on; 0 for all of them
    };

    void addMarkRecord(double x, double y, double halfWidth, double halfHeight, std::uint32_t shape, td::Color color,
                       td::Color edge, double number);
    Pass& beginPass(Kind kind);
    template <typename Piece, typename Extent>
    void addTiles(const std::vector<Piece>& pieces, double reach, std::size_t base, std::uint32_t stride,
                  const Extent& extentOf);
    void addTile(const Tile& tile, std::size_t base, std::uint32_t stride);

    std::vector<Texel> _texels;
    std::vector<Pass> _passes;
    std::vector<Tile> _tiles;
    Rect _clip;
};

} // namespace gui::draw
