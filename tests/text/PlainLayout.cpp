#include "PlainLayout.h"

#include <vo/UTFConverter.h>

#include <algorithm>

namespace test
{

PlainLayout::Text PlainLayout::decoded(const std::string& utf8)
{
    const auto* const begin = reinterpret_cast<const unsigned char*>(utf8.data());
    Text text(utf8.size());
    const auto flags = vo::UTFConverter::Flags(0);
    const auto n = vo::UTFConverter::measureUTF8toUTF32(begin, begin + utf8.size(), flags) / 4;
    vo::UTFConverter::convertUTF8toUTF32(begin, begin + utf8.size(), text.data(), text.data() + n, flags);
    text.resize(std::size_t(n));
    return text;
}

std::size_t PlainLayout::indexOf(unsigned int codePoint) const
{
    if (map.isEmpty())
    {
        map.reserve(file.glyphs.size());
        map.beginUpdate();
        for (std::size_t i = 0; i < file.glyphs.size(); ++i)
            map.append(static_cast<wchar_t>(file.glyphs[i].codePoint), static_cast<unsigned short>(i));
        map.endUpdate();
    }
    const unsigned short* const pIndex = map.find(static_cast<wchar_t>(codePoint));
    return pIndex != nullptr ? *pIndex : file.glyphs.size() - 1;
}

td::Size<float> PlainLayout::addGlyphs(td::Point<float> pos, const Text& text, float s)
{
    if (text.empty())
        return {};
    float x = pos.x, t = pos.y, b = t + s * file.lineHeight, widest = 0;
    bool first = true;
    for (const unsigned int c : text)
    {
        if (c == ' ' || c == '\t')
        {
            x += s * (additionalSpace + file.spaceWidth);
            first = false;
            continue;
        }
        if (c == '\n' || c == 0x2028)
        {
            widest = std::max(widest, x - pos.x);
            x = pos.x;
            t += s * (file.lineHeight + lineSpacing);
            b = t + s * file.lineHeight;
            first = true;
            continue;
        }
        const std::size_t i = indexOf(c);
        const FontFile::Glyph& glyph = file.glyphs[i];
        x = first ? x - s * glyph.bearing : x + s * glyph.bearing;
        first = false;
        x -= file.glyphPadding * s / 2;
        const float x1 = x + s * (glyph.width + file.glyphPadding);
        const float u0 = edge(i), u1 = edge(i + 1);
        vertices.insert(vertices.end(), {x, b, u0, 1, x1, t, u1, 0, x,  t, u0, 0, //
                                         x, b, u0, 1, x1, b, u1, 1, x1, t, u1, 0});
        x += s * glyph.advance + s * additionalSpace;
    }
    return {std::max(widest, x - pos.x), (b - pos.y) + s * lineSpacing};
}

td::Size<float> PlainLayout::measure(const Text& text) const
{
    if (text.empty())
        return {};
    float x = 0, y = 0, bottom = file.lineHeight, widest = 0;
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        if (text[i] == ' ' || text[i] == '\t')
            x += file.spaceWidth + additionalSpace;
        else if (text[i] == '\n' || text[i] == 0x2028)
        {
            widest = std::max(widest, x);
            x = 0;
            y += file.lineHeight + lineSpacing + additionalSpace;
            bottom = y + file.lineHeight;
        }
        else
        {
            const FontFile::Glyph& glyph = file.glyphs[indexOf(text[i])];
            x = i == 0 ? x - glyph.bearing : x + glyph.bearing;
            x = x - file.glyphPadding / 2 + glyph.advance + additionalSpace;
        }
    }
    return {std::max(widest, x), bottom + lineSpacing};
}

td::Size<float> PlainLayout::addMeasured(td::Point<float> pos, const Text& text, const Format& format,
                                         td::Size<float> size)
{
    return addGlyphs({pos.x - (format.hAlignment == 2 ? size.width : size.width / 2), pos.y}, text, format.scale);
}

td::Size<float> PlainLayout::addString(td::Point<float> pos, const std::string& utf8, const Format& format)
{
    const auto scaled = [&](const Text& text)
    {
        const td::Size<float> size = measure(text);
        return td::Size<float>(size.width * format.scale, size.height * format.scale);
    };
    const Text whole = decoded(utf8);
    if (format.hAlignment == 0)
        return addGlyphs(pos, whole, format.scale);
    if (utf8.find('\n') == std::string::npos)
        return addMeasured(pos, whole, format, scaled(whole));
    td::Size<float> size;
    for (std::size_t start = 0; start < utf8.size();)
    {
        // Nothing is split behind a zero.
        const std::size_t end = std::min(utf8.find('\n', start), utf8.size());
        const bool isLast = utf8.find('\0', start) < end || end == utf8.size();
        const Text line = decoded(utf8.substr(start, isLast ? std::string::npos : end - start));
        start = isLast ? utf8.size() : end + 1;
        const td::Size<float> lineSize = scaled(line);
        if (line.empty() || (isLast && lineSize.width == 0))
            continue;
        addMeasured(pos, line, format, lineSize);
        pos.y += lineSize.height;
        size = {std::max(size.width, lineSize.width), size.height + lineSize.height};
    }
    return size;
}

} // namespace test
