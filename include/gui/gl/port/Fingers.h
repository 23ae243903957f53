#pragma once

#include "HostedView.h"

#include <td/Export.h>
#include <td/Point.h>

#include <span>

namespace gui::gl
{

/// Fingers on a screen, as a surface tells them to its client: one is the left button of a pointer. A second one lets
/// it go and begins a pinch, after which there is no button before all fingers are up.
class GUIGL_API Fingers
{
public:
    /// Which fingers are there has changed, or where they are.
    /// @param down  where those that are down are, in points of the view, the first that came first; of more than two
    ///              the first two count
    void change(std::span<const td::Point<double>> down, unsigned int modifiers, const SharedClient& pClient);

private:
    td::Point<double> _point;  // of the only one, the last time
    double _firstDistance = 0; // of two; 0 when there are not two
    bool _isDown = false;      // as a button
    bool _isPinch = false;     // until all are up
};

} // namespace gui::gl
