#pragma once

#include "ColorPaint.h"

#include <gui/draw/GlyphImage.h>

#include <cstdint>
#include <vector>

struct FT_LibraryRec_;

namespace gui::draw
{

/// Draws what a glyph is painted with into pixels. What is seen through an outline or a mode is drawn for itself and
/// then put over what is there, so that edges are covered once. Large pictures are drawn in bands, which bounds the
/// memory.
class ColorPicture
{
public:
    /// @param pFace  which the paint was read from; its size is still the font's own
    ColorPicture(FT_LibraryRec_* pLibrary, FT_FaceRec_* pFace)
        : _pLibrary(pLibrary)
        , _pFace(pFace)
    {
    }

    /// @param paint  in pixels, y downwards, at most some thousands wide and high
    void draw(const ColorPaint& paint, GlyphImage& image);

private:
    /// Of pixels, those on the right and lower side not in it.
    struct Box
    {
        int left, top, right, bottom;

        static Box around(const PaintBounds& bounds);
        Box intersected(const Box& other) const;
        bool isEmpty() const { return left >= right || top >= bottom; }
        std::size_t getWidth() const { return static_cast<std::size_t>(right - left); }
        std::size_t getSize() const { return getWidth() * static_cast<std::size_t>(bottom - top); }
    };

    struct Layer
    {
        explicit Layer(const Box& where)
            : box(where)
            , pixels(where.getSize())
        {
        }
        PremultipliedColor* at(int x, int y)
        {
            return &pixels[static_cast<std::size_t>(y - box.top) * box.getWidth() +
                           static_cast<std::size_t>(x - box.left)];
        }

        Box box;
        std::vector<PremultipliedColor> pixels;
    };

    void paint(const ColorPaint& paint, Layer& layer);
    void paintClipped(const ColorPaint& paint, const Box& box, Layer& layer);
    /// @param covered  how far the box's pixels are; null for all
    static void putFill(const ColorFill& fill, const Box& box, const td::BYTE* covered, Layer& layer);
    void paintComposite(const ColorPaint& paint, const Box& box, Layer& layer);
    /// How far an outline or a box covers pixels, row by row from the top.
    std::vector<td::BYTE> coverageOf(const ColorPaint& paint, const Box& box) const;

    FT_LibraryRec_* _pLibrary;
    FT_FaceRec_* _pFace;
};

} // namespace gui::draw
