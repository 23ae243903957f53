#include <gui/gl/Font.h>

#include "GlyphTable.h"
#include "LayoutMemo.h"

#include <arch/ArchiveIn.h>
#include <arch/FileSerializerIn.h>
#include <vo/Log.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <limits>
#include <span>

namespace gui::gl
{

namespace
{

constexpr unsigned int cGlyphRecordBytes = 20;

// Values as they lie in a file, which is little-endian, become the machine's.
template <typename... Values>
void toHostOrder(Values&... values)
{
    if constexpr (std::endian::native == std::endian::big)
        (std::ranges::reverse(std::as_writable_bytes(std::span(&values, 1))), ...);
}

// The rows stored one after the other. @throws what a read beyond the file's end throws, before the memory is taken
void readPixels(arch::FileSerializerIn& file, arch::ArchiveIn& archive, unsigned int bytesPP,
                gui::Image::_data& imgData)
{
    // Two 32-bit factors fit; the third one could overflow, unless what they make is in the file.
    const std::uint64_t nPixels = std::uint64_t(imgData.width) * imgData.height;
    file.require(nPixels);
    const std::uint64_t nBytes = nPixels * bytesPP;
    file.require(nBytes);
    imgData.data.reserve(nBytes);
    imgData.data.zeros();
    for (std::uint64_t pos = 0; pos < nBytes;)
    {
        const auto n =
            static_cast<unsigned int>(std::min<std::uint64_t>(nBytes - pos, std::numeric_limits<unsigned int>::max()));
        archive.get(reinterpret_cast<char*>(imgData.data.begin() + pos), n);
        pos += n;
    }
}

} // namespace

bool Font::loadBinaryData(const char* fileName, gui::Image::_data& imgData, float& metricC)
{
    TD_ASSERT(fileName != nullptr, false);
    arch::FileSerializerIn file;
    return file.open(fileName) && read(file, fileName, imgData, metricC);
}

bool Font::read(arch::FileSerializerIn& file, const char* fileName, gui::Image::_data& imgData, float& metricC)
{
    // Whatever goes wrong below: old glyphs with new metrics are no font.
    dropGlyphs();
    arch::ArchiveIn archive(file);
    archive >> _metricA >> _metricB >> _spaceWidth >> _glyphPadding >> metricC >> _lineHeight;
    unsigned short bitsPerPixel = 0;
    unsigned short noGlyphs = 0;
    archive >> imgData.width >> imgData.height >> bitsPerPixel >> noGlyphs;
    toHostOrder(_metricA, _metricB, _spaceWidth, _glyphPadding, metricC, _lineHeight);
    toHostOrder(imgData.width, imgData.height, bitsPerPixel, noGlyphs);
    imgData.bitsPerPixel = bitsPerPixel;
    if (noGlyphs == 0)
    {
        vo::dbgLog("ERROR! Font::load detected zero glyphs in file: %s", fileName);
        return false;
    }
    file.require(std::uint64_t(noGlyphs) * cGlyphRecordBytes);
    if (!readGlyphs(archive, noGlyphs, fileName))
        return false;

    const unsigned int bytesPP = bitsPerPixel / 8u;
    if (bytesPP == 0 || bytesPP > 4)
    {
        vo::dbgLog("ERROR! Font::load cannot use %u bits per pixel in file: %s", unsigned(bitsPerPixel), fileName);
        dropGlyphs();
        return false;
    }
    readPixels(file, archive, bytesPP, imgData);
    archive.close();
    return true;
}

bool Font::readGlyphs(arch::ArchiveIn& archive, unsigned short noGlyphs, const char* fileName)
{
    _glyphs.reserve(noGlyphs);
    _glyphs.zeros();
    _glyphMap.reserve(noGlyphs);
    _glyphMap.beginUpdate();
    for (unsigned short i = 0; i < noGlyphs; ++i)
    {
        _glyph& g = _glyphs[i];
        unsigned int codePoint = 0;
        archive >> codePoint >> g.bearing >> g.width >> g.advance >> g.tx;
        toHostOrder(codePoint, g.bearing, g.width, g.advance, g.tx);
        if (!(g.tx >= 0.0f && g.tx <= 1.0f))
        {
            vo::dbgLog("ERROR! Font::load texture coordinate of glyph %u is not from 0 to 1 in file: %s", unsigned(i),
                       fileName);
            dropGlyphs();
            return false;
        }
        _glyphMap.append(static_cast<wchar_t>(codePoint), i);
    }
    _glyphMap.endUpdate();
    _pMemo = std::make_unique<LayoutMemo>();
    _pTable =
        std::make_unique<GlyphTable>(std::span<const _glyph>(_glyphs.begin(), _glyphs.end()), _glyphMap, metrics());
    return true;
}

void Font::dropGlyphs()
{
    _glyphs.reserve(0);
    _glyphMap.reserve(0);
    _pTable.reset();
    _pMemo.reset();
}

} // namespace gui::gl
