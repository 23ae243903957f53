#pragma once

#include "LaidParagraph.h"
#include "ShapedParagraph.h"

#include <cstddef>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace gui::draw
{

/// The paragraphs that were laid out last, for the whole program: shaped ones, and of each some that have lines. What
/// nobody used for the longest time goes first. For any thread.
class ParagraphCache
{
public:
    static ParagraphCache& instance();

    /// The paragraph's lines, remembered or made.
    std::shared_ptr<const LaidParagraph> lay(const ParagraphText& paragraph, const LineSettings& settings);

private:
    struct Entry
    {
        std::string key;
        std::size_t hash = 0;
        std::shared_ptr<const ShapedParagraph> pShaped;
        std::vector<std::pair<LineSettings, std::shared_ptr<const LaidParagraph>>> laid; // the last one used last
        std::size_t nBytes = 0;
    };
    using Entries = std::list<Entry>; // the last one used first
    // Keys are as long as paragraphs: each is gone through once.
    struct Key
    {
        std::string_view bytes;
        std::size_t hash;

        bool operator==(const Key& other) const { return bytes == other.bytes; }
    };
    struct Hash
    {
        std::size_t operator()(const Key& key) const { return key.hash; }
    };

    static void makeKey(const ParagraphText& paragraph, std::string& key);
    void remember(Key key, const LineSettings& settings, const std::shared_ptr<const LaidParagraph>& pLaid);

    std::mutex _mutex;
    Entries _entries;
    std::unordered_map<Key, Entries::iterator, Hash> _byKey; // the bytes are the entries' own
    std::size_t _nBytes = 0;
};

} // namespace gui::draw
