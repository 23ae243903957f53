#pragma once

#include "GrowingArray.h"
#include "ShapeGeometry.h"

#include <cstdint>
#include <vector>

namespace gui::draw
{

/// Finds fills that have an edge in common, one on each side of it: those between which nothing may show.
///
/// It may name a pair that has none, one in a million. Edges are compared as the shapes have them, to some 2^-16 of
/// their length, since each shape has a grid of its own.
///
/// Most drawings are made and stay, and most edges have nothing beside them: what is added first is a list, of which
/// bits say what has no counterpart. The table in which others are looked up is made when some are added later.
class SharedEdges
{
public:
    /// Names what a shape was when it was added.
    using Version = std::uint32_t;

    struct Pair
    {
        std::uint32_t shape; ///< that was added later
        std::uint32_t other;
    };

    /// Adds the edges of a fill. @param shape  any number for it
    Version add(std::uint32_t shape, const ShapeGeometry& geometry);
    void remove(Version version);
    /// The pairs that came with what was added since it was asked last, each once, in the order in which shapes and
    /// their edges were added. Valid until it is asked again.
    const std::vector<Pair>& find();
    void clear();

private:
    struct Entry
    {
        std::uint32_t key = 0; // 0 for none; the lowest bit is the direction
        Version version = 0;
    };

    void findAtOnce();
    void findInTable();
    void dropRemoved();
    void fillTable();
    void look(const Entry& entry, std::uint32_t key, std::uint32_t shape, std::size_t firstPair);
    void grow(std::size_t nMore);
    void moveSome(std::size_t nPlaces);
    static void insert(std::vector<Entry>& entries, Entry entry);
    static std::size_t placeIn(const std::vector<Entry>& entries, std::uint32_t key);

    GrowingArray<std::uint32_t> _keys; // in the order in which they were added, of those not in the table
    std::vector<Version> _listed;      // that these are of
    std::size_t _nKnown = 0;           // versions of these whose pairs were found
    std::size_t _nKnownKeys = 0;
    std::vector<Pair> _pairs;

    std::vector<Entry> _entries;        // the table, of a power of two; the place is the key's, or after it
    std::vector<Entry> _old;            // that not all have been moved from: at once would take longer than a frame has
    std::size_t _nMoved = 0;            // places of these
    std::size_t _nUsed = 0;             // entries in either
    std::vector<std::uint32_t> _shapes; // by version; UINT32_MAX for those removed
    std::size_t _nRemoved = 0;          // keys of these
    std::vector<std::uint32_t> _counts; // of keys, by version
    std::vector<Version> _removed, _free; // with keys still there, and to be given again
    std::vector<Version> _leaving;        // with entries in _old alone
};

} // namespace gui::draw
