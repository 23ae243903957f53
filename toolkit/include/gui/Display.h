#pragma once

#include <td/Export.h>
#include <td/PointAndSize.h>

#include <string>
#include <vector>

namespace gui
{

/// One of the screens that the desktop is shown on.
struct DisplayInfo
{
    std::string name; ///< as the system calls it, its maker's say; may be empty, and two may have the same
    /// Where it is on the desktop that all of them make up, in points; 0 by 0 when the system doesn't say.
    td::PointAndSize<double> bounds;
    float scale = 1;        ///< device pixels per point; on X11 always 1
    double refreshRate = 0; ///< frames per second; 0 when the system doesn't say

    bool operator==(const DisplayInfo&) const = default;
};

/// What the toolkit knows about displays. GUI thread only.
class Display
{
public:
    /// Device pixels per point of the main display; 1 until a window system says otherwise.
    GUIGL_API static float getDefaultBackingScaleFactor();

    /// All that there are now, the main one first; at least one, so that a program without a display finds one as well,
    /// of 1920 by 1080 points. The list is made at the call: ask again when a window was moved or its scale changed.
    GUIGL_API static std::vector<DisplayInfo> getAll();
};

} // namespace gui
