#include "BlendMode.h"

#include <algorithm>
#include <cmath>

namespace gui::draw
{

namespace
{

// How much of a source or backdrop is left: a share that is there anyway, and one of the other's alpha.
struct Share
{
    float constant, ofOther;
};

struct Operator
{
    Share source, backdrop;
};

// All after Xor are like SourceOver where only one of both is.
constexpr std::array<Operator, 12> cOperators{{{{0, 0}, {0, 0}},
                                               {{1, 0}, {0, 0}},
                                               {{0, 0}, {1, 0}},
                                               {{1, 0}, {1, -1}},
                                               {{1, -1}, {1, 0}},
                                               {{0, 1}, {0, 0}},
                                               {{0, 0}, {0, 1}},
                                               {{1, -1}, {0, 0}},
                                               {{0, 0}, {1, -1}},
                                               {{0, 1}, {1, -1}},
                                               {{1, -1}, {0, 1}},
                                               {{1, -1}, {1, -1}}}};
static_assert(cOperators.size() == std::size_t(BlendMode::Xor) + 1);

using Rgb = std::array<float, 3>;

float luminosityOf(const Rgb& c) { return 0.3f * c[0] + 0.59f * c[1] + 0.11f * c[2]; }

float saturationOf(const Rgb& c)
{
    const auto [low, high] = std::minmax({c[0], c[1], c[2]});
    return high - low;
}

// Moved to a luminosity; what would leave 0 to 1 comes nearer to grey.
Rgb withLuminosity(Rgb c, float luminosity)
{
    const float difference = luminosity - luminosityOf(c);
    for (float& value : c)
        value += difference;
    const auto [low, high] = std::minmax({c[0], c[1], c[2]});
    const float l = luminosityOf(c);
    float scale = 1;
    if (low < 0)
        scale = std::min(scale, l / (l - low));
    if (high > 1)
        scale = std::min(scale, (1 - l) / (high - l));
    for (float& value : c)
        value = l + (value - l) * scale;
    return c;
}

Rgb withSaturation(Rgb c, float saturation)
{
    const auto [low, high] = std::minmax({c[0], c[1], c[2]});
    const float lowest = low, width = high - low;
    for (float& value : c)
        value = width > 0 ? (value - lowest) * saturation / width : 0;
    return c;
}

Rgb mixedWhole(BlendMode mode, const Rgb& s, const Rgb& b)
{
    switch (mode)
    {
    case BlendMode::Hue:
        return withLuminosity(withSaturation(s, saturationOf(b)), luminosityOf(b));
    case BlendMode::Saturation:
        return withLuminosity(withSaturation(b, saturationOf(s)), luminosityOf(b));
    case BlendMode::Color:
        return withLuminosity(s, luminosityOf(b));
    default:
        return withLuminosity(b, luminosityOf(s));
    }
}

float hardLight(float s, float b) { return s <= 0.5f ? 2 * s * b : 2 * s + b - 1 - (2 * s - 1) * b; }

float softLight(float s, float b)
{
    if (s <= 0.5f)
        return b - (1 - 2 * s) * b * (1 - b);
    const float d = b <= 0.25f ? ((16 * b - 12) * b + 4) * b : std::sqrt(b);
    return b + (2 * s - 1) * (d - b);
}

float mixed(BlendMode mode, float s, float b)
{
    switch (mode)
    {
    case BlendMode::Screen:
        return s + b - s * b;
    case BlendMode::Overlay:
        return hardLight(b, s);
    case BlendMode::Darken:
        return std::min(s, b);
    case BlendMode::Lighten:
        return std::max(s, b);
    case BlendMode::ColorDodge:
        return b <= 0 ? 0 : s >= 1 ? 1 : std::min(1.0f, b / (1 - s));
    case BlendMode::ColorBurn:
        return b >= 1 ? 1 : s <= 0 ? 0 : 1 - std::min(1.0f, (1 - b) / s);
    case BlendMode::HardLight:
        return hardLight(s, b);
    case BlendMode::SoftLight:
        return softLight(s, b);
    case BlendMode::Difference:
        return std::abs(s - b);
    case BlendMode::Exclusion:
        return s + b - 2 * s * b;
    case BlendMode::Multiply:
        return s * b;
    default:
        return s;
    }
}

Rgb pure(const PremultipliedColor& c)
{
    // Rounding may leave a component above the alpha.
    return {std::min(c[0] / c[3], 1.0f), std::min(c[1] / c[3], 1.0f), std::min(c[2] / c[3], 1.0f)};
}

} // namespace

bool showsSource(BlendMode mode) { return mode > BlendMode::Xor || cOperators[std::size_t(mode)].source.constant > 0; }

bool showsBackdrop(BlendMode mode)
{
    return mode > BlendMode::Xor || cOperators[std::size_t(mode)].backdrop.constant > 0;
}

PremultipliedColor blend(BlendMode mode, const PremultipliedColor& source, const PremultipliedColor& backdrop)
{
    const float sourceAlpha = source[3], backdropAlpha = backdrop[3];
    PremultipliedColor result;
    if (mode <= BlendMode::Xor)
    {
        const Operator& op = cOperators[std::size_t(mode)];
        const float ofSource = op.source.constant + op.source.ofOther * backdropAlpha;
        const float ofBackdrop = op.backdrop.constant + op.backdrop.ofOther * sourceAlpha;
        for (std::size_t i = 0; i < 4; ++i)
            result[i] = source[i] * ofSource + backdrop[i] * ofBackdrop;
        return result;
    }
    if (mode == BlendMode::Plus)
    {
        for (std::size_t i = 0; i < 4; ++i)
            result[i] = std::min(1.0f, source[i] + backdrop[i]);
        return result;
    }
    for (std::size_t i = 0; i < 4; ++i)
        result[i] = source[i] * (1 - backdropAlpha) + backdrop[i] * (1 - sourceAlpha);
    const float both = sourceAlpha * backdropAlpha;
    result[3] += both;
    if (!(both > 0))
        return result;
    const Rgb s = pure(source), b = pure(backdrop);
    const Rgb whole = mode >= BlendMode::Hue ? mixedWhole(mode, s, b) : Rgb();
    for (std::size_t i = 0; i < 3; ++i)
        result[i] += both * (mode >= BlendMode::Hue ? whole[i] : mixed(mode, s[i], b[i]));
    return result;
}

} // namespace gui::draw
