#include "FreeTypeFace.h"

#include "ColorPaint.h"
#include "ColorPicture.h"
#include "ScaledPicture.h"

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_COLOR_H
#include FT_MODULE_H
#include FT_MULTIPLE_MASTERS_H
#include FT_OUTLINE_H
#include FT_SYSTEM_H

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace gui::draw
{

namespace
{

// A font may ask for any amount. The largest glyph that getImage promises takes 64 MiB in colour.
constexpr std::size_t cMostFontBytes = std::size_t(256) << 20;
constexpr double cMaxPixels = 4096;
// Of a paint, with those over each other: some seconds.
constexpr double cMostPaintedPixels = 1 << 30;

// Blocks begin with their size, as FreeType doesn't say it when it frees one.
constexpr std::size_t cHeader = alignof(std::max_align_t);

// FreeType's message for an error; its own function for that is empty in most builds.
const char* textOf(FT_Error error)
{
    switch (error)
    {
    case FT_Err_Unknown_File_Format:
        return "unknown format";
    case FT_Err_Invalid_Table:
        return "broken table";
    case FT_Err_Invalid_Glyph_Index:
        return "no such glyph";
    case FT_Err_Invalid_Outline:
        return "broken outline";
    case FT_Err_Out_Of_Memory:
        return "needs too much memory";
    case FT_Err_Raster_Overflow:
        return "larger than 4096 pixels";
    case FT_Err_Invalid_Composite:
        return "broken composite";
    default:
        return "broken";
    }
}

void* allocate(std::size_t* pUsed, std::size_t n)
{
    if (n > cMostFontBytes || *pUsed > cMostFontBytes - n)
        return nullptr;
    auto* const pBlock = static_cast<char*>(std::malloc(n + cHeader));
    if (pBlock == nullptr)
        return nullptr;
    std::memcpy(pBlock, &n, sizeof n);
    *pUsed += n;
    return pBlock + cHeader;
}

std::size_t sizeOf(const void* pMemory)
{
    std::size_t n = 0;
    std::memcpy(&n, static_cast<const char*>(pMemory) - cHeader, sizeof n);
    return n;
}

void* onAllocate(FT_Memory memory, long n)
{
    return n < 0 ? nullptr : allocate(static_cast<std::size_t*>(memory->user), static_cast<std::size_t>(n));
}

void onFree(FT_Memory memory, void* pMemory)
{
    if (pMemory == nullptr)
        return;
    *static_cast<std::size_t*>(memory->user) -= sizeOf(pMemory);
    std::free(static_cast<char*>(pMemory) - cHeader);
}

void* onReallocate(FT_Memory memory, long, long n, void* pMemory)
{
    void* const pNew = onAllocate(memory, n);
    if (pNew != nullptr && pMemory != nullptr)
    {
        std::memcpy(pNew, pMemory, std::min(sizeOf(pMemory), static_cast<std::size_t>(n)));
        onFree(memory, pMemory);
    }
    return pNew;
}

// The strike that is as large as what is asked for, or else the largest.
int strikeFor(FT_Face face, double pixelsPerEm)
{
    int best = 0;
    const auto size = [face](int i) { return double(face->available_sizes[i].y_ppem) / 64; };
    for (int i = 1; i < face->num_fixed_sizes; ++i)
    {
        const bool reaches = size(i) >= pixelsPerEm;
        const bool bestReaches = size(best) >= pixelsPerEm;
        if (reaches != bestReaches ? reaches : reaches ? size(i) < size(best) : size(i) > size(best))
            best = i;
    }
    return best;
}

// What FreeType has drawn, without the padding of its rows.
bool copyBitmap(const FT_Bitmap& bitmap, GlyphImage& image)
{
    image.width = bitmap.width;
    image.height = bitmap.rows;
    image.isColor = bitmap.pixel_mode == FT_PIXEL_MODE_BGRA;
    const std::size_t n = std::size_t(bitmap.width) * (image.isColor ? 4 : 1);
    image.pixels.resize(n * bitmap.rows);
    for (unsigned int y = 0; y < bitmap.rows; ++y)
    {
        // FreeType's pitch is negative where its rows go upwards.
        const unsigned char* const row = bitmap.buffer + std::ptrdiff_t(y) * bitmap.pitch;
        td::BYTE* const to = image.pixels.data() + y * n;
        if (bitmap.pixel_mode == FT_PIXEL_MODE_MONO)
            for (std::size_t x = 0; x < n; ++x)
                to[x] = (row[x / 8] >> (7 - x % 8) & 1) != 0 ? 255 : 0;
        else if (image.isColor)
            for (std::size_t x = 0; x < n; x += 4)
            {
                to[x] = row[x + 2];
                to[x + 1] = row[x + 1];
                to[x + 2] = row[x];
                to[x + 3] = row[x + 3];
            }
        else if (bitmap.pixel_mode == FT_PIXEL_MODE_GRAY)
            std::copy_n(row, n, to);
        else
            return false;
    }
    return true;
}

} // namespace

FreeTypeFace::FreeTypeFace()
    : _pMemory(std::make_unique<FT_MemoryRec_>(FT_MemoryRec_{&_nBytes, onAllocate, onFree, onReallocate}))
{
}

FreeTypeFace::~FreeTypeFace()
{
    // The library takes its faces with it.
    if (_pLibrary != nullptr)
        FT_Done_Library(_pLibrary);
}

bool FreeTypeFace::isThere() { return true; }

std::unique_ptr<FreeTypeFace> FreeTypeFace::open(std::span<const td::BYTE> bytes, unsigned int index,
                                                 std::string& cause)
{
    std::unique_ptr<FreeTypeFace> pResult(new FreeTypeFace);
    if (FT_New_Library(pResult->_pMemory.get(), &pResult->_pLibrary) != 0)
    {
        cause = "no memory";
        return nullptr;
    }
    FT_Add_Default_Modules(pResult->_pLibrary);
    if (const FT_Error error = FT_New_Memory_Face(pResult->_pLibrary, bytes.data(), static_cast<FT_Long>(bytes.size()),
                                                  static_cast<FT_Long>(index), &pResult->_pFace))
    {
        cause = textOf(error);
        return nullptr;
    }
    return pResult;
}

void FreeTypeFace::setCoordinates(std::span<const float> coordinates)
{
    std::vector<FT_Fixed> values;
    for (const float value : coordinates)
        values.push_back(static_cast<FT_Fixed>(std::lround(std::clamp(value, -32767.0f, 32767.0f) * 65536.0)));
    FT_Set_Var_Design_Coordinates(_pFace, static_cast<FT_UInt>(values.size()), values.data());
    if (FT_Get_Var_Blend_Coordinates(_pFace, static_cast<FT_UInt>(values.size()), values.data()) == 0)
        for (const FT_Fixed value : values)
            _place.push_back(static_cast<float>(value) / 65536);
}

std::optional<GlyphPaint> FreeTypeFace::findPaint(std::uint32_t glyph) const
{
    const auto [found, isNew] = _paints.try_emplace(glyph);
    if (isNew)
    {
        ColorPaintReader reader(_pFace, _paintTable, _place, td::ColorID::Black);
        if (const std::optional<ColorPaint> paint = reader.read(glyph, Affine()))
        {
            const PaintBounds& bounds = paint->bounds;
            found->second = {std::max(bounds.right - bounds.left, 0.0), std::max(bounds.bottom - bounds.top, 0.0),
                             reader.usesForeground()};
        }
    }
    return found->second;
}

std::optional<GlyphPaint> FreeTypeFace::getPaint(std::uint32_t glyph) const
{
    const std::lock_guard lock(_mutex);
    return findPaint(glyph);
}

const char* FreeTypeFace::paint(std::uint32_t glyph, const GlyphPaint& paint, const GlyphRequest& request,
                                GlyphImage& image) const
{
    const double scale = request.pixelsPerEm / std::max<double>(_pFace->units_per_EM, 1);
    if (std::max(paint.width, paint.height) * scale > cMaxPixels)
        return textOf(FT_Err_Raster_Overflow);
    image.pixelsPerEm = request.pixelsPerEm;
    const std::optional<ColorPaint> inPixels =
        ColorPaintReader(_pFace, _paintTable, _place, request.foreground).read(glyph, Affine::scaling(scale, -scale));
    if (!inPixels)
        return textOf(FT_Err_Invalid_Table);
    if (inPixels->drawnArea > cMostPaintedPixels)
        return "too many layers";
    ColorPicture(_pLibrary, _pFace).draw(*inPixels, image);
    return nullptr;
}

// The glyph in the face's slot, as an outline or a picture.
const char* FreeTypeFace::loadSized(std::uint32_t glyph, bool isColor, const GlyphRequest& request,
                                    double& pixelsPerEm) const
{
    FT_Error error = 0;
    const bool isScalable = FT_IS_SCALABLE(_pFace);
    // Layers are scaled as outlines are; pictures have the sizes that they have.
    const bool takesStrike = _pFace->num_fixed_sizes > 0 && (isColor || !isScalable);
    if (takesStrike)
    {
        const int strike = strikeFor(_pFace, request.pixelsPerEm);
        error = FT_Select_Size(_pFace, strike);
        pixelsPerEm = double(_pFace->available_sizes[strike].y_ppem) / 64;
    }
    else
    {
        // In 72 dots per inch a point is a pixel.
        const auto size = static_cast<FT_F26Dot6>(std::lround(request.pixelsPerEm * 64));
        error = FT_Set_Char_Size(_pFace, 0, std::max<FT_F26Dot6>(size, 1), 72, 72);
        pixelsPerEm = request.pixelsPerEm;
    }
    if (error != 0)
        return textOf(error);
    FT_Int32 flags = takesStrike ? FT_LOAD_DEFAULT : FT_LOAD_NO_BITMAP;
    flags |= isColor ? FT_LOAD_COLOR : 0;
    flags |= request.isHinted ? FT_LOAD_TARGET_LIGHT : FT_LOAD_NO_HINTING;
    error = FT_Load_Glyph(_pFace, glyph, flags);
    return error != 0 ? textOf(error) : nullptr;
}

const char* FreeTypeFace::getImage(std::uint32_t glyph, bool isColor, const GlyphRequest& request,
                                   GlyphImage& image) const
{
    const std::lock_guard lock(_mutex);
    if (const std::optional<GlyphPaint> found = isColor ? findPaint(glyph) : std::nullopt)
        return paint(glyph, *found, request, image);
    if (isColor)
    {
        FT_Palette_Select(_pFace, 0, nullptr);
        FT_Palette_Set_Foreground_Color(_pFace, {request.foreground.blue(), request.foreground.green(),
                                                 request.foreground.red(), request.foreground.alpha()});
    }
    if (const char* const cause = loadSized(glyph, isColor, request, image.pixelsPerEm))
        return cause;

    const FT_GlyphSlot slot = _pFace->glyph;
    if (slot->format == FT_GLYPH_FORMAT_OUTLINE)
    {
        if (!isColor)
            FT_Outline_Translate(&slot->outline, FT_Pos(request.quarter & 3U) * 16, 0);
        FT_BBox box;
        FT_Outline_Get_CBox(&slot->outline, &box);
        const auto limit = FT_Pos(cMaxPixels) * 64;
        if (box.xMax - box.xMin > limit || box.yMax - box.yMin > limit)
            return textOf(FT_Err_Raster_Overflow);
    }
    if (slot->format != FT_GLYPH_FORMAT_BITMAP)
        if (const FT_Error error = FT_Render_Glyph(slot, FT_RENDER_MODE_NORMAL))
            return textOf(error);
    image.left = slot->bitmap_left;
    image.top = slot->bitmap_top;
    if (slot->bitmap.width > cMaxPixels || slot->bitmap.rows > cMaxPixels)
        return textOf(FT_Err_Raster_Overflow);
    if (!copyBitmap(slot->bitmap, image))
        return textOf(FT_Err_Unknown_File_Format);
    if (image.isColor && image.pixelsPerEm > request.pixelsPerEm)
        scaleDown(image, request.pixelsPerEm);
    return nullptr;
}

} // namespace gui::draw
