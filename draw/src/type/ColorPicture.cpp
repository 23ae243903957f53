#include "ColorPicture.h"

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <span>
#include <type_traits>
#include <utility>

namespace gui::draw
{

namespace
{

// Of all layers of a band, in pixels: 32 MiB.
constexpr std::size_t cBandPixels = std::size_t(1) << 21;

// A box's edge on a pixel's may be off by rounding.
constexpr double cSlack = 1.0 / 256;

// Beyond any picture: in pixels, and in FreeType's parts of them.
constexpr double cFarPixel = 1e8;
constexpr double cFarPoint = 1 << 22;

void putOver(const PremultipliedColor& source, float coverage, PremultipliedColor& to)
{
    const float rest = 1 - coverage * source[3];
    for (std::size_t i = 0; i < 4; ++i)
        to[i] = coverage * source[i] + rest * to[i];
}

// How many layers there are at once beside the one that a paint is drawn into.
std::size_t layersOf(const ColorPaint& paint)
{
    if (paint.parts.empty())
        return 0;
    if (paint.kind == ColorPaint::Kind::Composite)
        return std::max(1 + layersOf(paint.parts[0]), 2 + layersOf(paint.parts[1]));
    std::size_t n = 0;
    for (const ColorPaint& part : paint.parts)
        n = std::max(n, layersOf(part));
    const bool isLayer = paint.kind != ColorPaint::Kind::Layers && paint.parts.front().kind != ColorPaint::Kind::Fill;
    return n + (isLayer ? 1 : 0);
}

bool areClose(const PremultipliedColor& a, const PremultipliedColor& b)
{
    constexpr float cClose = 1.0f / 16;
    return std::abs(a[0] - b[0]) < cClose && std::abs(a[1] - b[1]) < cClose && std::abs(a[2] - b[2]) < cClose &&
           std::abs(a[3] - b[3]) < cClose;
}

void add(const PremultipliedColor& color, float share, PremultipliedColor& sum)
{
    for (std::size_t i = 0; i < 4; ++i)
        sum[i] += share * color[i];
}

// A fill's rows of pixels, each the mean of its corners: of more where these differ, as a gradient may end abruptly.
class PaintRows
{
public:
    PaintRows(const ColorFill& fill, int left, int right)
        : _fill(fill)
        , _left(left)
        , _upper(static_cast<std::size_t>(right - left) + 1, fill.at({}))
        , _lower(_upper)
    {
    }

    // From the top down, each row once.
    void moveTo(int y)
    {
        if (_fill.isSolid())
            return;
        if (y != _y + 1)
            findCorners(y, _lower);
        std::swap(_upper, _lower);
        findCorners(y + 1, _lower);
        _y = y;
    }

    PremultipliedColor at(std::size_t i) const
    {
        const PremultipliedColor& first = _upper[i];
        if (_fill.isSolid())
            return first;
        PremultipliedColor mean{};
        if (areClose(first, _upper[i + 1]) && areClose(first, _lower[i]) && areClose(first, _lower[i + 1]))
        {
            for (const PremultipliedColor* p : {&first, &_upper[i + 1], &_lower[i], &_lower[i + 1]})
                add(*p, 0.25f, mean);
            return mean;
        }
        for (int row = 0; row < 4; ++row)
            for (int column = 0; column < 4; ++column)
                add(_fill.at({_left + static_cast<double>(i) + 0.125 + 0.25 * column, _y + 0.125 + 0.25 * row}),
                    1.0f / 16, mean);
        return mean;
    }

private:
    void findCorners(int y, std::vector<PremultipliedColor>& corners) const
    {
        for (std::size_t i = 0; i < corners.size(); ++i)
            corners[i] = _fill.at({_left + static_cast<double>(i), double(y)});
    }

