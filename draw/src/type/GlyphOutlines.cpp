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

// More parts no glyph has that is meant to be seen.
constexpr int cMostParts = 1024;

std::span<const td::BYTE> bytesIn(hb_blob_t* pBlob)
{
    unsigned int n = 0;
    const char* const bytes = hb_blob_get_data(pBlob, &n);
    return {reinterpret_cast<const td::BYTE*>(bytes), n};
}

unsigned int bigEndian16(std::span<const td::BYTE> bytes, std::size_t at)
{
    return at + 2 <= bytes.size() ? unsigned(bytes[at]) << 8U | bytes[at + 1] : 0;
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
    , _pPlaces(hb_face_reference_table(hb_font_get_face(pFont), HB_TAG('l', 'o', 'c', 'a')))
    , _pGlyphs(hb_face_reference_table(hb_font_get_face(pFont), HB_TAG('g', 'l', 'y', 'f')))
{
    hb_blob_t* const pHead = hb_face_reference_table(hb_font_get_face(pFont), HB_TAG('h', 'e', 'a', 'd'));
    _hasLongPlaces = bigEndian16(bytesIn(pHead), 50) != 0;
    hb_blob_destroy(pHead);
}

GlyphOutlines::~GlyphOutlines()
{
    hb_blob_destroy(_pPlaces);
    hb_blob_destroy(_pGlyphs);
}

std::span<const td::BYTE> GlyphOutlines::bytesOf(std::uint32_t glyph) const
{
    const std::span<const td::BYTE> places = bytesIn(_pPlaces), glyphs = bytesIn(_pGlyphs);
    const auto placeOf = [&](std::size_t i)
    {
        return _hasLongPlaces
                   ? std::size_t(bigEndian16(places, 4 * i)) << 16U | std::size_t(bigEndian16(places, 4 * i + 2))
                   : std::size_t(2) * bigEndian16(places, 2 * i);
    };
    const std::size_t begin = placeOf(glyph), end = placeOf(std::size_t(glyph) + 1);
    return begin < end && end <= glyphs.size() ? glyphs.subspan(begin, end - begin) : std::span<const td::BYTE>();
}

// Counts down for each part of a glyph and of its parts. @return whether that was enough
bool GlyphOutlines::hasFewParts(std::uint32_t glyph, int& nMost) const
{
    // A head of ten bytes, of which the first say how many contours there are; then parts, each its flags, its glyph,
    // its place, and how it is scaled.
    const std::span<const td::BYTE> bytes = bytesOf(glyph);
    if ((bigEndian16(bytes, 0) & 0x8000U) == 0)
        return true;
    std::size_t at = 10;
    unsigned int flags = 0;
    do
    {
        flags = bigEndian16(bytes, at);
        if (--nMost < 0 || !hasFewParts(bigEndian16(bytes, at + 2), nMost))
            return false;
        at += (flags & 1U) != 0 ? 8 : 6;
        at += (flags & 8U) != 0 ? 2 : (flags & 0x40U) != 0 ? 4 : (flags & 0x80U) != 0 ? 8 : 0;
    } while ((flags & 0x20U) != 0);
    return true;
}

bool GlyphOutlines::isFinite(std::uint32_t glyph) const
{
    int nMost = cMostParts;
    return hasFewParts(glyph, nMost);
}

double GlyphOutlines::getUnitsPerEm() const { return std::max(hb_face_get_upem(hb_font_get_face(_pFont)), 1U); }

Path GlyphOutlines::get(std::uint32_t glyph) const
{
    Path path;
    if (!isFinite(glyph))
        return path;
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
