#pragma once

#include <td/Types.h>

namespace gui
{

/// The pointer's shapes.
class Cursor
{
public:
    /// The shape of the pointer.
    enum class Type : td::BYTE
    {
        Default = 1, ///< the arrow; what a view shows at first
        Pan = 3,     ///< shown while the content of a view is being moved
        Text = 4     ///< the bar that stands over text that can be edited or selected
    };
};

} // namespace gui