    const ColorFill& _fill;
    int _left;
    int _y = std::numeric_limits<int>::min();
    std::vector<PremultipliedColor> _upper, _lower; // corners
};

} // namespace

ColorPicture::Box ColorPicture::Box::around(const PaintBounds& bounds)
{
    const auto limited = [](double value) { return static_cast<int>(std::clamp(value, -cFarPixel, cFarPixel)); };
    if (bounds.isEmpty())
        return {0, 0, 0, 0};
    return {limited(std::floor(bounds.left + cSlack)), limited(std::floor(bounds.top + cSlack)),
            limited(std::ceil(bounds.right - cSlack)), limited(std::ceil(bounds.bottom - cSlack))};
}

ColorPicture::Box ColorPicture::Box::intersected(const Box& other) const
{
    const Box box{std::max(left, other.left), std::max(top, other.top), std::min(right, other.right),
                  std::min(bottom, other.bottom)};
    return box.isEmpty() ? Box{0, 0, 0, 0} : box;
}

void ColorPicture::draw(const ColorPaint& whole, GlyphImage& image)
{
    const Box box = Box::around(whole.bounds);
    image.isColor = true;
    image.left = box.left;
    image.top = -box.top;
    image.width = static_cast<unsigned int>(std::max(box.right - box.left, 0));
    image.height = static_cast<unsigned int>(std::max(box.bottom - box.top, 0));
    image.pixels.clear();
    if (box.isEmpty())
    {
        image.width = image.height = 0;
        return;
    }
    image.pixels.reserve(4 * box.getSize());
    const int nRows = std::max(1, static_cast<int>(cBandPixels / (1 + layersOf(whole)) / box.getWidth()));
    for (int top = box.top; top < box.bottom; top += nRows)
    {
        Layer band({box.left, top, box.right, std::min(top + nRows, box.bottom)});
        paint(whole, band);
        for (const PremultipliedColor& color : band.pixels)
        {
            const auto byte = [](float value)
            { return static_cast<td::BYTE>(std::clamp(value * 255 + 0.5f, 0.0f, 255.0f)); };
            const td::BYTE alpha = byte(color[3]);
            for (std::size_t i = 0; i < 3; ++i)
                image.pixels.push_back(std::min(byte(color[i]), alpha));
            image.pixels.push_back(alpha);
        }
    }
}

void ColorPicture::paint(const ColorPaint& paint_, Layer& layer)
{
    const Box box = Box::around(paint_.bounds).intersected(layer.box);
    if (box.isEmpty())
        return;
    switch (paint_.kind)
    {
    case ColorPaint::Kind::Fill:
        putFill(paint_.fill, box, nullptr, layer);
        break;
    case ColorPaint::Kind::Layers:
        for (const ColorPaint& part : paint_.parts)
            paint(part, layer);
        break;
    case ColorPaint::Kind::Composite:
        paintComposite(paint_, box, layer);
        break;
    case ColorPaint::Kind::Outline:
    case ColorPaint::Kind::Box:
        paintClipped(paint_, box, layer);
        break;
    }
}

void ColorPicture::paintClipped(const ColorPaint& paint_, const Box& box, Layer& layer)
{
    const ColorPaint& part = paint_.parts.front();
    if (part.kind == ColorPaint::Kind::Fill)
    {
        putFill(part.fill, box, coverageOf(paint_, box).data(), layer);
        return;
    }
    Layer own(box);
    paint(part, own);
    const std::vector<td::BYTE> coverage = coverageOf(paint_, box);
    const td::BYTE* covered = coverage.data();
    for (int y = box.top; y < box.bottom; ++y)
        for (int x = box.left; x < box.right; ++x, ++covered)
            putOver(*own.at(x, y), static_cast<float>(*covered) / 255, *layer.at(x, y));
}

void ColorPicture::putFill(const ColorFill& fill, const Box& box, const td::BYTE* covered, Layer& layer)
{
    PaintRows rows(fill, box.left, box.right);
    for (int y = box.top; y < box.bottom; ++y)
    {
        rows.moveTo(y);
        PremultipliedColor* to = layer.at(box.left, y);
        for (std::size_t i = 0; i < box.getWidth(); ++i, ++to)
        {
            const float coverage = covered != nullptr ? static_cast<float>(*covered++) / 255 : 1;
            if (coverage > 0)
                putOver(rows.at(i), coverage, *to);
        }
    }
}

void ColorPicture::paintComposite(const ColorPaint& paint_, const Box& box, Layer& layer)
{
    Layer backdrop(box);
    paint(paint_.parts[0], backdrop);
    Layer source(box);
    paint(paint_.parts[1], source);
    for (int y = box.top; y < box.bottom; ++y)
        for (int x = box.left; x < box.right; ++x)
            putOver(blend(paint_.mode, *source.at(x, y), *backdrop.at(x, y)), 1, *layer.at(x, y));
}

std::vector<td::BYTE> ColorPicture::coverageOf(const ColorPaint& paint_, const Box& box) const
{
    std::vector<td::BYTE> coverage(box.getSize());
    // FreeType's types are signed up to 2.13.2.
    std::array<FT_Vector, 4> corners{};
    std::array<std::remove_pointer_t<decltype(FT_Outline::tags)>, 4> tags;
    tags.fill(FT_CURVE_TAG_ON);
    std::remove_pointer_t<decltype(FT_Outline::contours)> lastCorner = 3;
    FT_Outline parallelogram{1, 4, corners.data(), tags.data(), &lastCorner, 0};
    FT_Outline* pOutline = &parallelogram;
    // FreeType's y grows upwards from the lower side; what is far away may be anywhere there.
    const auto toFreeType = [&box](td::Point<double> p)
    {
        const auto fixed = [](double pixels) { return std::lround(std::clamp(pixels * 64, -cFarPoint, cFarPoint)); };
        return FT_Vector{fixed(p.x - box.left), fixed(box.bottom - p.y)};
    };
    if (paint_.kind == ColorPaint::Kind::Outline)
    {
        pOutline = loadPaintOutline(_pFace, paint_.glyph);
        if (pOutline == nullptr)
            return coverage;
        for (FT_Vector& p : std::span(pOutline->points, static_cast<std::size_t>(pOutline->n_points)))
            p = toFreeType(paint_.toTarget.map({double(p.x) / 64, double(p.y) / 64}));
    }
    else
        std::ranges::transform(paint_.corners, corners.begin(), toFreeType);
    FT_Bitmap bitmap{};
    bitmap.width = static_cast<unsigned int>(box.right - box.left);
    bitmap.rows = static_cast<unsigned int>(box.bottom - box.top);
    bitmap.pitch = box.right - box.left;
    bitmap.buffer = coverage.data();
    bitmap.num_grays = 256;
    bitmap.pixel_mode = FT_PIXEL_MODE_GRAY;
    FT_Outline_Get_Bitmap(_pLibrary, pOutline, &bitmap);
    return coverage;
}

} // namespace gui::draw
