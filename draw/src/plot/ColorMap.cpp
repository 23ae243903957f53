#include <gui/draw/ColorMap.h>

#include <glm/vec3.hpp>

#include <algorithm>
#include <cmath>

namespace gui::draw
{

namespace
{

using Color3 = glm::dvec3;

td::Color toColor(const Color3& color)
{
    const auto toByte = [](double value)
    { return static_cast<unsigned int>(std::lround(255 * std::clamp(value, 0.0, 1.0))); };
    return {toByte(color.x), toByte(color.y), toByte(color.z), 255};
}

template <std::size_t N>
Color3 polynomial(const std::array<Color3, N>& coefficients, double t)
{
    Color3 sum(0);
    for (std::size_t i = N; i-- > 0;)
        sum = sum * t + coefficients[i];
    return sum;
}

constexpr std::array<Color3, 7> cViridis{Color3(0.2777273272234177, 0.005407344544966578, 0.3340998053353061),
                                         Color3(0.1050930431085774, 1.404613529898575, 1.384590162594685),
                                         Color3(-0.3308618287255563, 0.214847559468213, 0.09509516302823659),
                                         Color3(-4.634230498983486, -5.799100973351585, -19.33244095627987),
                                         Color3(6.228269936347081, 14.17993336680509, 56.69055260068105),
                                         Color3(4.776384997670288, -13.74514537774601, -65.35303263337234),
                                         Color3(-5.435455855934631, 4.645852612178535, 26.3124352495832)};
// In steps of 255, by M. Bostock.
constexpr std::array<Color3, 6> cCividis{Color3(-4.54, 32.49, 81.24),       Color3(-35.34, 170.73, 442.36),
                                         Color3(2381.73, 52.82, -2482.43),  Color3(-6402.7, -131.46, 6167.24),
                                         Color3(7024.72, 176.58, -6614.94), Color3(-2710.57, -67.37, 2475.67)};
constexpr std::array<Color3, 6> cTurbo{
    Color3(0.13572138, 0.09140261, 0.10667330),      Color3(4.61539260, 2.19418839, 12.64194608),
    Color3(-42.66032258, 4.84296658, -60.58204836),  Color3(132.13108234, -14.18503333, 110.36276771),
    Color3(-152.94239396, 4.27729857, -89.90310912), Color3(59.28637943, 2.82956604, 27.34824973)};

// Moreland's: straight lines in Msh, polar coordinates of CIELAB, from both ends to a white in the middle.
constexpr Color3 cWhite(0.95047, 1, 1.08883); // D65

double toLinear(double value) { return value > 0.04045 ? std::pow((value + 0.055) / 1.055, 2.4) : value / 12.92; }
double toGamma(double value) { return value > 0.0031308 ? 1.055 * std::pow(value, 1 / 2.4) - 0.055 : 12.92 * value; }

Color3 toMsh(const Color3& rgb)
{
    const double r = toLinear(rgb.x), g = toLinear(rgb.y), b = toLinear(rgb.z);
    const auto f = [](double t) { return t > 0.008856 ? std::cbrt(t) : 7.787 * t + 16.0 / 116; };
    const double x = f((0.4124 * r + 0.3576 * g + 0.1805 * b) / cWhite.x);
    const double y = f((0.2126 * r + 0.7152 * g + 0.0722 * b) / cWhite.y);
    const double z = f((0.0193 * r + 0.1192 * g + 0.9505 * b) / cWhite.z);
    const double l = 116 * y - 16, labA = 500 * (x - y), labB = 200 * (y - z);
    const double m = std::sqrt(l * l + labA * labA + labB * labB);
    return {m, m > 0.001 ? std::acos(l / m) : 0, std::atan2(labB, labA)};
}

Color3 fromMsh(const Color3& msh)
{
    const double l = msh.x * std::cos(msh.y);
    const double labA = msh.x * std::sin(msh.y) * std::cos(msh.z), labB = msh.x * std::sin(msh.y) * std::sin(msh.z);
    const double fy = (l + 16) / 116, fx = fy + labA / 500, fz = fy - labB / 200;
    const auto f = [](double t) { return t > 0.206893 ? t * t * t : (t - 16.0 / 116) / 7.787; };
    const double x = cWhite.x * f(fx), y = cWhite.y * f(fy), z = cWhite.z * f(fz);
    return {toGamma(3.2406 * x - 1.5372 * y - 0.4986 * z), toGamma(-0.9689 * x + 1.8758 * y + 0.0415 * z),
            toGamma(0.0557 * x - 0.2040 * y + 1.0570 * z)};
}

// The hue at the white end, turned so that lightness goes evenly.
double hueAtWhite(const Color3& msh, double whiteM)
{
    if (msh.x >= whiteM)
        return msh.z;
    const double spin = msh.y * std::sqrt(whiteM * whiteM - msh.x * msh.x) / (msh.x * std::sin(msh.y));
    return msh.z > -1.0472 ? msh.z + spin : msh.z - spin; // beyond -60 degrees
}

Color3 diverging(double t)
{
    constexpr double cWhiteM = 88;
    const Color3 cool = toMsh({59.0 / 255, 76.0 / 255, 192.0 / 255}),
                 warm = toMsh({180.0 / 255, 4.0 / 255, 38.0 / 255});
    const Color3& end = t < 0.5 ? cool : warm;
    const double share = t < 0.5 ? 2 * t : 2 - 2 * t;
    const Color3 white(std::max({cool.x, warm.x, cWhiteM}), 0, hueAtWhite(end, std::max({cool.x, warm.x, cWhiteM})));
    return fromMsh(end * (1 - share) + white * share);
}

} // namespace

template <typename Function>
ColorMap ColorMap::fromFunction(const Function& function)
{
    ColorMap map;
    for (std::size_t i = 0; i < cSize; ++i)
        map._colors[i] = toColor(function(static_cast<double>(i) / (cSize - 1)));
    return map;
}

const ColorMap& ColorMap::viridis()
{
    static const ColorMap map = fromFunction([](double t) { return polynomial(cViridis, t); });
    return map;
}

const ColorMap& ColorMap::cividis()
{
    static const ColorMap map = fromFunction([](double t) { return polynomial(cCividis, t) / 255.0; });
    return map;
}

const ColorMap& ColorMap::turbo()
{
    static const ColorMap map = fromFunction([](double t) { return polynomial(cTurbo, t); });
    return map;
}

const ColorMap& ColorMap::coolWarm()
{
    static const ColorMap map = fromFunction(diverging);
    return map;
}

const ColorMap& ColorMap::grey()
{
    static const ColorMap map = fromFunction([](double t) { return Color3(t); });
    return map;
}

ColorMap::ColorMap(std::span<const td::Color> colors)
{
    if (colors.empty())
    {
        *this = grey();
        return;
    }
    for (std::size_t i = 0; i < cSize; ++i)
    {
        const double place = static_cast<double>(i * (colors.size() - 1)) / (cSize - 1);
        const auto first = static_cast<std::size_t>(place);
        const td::Color a = colors[first], b = colors[std::min(first + 1, colors.size() - 1)];
        const double share = place - static_cast<double>(first);
        const auto mix = [share](td::BYTE from, td::BYTE to)
        { return static_cast<unsigned int>(std::lround(from + (to - from) * share)); };
        _colors[i] = {mix(a.red(), b.red()), mix(a.green(), b.green()), mix(a.blue(), b.blue()),
                      mix(a.alpha(), b.alpha())};
    }
}

td::Color ColorMap::getColor(double share) const
{
    if (std::isnan(share))
        return {};
    return _colors[static_cast<std::size_t>(std::lround(std::clamp(share, 0.0, 1.0) * (cSize - 1)))];
}

} // namespace gui::draw
