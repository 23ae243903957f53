#pragma once

#include <gui/draw/Path.h>

#include <td/Types.h>

#include <vector>

namespace gui::draw
{

/// How the inside of a path covers the cells of a grid, whose sides are 1: exactly, but for curves, which are lines at
/// most a 64th of a cell away. Inside is where the path winds around, as letters have it; where parts of the path share
/// a cell, what they cover of it is added up.
struct FillRows
{
    int left = 0; ///< in cells
    int top = 0;  ///< in cells, y downwards
    int width = 0;
    int height = 0;
    std::vector<td::BYTE> cells; ///< row by row from the top

    /// @param mostWidth, mostHeight  in cells, beyond which there is nothing
    FillRows(const Path& path, int mostWidth, int mostHeight);
};

} // namespace gui::draw
