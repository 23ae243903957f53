#pragma once

#include <gui/draw/Path.h>

#include <td/Types.h>

#include <vector>

namespace gui::draw
{

/// How a round line along a path covers quarters of pixels, which are four times as high as wide: exactly along x, at
/// eight heights of each row.
struct StrokeRows
{
    int left = 0; ///< in quarters
    int top = 0;  ///< in pixels, y downwards
    int width = 0;
    int height = 0;
    std::vector<td::BYTE> quarters; ///< row by row from the top

    /// @param path  in pixels  @param mostPixels  wide or high, beyond which there is nothing
    StrokeRows(const Path& path, double lineWidth, int mostPixels);
};

} // namespace gui::draw
