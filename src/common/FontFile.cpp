#include <gui/gl/Font.h>

#include <arch/ArchiveIn.h>
#include <arch/FileSerializerIn.h>
#include <vo/Log.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>

namespace gui::gl
{

namespace
{

constexpr unsigned int cGlyphRecordBytes = 20;

// Pages for all of Unicode.
constexpr std::size_t cPageSize = 256;
constexpr std::size_t cNoOfPages = 0x110000 / cPageSize;

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
    indexGlyphs();
    return true;
}

void Font::dropGlyphs()
{
    _glyphs.reserve(0);
    _glyphMap.reserve(0);
    _pageOf.reserve(0);
    _pages.reserve(0);
}

void Font::indexGlyphs()
{
    const auto isCodePoint = [](wchar_t key) { return key >= 0 && std::size_t(key) < cNoOfPages * cPageSize; };

    // Page 0 is the page of all code points that have no glyph.
    std::size_t nPages = 1;
    _pageOf.reserve(cNoOfPages);
    _pageOf.zeros();
    for (const auto& entry : _glyphMap)
    {
        if (isCodePoint(entry.key) && _pageOf[std::size_t(entry.key) / cPageSize] == 0)
            _pageOf[std::size_t(entry.key) / cPageSize] = static_cast<unsigned short>(nPages++);
    }
    _pages.reserve(nPages * cPageSize);
    std::fill(_pages.begin(), _pages.end(), static_cast<unsigned short>(_glyphs.size() - 1));
    for (const auto& entry : _glyphMap)
    {
        if (isCodePoint(entry.key))
            _pages[_pageOf[std::size_t(entry.key) / cPageSize] * cPageSize + std::size_t(entry.key) % cPageSize] =
                *_glyphMap.find(entry.key); // of equal keys the one that a search finds
    }

    _areAllEdgesOrdered = true;
    for (std::size_t i = 0; i < _glyphs.size(); ++i)
        _areAllEdgesOrdered = _areAllEdgesOrdered && rightEdge(i) > _glyphs[i].tx;
}

std::size_t Font::glyphIndex(wchar_t codePoint) const
{
    const std::size_t c = static_cast<unsigned int>(codePoint);
    return _pages.begin()[_pageOf.begin()[c / cPageSize] * cPageSize + c % cPageSize];
}

float Font::rightEdge(std::size_t index) const { return index + 1 < _glyphs.size() ? _glyphs[index + 1].tx : 1.0f; }

} // namespace gui::gl
