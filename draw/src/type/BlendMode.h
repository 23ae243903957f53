#pragma once

#include <td/Types.h>

#include <array>
#include <cstddef>

namespace gui::draw
{

/// Red, green, blue and alpha from 0 to 1, the three times the alpha.
using PremultipliedColor = std::array<float, 4>;

/// How a source is put over a backdrop: Porter and Duff's operators, then the modes that mix colours. In the order in
/// which fonts number them.
enum class BlendMode : td::BYTE
{
    Clear,
    Source,
    Backdrop,
    SourceOver,
    BackdropOver,
    SourceIn,
    BackdropIn,
    SourceOut,
    BackdropOut,
    SourceAtop,
    BackdropAtop,
    Xor,
    Plus,
    Screen,
    Overlay,
    Darken,
    Lighten,
    ColorDodge,
    ColorBurn,
    HardLight,
    SoftLight,
    Difference,
    Exclusion,
    Multiply,
    Hue,
    Saturation,
    Color,
    Luminosity
};
constexpr std::size_t cNumberOfBlendModes = 28;

/// Where a mode leaves something of what is alone there.
bool showsSource(BlendMode mode);
bool showsBackdrop(BlendMode mode);

/// By the formulas of W3C's "Compositing and Blending Level 1".
PremultipliedColor blend(BlendMode mode, const PremultipliedColor& source, const PremultipliedColor& backdrop);

} // namespace gui::draw
