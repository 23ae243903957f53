#pragma once

#include <td/Point.h>

#include <string>
#include <vector>

namespace gui
{

/// What a user dragged from another program and let go over a view: files, or a text. Copies of what the other program
/// has; nothing of it is to be moved away.
struct Drop
{
    std::vector<std::string> files; ///< paths, absolute, in the other program's order; as the file system has them
    std::string text;               ///< UTF-8, well-formed; empty when there are files
    td::Point<double> place;        ///< where it was let go, in the view's own coordinates
    unsigned int modifiers = 0;     ///< mask of KeyModifier bits

    bool operator==(const Drop&) const = default;
};

} // namespace gui
