#include "GlyphOutlines.h"

#include "FillRows.h"
#include "StrokeRows.h"

#include <hb.h>

#include <algorithm>
#include <cstddef>
#include <span>
#include <utility>

namespace gui::draw
{

namespace
{

using Point = Path::Point;

Path& pathOf(void* pData) { return *static_cast<Path*>(pData); }

// HarfBuzz's y grows upwards.
Point pointOf(float x, float y) { return {double(x), -double(y)}; }

void moveTo(hb_draw_funcs_t*, void* pPath, hb_draw_state_t*, float x, float y, void*)
{
    pathOf(pPath).moveTo(pointOf(x, y));
}

void lineTo(hb_draw_funcs_t*, void* pPath, hb_draw_state_t*, float x, float y, void*)
{
    pathOf(pPath).lineTo(pointOf(x, y));
}

void quadTo(hb_draw_funcs_t*, void* pPath, hb_draw_state_t*, float x1, float y1, float x, float y, void*)
{
    pathOf(pPath).quadTo(pointOf(x1, y1), pointOf(x, y));
}

void cubicTo(hb_draw_funcs_t*, void* pPath, hb_draw_state_t*, float x1, float y1, float x2, float y2, float x, float y,
             void*)
{
    pathOf(pPath).cubicTo(pointOf(x1, y1), pointOf(x2, y2), pointOf(x, y));
}

void close(hb_draw_funcs_t*, void* pPath, hb_draw_state_t*, void*) { pathOf(pPath).close(); }

hb_draw_funcs_t* pathWriter()
{
    // Never destroyed: typefaces that outlive main() may still draw.
    static hb_draw_funcs_t* const s_pWriter = []
    {
        hb_draw_funcs_t* const pWriter = hb_draw_funcs_create();
        hb_draw_funcs_set_move_to_func(pWriter, moveTo, nullptr, nullptr);
        hb_draw_funcs_set_line_to_func(pWriter, lineTo, nullptr, nullptr);
        hb_draw_funcs_set_quadratic_to_func(pWriter, quadTo, nullptr, nullptr);
        hb_draw_funcs_set_cubic_to_func(pWriter, cubicTo, nullptr, nullptr);
        hb_draw_funcs_set_close_path_func(pWriter, close, nullptr, nullptr);
        hb_draw_funcs_make_immutable(pWriter);
        return pWriter;
    }();
    return s_pWriter;
}

// Up to so many pixels wide and high, pictures for the four places of the pen.
constexpr int cMostCoverage = 255;

// From quarters of pixels, which are as high as pixels, to pixels, for each place of the pen.
// @param quarters  row by row from the top  @param left, top  of them, in quarters and pixels, y downwards
GlyphCoverage coverageOf(std::span<const td::BYTE> quarters, int left, int top, int nQuarters, int height)
{
    const auto below = [](int n) { return n >= 0 ? n / 4 : -((3 - n) / 4); };
    GlyphCoverage result;
    result.left = below(left);
    result.top = -top;
    result.width = static_cast<unsigned int>(below(left + nQuarters + 2) - result.left + 1);
    result.height = static_cast<unsigned int>(height);
    result.pixels.resize(std::size_t(4) * result.width * result.height);
    std::vector<int> sums(static_cast<std::size_t>(nQuarters) + 1); // of a row up to each quarter
    for (unsigned int y = 0; y < result.height; ++y)
    {
        const std::size_t row = std::size_t(result.height - 1 - y) * static_cast<std::size_t>(nQuarters);
        for (std::size_t x = 0; x + 1 < sums.size(); ++x)
            sums[x + 1] = sums[x] + quarters[row + x];
        td::BYTE* to = &result.pixels[std::size_t(4) * result.width * y];
        for (int quarter = 0; quarter < 4; ++quarter)
            for (int x = 0; x < static_cast<int>(result.width); ++x)
            {
                const int from = 4 * (result.left + x) - quarter - left;
                const auto sumAt = [&](int i) { return sums[static_cast<std::size_t>(std::clamp(i, 0, nQuarters))]; };
                *to++ = static_cast<td::BYTE>((sumAt(from + 4) - sumAt(from) + 2) / 4);
            }
    }
    return result;
}

} // namespace

GlyphOutlines::GlyphOutlines(hb_font_t* pFont)
    : _pFont(pFont)
{
}

double GlyphOutlines::getUnitsPerEm() const { return std::max(hb_face_get_upem(hb_font_get_face(_pFont)), 1U); }

Path GlyphOutlines::get(std::uint32_t glyph) const
{
    Path path;
#if HB_VERSION_ATLEAST(7, 0, 0)
    hb_font_draw_glyph(_pFont, glyph, pathWriter(), &path);
#else
    hb_font_get_glyph_shape(_pFont, glyph, pathWriter(), &path);
#endif
    return path;
}

std::optional<GlyphCoverage> GlyphOutlines::getCoverage(std::uint32_t glyph, double pixelsPerEm) const
{
    const double scale = pixelsPerEm / getUnitsPerEm();
    const FillRows rows(get(glyph).transform(Affine::scaling(4 * scale, scale)), 4 * cMostCoverage, cMostCoverage);
    if (rows.cells.empty())
        return std::nullopt;
    return coverageOf(rows.cells, rows.left, rows.top, rows.width, rows.height);
}

std::optional<GlyphCoverage> GlyphOutlines::getStrokeCoverage(std::uint32_t glyph, double pixelsPerEm,
                                                              double lineWidth) const
{
    const Path path = get(glyph).transform(Affine::scaling(pixelsPerEm / getUnitsPerEm()));
    const StrokeRows rows(path, lineWidth, cMostCoverage);
    if (rows.quarters.empty())
        return std::nullopt;
    return coverageOf(rows.quarters, rows.left, rows.top, rows.width, rows.height);
}

const char* GlyphOutlines::getImage(std::uint32_t glyph, const GlyphRequest& request, GlyphImage& image) const
{
    image.pixelsPerEm = request.pixelsPerEm;
    const Path path = get(glyph).transform(Affine::translation((request.quarter & 3U) / 4.0, 0) *
                                           Affine::scaling(request.pixelsPerEm / getUnitsPerEm()));
    if (path.isEmpty())
        return nullptr;
    FillRows rows(path, cMostPixels, cMostPixels);
    if (rows.cells.empty())
        return "larger than 4096 pixels";
    image.left = rows.left;
    image.top = -rows.top;
    image.width = static_cast<unsigned int>(rows.width);
    image.height = static_cast<unsigned int>(rows.height);
    image.pixels = std::move(rows.cells);
    return nullptr;
}

} // namespace gui::draw
