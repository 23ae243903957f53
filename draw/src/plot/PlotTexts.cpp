#include "PlotTexts.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace gui::draw
{

namespace
{

constexpr std::size_t cMostHidden = 400; // texts, beyond which those that are not shown go

std::string keyOf(std::string_view text, const TextStyle& style, Anchor anchor, double angle)
{
    std::array<char, 96> look;
    std::snprintf(look.data(), look.size(), "\n%g %08x %g %g %g %llu", style.size, style.paint.getColor().rgba(),
                  anchor.x, anchor.y.value_or(-9), angle, static_cast<unsigned long long>(style.face.getID()));
    return std::string(text) + look.data();
}

} // namespace

void PlotTexts::add(std::string_view text, const TextStyle& style, Drawing::Point at, Anchor anchor, double angle)
{
    if (text.empty())
        return;
    std::vector<Entry>& entries = _entries[keyOf(text, style, anchor, angle)];
    auto free = entries.begin();
    while (free != entries.end() && free->isUsed)
        ++free;
    if (free == entries.end())
    {
        const TextLayout layout(text, style, {.align = Align::Center}); // of several lines
        const Drawing::ID id = _drawing.text({0, 0}, layout, {.anchor = anchor, .angle = angle});
        free = entries.insert(free, {id, {0, 0}, true, true});
        ++_nEntries;
    }
    free->isUsed = true;
    if (!free->isVisible)
        _drawing.setVisible(free->id, true);
    free->isVisible = true;
    if (!(free->at == at))
        _drawing.setTransform(free->id, Affine::translation(at.x, at.y));
    free->at = at;
}

void PlotTexts::finish()
{
    const bool areMany = _nEntries > cMostHidden;
    for (auto place = _entries.begin(); place != _entries.end();)
    {
        for (auto entry = place->second.begin(); entry != place->second.end();)
        {
            if (!entry->isUsed && areMany)
            {
                _drawing.remove(entry->id);
                --_nEntries;
                entry = place->second.erase(entry);
                continue;
            }
            if (!entry->isUsed && entry->isVisible)
            {
                _drawing.setVisible(entry->id, false);
                entry->isVisible = false;
            }
            entry->isUsed = false;
            ++entry;
        }
        place = place->second.empty() ? _entries.erase(place) : std::next(place);
    }
}

void PlotTexts::clear()
{
    _drawing.clear();
    _entries.clear();
    _nEntries = 0;
    _advances.clear();
}

PlotTexts::Advances& PlotTexts::advancesOf(const TextStyle& style)
{
    return _advances[std::to_string(style.size) + ' ' + std::to_string(style.face.getID())];
}

// Adds the width of the character that begins somewhere. @return where the next one does
std::size_t PlotTexts::add(std::string_view text, std::size_t i, const TextStyle& style, Advances& advances,
                           double& sum)
{
    std::size_t end = i + 1;
    while (end < text.size() && (text[end] & 0xC0) == 0x80)
        ++end;
    const std::string character(text.substr(i, end - i));
    const auto [place, isNew] = advances.try_emplace(character, 0);
    // Between others, as a space at a line's end counts nothing.
    if (isNew)
        place->second =
            TextLayout("|" + character + "|", style).getTextWidth() - TextLayout("||", style).getTextWidth();
    sum += place->second;
    return end;
}

double PlotTexts::widthOf(std::string_view text, const TextStyle& style)
{
    Advances& advances = advancesOf(style);
    double widest = 0, sum = 0;
    for (std::size_t i = 0; i < text.size();)
    {
        if (text[i] == '\n')
            sum = 0;
        i = text[i] == '\n' ? i + 1 : add(text, i, style, advances, sum);
        widest = std::max(widest, sum);
    }
    return widest;
}

std::string PlotTexts::shortened(std::string_view text, const TextStyle& style, double width)
{
    constexpr std::string_view cDots = "\u2026";
    Advances& advances = advancesOf(style);
    double dots = 0;
    add(cDots, 0, style, advances, dots);
    std::string result;
    for (std::size_t begin = 0; begin <= text.size();)
    {
        const std::string_view line = text.substr(begin, text.find('\n', begin) - begin);
        double sum = 0;
        std::size_t kept = 0; // has room beside the dots
        for (std::size_t i = 0; i < line.size() && sum <= width;)
        {
            kept = sum + dots <= width ? i : kept;
            i = add(line, i, style, advances, sum);
        }
        result += begin > 0 ? "\n" : "";
        result += sum <= width ? line : line.substr(0, kept);
        result += sum <= width ? "" : cDots;
        begin += line.size() + 1;
    }
    return result;
}

} // namespace gui::draw
