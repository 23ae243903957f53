#include "ParagraphCache.h"

#include "LineFiller.h"
#include "TypefaceImpl.h"

#include <algorithm>
#include <cstdint>

namespace gui::draw
{

namespace
{

constexpr std::size_t cMaxBytes = std::size_t(32) << 20;
// Of one paragraph: as many widths as a text may be shown in at once.
constexpr std::size_t cMaxLaid = 4;

template <typename T>
void append(std::string& key, const T& value)
{
    key.append(reinterpret_cast<const char*>(&value), sizeof value);
}

void append(std::string& key, const std::string& text)
{
    append(key, text.size());
    key += text;
}

} // namespace

ParagraphCache& ParagraphCache::instance()
{
    // Never destroyed: layouts may be made while the program ends.
    static ParagraphCache* const s_pInstance = new ParagraphCache;
    return *s_pInstance;
}

// All that shaping depends on, byte for byte.
void ParagraphCache::makeKey(const ParagraphText& paragraph, std::string& key)
{
    key.clear();
    append(key, paragraph.direction);
    append(key, paragraph.styles.size());
    for (const ShapeStyle& style : paragraph.styles)
    {
        const TypefaceImpl* const pFace = TypefaceImpl::of(style.face);
        append(key, pFace != nullptr ? pFace->getID() : std::uint64_t(0));
        append(key, style.size);
        append(key, style.letterSpacing);
        append(key, style.features.size());
        for (const FontFeature& feature : style.features)
        {
            append(key, feature.tag.value);
            append(key, feature.value);
        }
        append(key, style.language);
    }
    append(key, paragraph.spans.size());
    for (const ParagraphText::Span& span : paragraph.spans)
    {
        append(key, span.end);
        append(key, span.style);
    }
    key += paragraph.text;
}

std::shared_ptr<const LaidParagraph> ParagraphCache::lay(const ParagraphText& paragraph, const LineSettings& settings)
{
    thread_local std::string s_key;
    makeKey(paragraph, s_key);
    const Key key{s_key, std::hash<std::string_view>()(s_key)};
    std::shared_ptr<const ShapedParagraph> pShaped;
    {
        const std::lock_guard lock(_mutex);
        if (const auto found = _byKey.find(key); found != _byKey.end())
        {
            Entry& entry = *found->second;
            _entries.splice(_entries.begin(), _entries, found->second);
            for (auto at = entry.laid.begin(); at != entry.laid.end(); ++at)
                if (at->first == settings)
                {
                    std::rotate(at, at + 1, entry.laid.end());
                    return entry.laid.back().second;
                }
            pShaped = entry.pShaped;
        }
    }
    // Others may lay out theirs meanwhile.
    if (pShaped == nullptr)
        pShaped = std::make_shared<const ShapedParagraph>(paragraph);
    auto pLaid = std::make_shared<const LaidParagraph>(LineFiller(std::move(pShaped), settings).fill());
    remember(key, settings, pLaid);
    return pLaid;
}

void ParagraphCache::remember(Key key, const LineSettings& settings, const std::shared_ptr<const LaidParagraph>& pLaid)
{
    const std::lock_guard lock(_mutex);
    auto found = _byKey.find(key);
    if (found == _byKey.end())
    {
        Entry& entry = _entries.emplace_front();
        entry.key = key.bytes;
        entry.hash = key.hash;
        entry.pShaped = pLaid->pShaped;
        entry.nBytes = sizeof(Entry) + entry.key.size() + entry.pShaped->getBytes();
        _nBytes += entry.nBytes;
        found = _byKey.emplace(Key{entry.key, entry.hash}, _entries.begin()).first;
    }
    Entry& entry = *found->second;
    if (entry.laid.size() == cMaxLaid)
    {
        const std::size_t n = entry.laid.front().second->getBytes();
        entry.laid.erase(entry.laid.begin());
        entry.nBytes -= n;
        _nBytes -= n;
    }
    entry.laid.emplace_back(settings, pLaid);
    entry.nBytes += pLaid->getBytes();
    _nBytes += pLaid->getBytes();
    while (_nBytes > cMaxBytes && !_entries.empty())
    {
        _nBytes -= _entries.back().nBytes;
        _byKey.erase({_entries.back().key, _entries.back().hash});
        _entries.pop_back();
    }
}

} // namespace gui::draw
