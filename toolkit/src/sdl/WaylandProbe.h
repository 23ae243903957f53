#pragma once

#include <optional>

namespace gui
{

/// What a Wayland compositor must have before SDL may be started on it, which crashes without a seat.
struct WaylandProbe
{
    bool hasCompositor = false;
    bool hasSeat = false;
    bool hasShell = false; ///< windows
    float outputScale = 1; ///< device pixels per point of the first output

    /// Asks the compositor that the environment names; waits two seconds at most.
    /// @return nothing when there is none, or none that answers
    static std::optional<WaylandProbe> ask();
};

} // namespace gui
