#include "PlotTexts.h"

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
        const Drawing::ID id = _drawing.text({0, 0}, text, style, {.anchor = anchor, .angle = angle});
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

double PlotTexts::widthOf(std::string_view text, const TextStyle& style)
{
    double sum = 0;
    std::string key;
    for (std::size_t i = 0; i < text.size();)
    {
        std::size_t n = 1;
        while (i + n < text.size() && (text[i + n] & 0xC0) == 0x80)
            ++n;
        key.assign(text.substr(i, n));
        key += std::to_string(style.size);
        const auto [place, isNew] = _advances.try_emplace(key, 0);
        // Between others, as a space at a line's end counts nothing.
        if (isNew)
            place->second = TextLayout("|" + std::string(text.substr(i, n)) + "|", style).getTextWidth() -
                            TextLayout("||", style).getTextWidth();
        sum += place->second;
        i += n;
    }
    return sum;
}

} // namespace gui::draw
