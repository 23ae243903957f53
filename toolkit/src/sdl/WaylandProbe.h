#pragma once

#include <optional>
#include <vector>

namespace gui
{

/// What a Wayland compositor must have before SDL may be started on it, which crashes without a seat.
struct WaylandProbe
{
    bool hasCompositor = false;
    bool hasSeat = false;
    bool hasShell = false;           ///< windows
    std::vector<float> outputScales; ///< device pixels per point of each output, in the compositor's order

    /// Asks the compositor that the environment names; waits two seconds at most.
    /// @return nothing when there is none, or none that answers
    static std::optional<WaylandProbe> ask();
};

} // namespace gui
