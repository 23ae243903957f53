#pragma once

#include <td/Export.h>

/// How far the wheel and the magnification gesture go. An application may change them before it uses them.
namespace zav
{

GUIGL_API extern double s_zoomIncrement;        ///< percent of zoom per wheel unit; 1.2
GUIGL_API extern double s_scrollAccelleration;  ///< factor on the wheel's scroll distances; 1.5
GUIGL_API extern double s_zoomGestureReduction; ///< divisor of the gesture's magnification; 50
GUIGL_API extern double s_wheelUnitsPerNotch;   ///< wheel units of one notch of a mouse wheel, on X11 and Wayland; 10

} // namespace zav
