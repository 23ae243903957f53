#pragma once

#include <td/Color.h>
#include <td/ColorID.h>
#include <td/Export.h>

namespace gui
{

/// The channels of the toolkit's named colours. Named colours are opaque; td::ColorID::NoColor, and any value beyond
/// it, is transparent black: all four channels are 0.
class Color
{
public:
    /// The colour as four floats from 0 to 1, each the channel's byte divided by 255.
    GUIGL_API static void getRGBA(td::ColorID id, float& r, float& g, float& b, float& a);

    /// The same colour as one packed word.
    GUIGL_API static td::Color toTDColor(td::ColorID id);
};

} // namespace gui
