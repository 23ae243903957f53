#pragma once

#include <td/Color.h>
#include <td/Export.h>
#include <td/Point.h>

#include <concepts>
#include <optional>
#include <vector>

namespace gui::draw
{

/// A colour at a place of a gradient.
struct GradientStop
{
    double offset = 0; ///< 0 at the beginning, 1 at the end; what is less than that of the stop before counts as that
    td::Color color;
};

/// What a gradient is before its beginning and after its end.
enum class Spread : td::BYTE
{
    Pad,     ///< the colours that it begins and ends with
    Reflect, ///< there and back again
    Repeat   ///< the same once more
};

/// Colours along a line, as SVG's linearGradient. Points are in the coordinates of the path that is painted.
struct LinearGradient
{
    td::Point<double> from; ///< where the offset is 0
    td::Point<double> to;   ///< and 1; the last colour everywhere when it is the same point
    std::vector<GradientStop> stops;
    Spread spread = Spread::Pad;
};

/// Colours around a point, as SVG's radialGradient.
struct RadialGradient
{
    td::Point<double> center;
    double radius = 1; ///< where the offset is 1; the last colour everywhere when it is not above 0
    std::vector<GradientStop> stops;
    Spread spread = Spread::Pad;
    std::optional<td::Point<double>> focus{}; ///< where the offset is 0; the centre, or what is within the circle
};

/// What a shape is painted with: a colour, or a gradient. Whatever makes a td::Color makes a paint:
///
///     drawing.fill(path, "#d04020");
///     drawing.fill(path, LinearGradient{{0, 0}, {0, 100}, {{0, "#f0e0c0"}, {1, "#806040"}}});
///
/// Between stops the four components of their colours are mixed as they are, as SVG has it. A gradient of no stop
/// paints nothing, one of one stop a colour.
class GUIGL_API Paint
{
public:
    Paint() = default; ///< nothing
    /// The same everywhere.
    template <std::convertible_to<td::Color> Color>
    Paint(const Color& color)
        : _color(color)
    {
    }
    /// The gradient is copied.
    Paint(const LinearGradient& gradient);
    /// The gradient is copied.
    Paint(const RadialGradient& gradient);

    bool isGradient() const { return _isGradient; }
    bool isLinear() const { return _isLinear; }
    td::Color getColor() const { return _color; } ///< when it is no gradient
    /// Whether nothing shines through.
    bool isOpaque() const;

    /// What it was made from, as a radial gradient has it; a linear one goes from the focus to the centre.
    const RadialGradient& getGradient() const { return _gradient; }

private:
    td::Color _color;
    bool _isGradient = false;
    bool _isLinear = false;
    RadialGradient _gradient;
};

} // namespace gui::draw
