#pragma once

#include <td/Types.h>

namespace gui
{

/// What a control tells the layout about the cell it needs.
struct CellInfo
{
    unsigned short minWidth = 0;      ///< points
    unsigned short minHeight = 0;     ///< points
    td::BYTE resizesHorizontally = 0; ///< 1 when the control takes the width that is left over
    td::BYTE resizesVertically = 0;   ///< 1 when the control takes the height that is left over
};

static_assert(sizeof(CellInfo) == 6);

} // namespace gui
