#pragma once

#include "Drawing.h"
#include "Lettering.h"

#include <gui/draw/Drawing.h>

#include <string>
#include <vector>

namespace gallery
{

/// A page of 960 by 600 points with panels, shapes and captions, as large as it fits into the middle of a frame.
class Board
{
public:
    static constexpr td::Size<double> cSize{960, 600};

    /// From the page's points to the frame's.
    static gui::draw::Affine toFrame(const Frame& frame);

    [[nodiscard]] bool init();

    /// Cells all over the page, as makeGrid has them.
    static std::vector<Cell> makeCells(int nColumns, int nRows);

    /// A panel, over what was added before.
    void addPanel(const Cell& cell);
    /// @param place  of the baseline's beginning, middle or end, by the alignment
    void addCaption(gui::draw::Drawing::Point place, const std::string& text,
                    td::BYTE alignment = gui::gl::Font::cCentre);

    void draw(const Frame& frame);

    gui::draw::Drawing drawing; ///< in the page's points

private:
    struct Caption
    {
        gui::draw::Drawing::Point place;
        std::string text;
        td::BYTE alignment;
    };

    Backdrop _backdrop;
    Lettering _lettering{{{"sans", 12}}};
    std::vector<Caption> _captions;
};

} // namespace gallery
