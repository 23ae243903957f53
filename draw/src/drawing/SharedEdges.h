#pragma once

#include "ShapeGeometry.h"

#include <cstdint>
#include <span>
#include <vector>

namespace gui::draw
{

/// Finds fills that have an edge in common, one on each side of it: those between which nothing may show.
///
/// It may name a pair that has none, one in a million. Edges are compared as the shapes have them, to some 2^-16 of
/// their length, since each shape has a grid of its own.
class SharedEdges
{
public:
    /// Names what a shape was when it was added.
    using Version = std::uint32_t;

    /// Adds the edges of a fill, in two steps: the table is larger than the caches, and what is needed of it comes
    /// there while something else is done, the next shape's triangles best of all. Nothing else may be called in
    /// between.
    void begin(const ShapeGeometry& geometry);
    /// @param shape  any number for it  @param neighbours  becomes the shapes that it shares edges with, each once
    Version finish(std::uint32_t shape, std::vector<std::uint32_t>& neighbours);
    void remove(Version version);
    void clear();

private:
    struct Entry
    {
        std::uint32_t key = 0; // 0 for none; the lowest bit is the direction
        Version version = 0;
    };

    void grow(std::size_t nMore);
    void moveSome(std::size_t nPlaces);
    void insert(Entry entry);
    static std::size_t placeIn(const std::vector<Entry>& entries, std::uint32_t key);

    std::vector<Entry> _entries;        // as many as a power of two; the place is the key's, or after it
    std::vector<Entry> _old;            // that not all have been moved from: at once would take longer than a frame has
    std::size_t _nMoved = 0;            // places of these
    std::size_t _nUsed = 0;             // entries in either
    std::vector<std::uint32_t> _shapes; // by version; UINT32_MAX for those removed
    std::size_t _nRemoved = 0;          // entries of these
    std::vector<std::uint32_t> _counts; // of entries, by version
    std::vector<Version> _removed, _free; // with entries still there, and to be given again
    std::vector<Version> _leaving;        // with entries in _old alone
    std::vector<std::uint32_t> _keys;
};

} // namespace gui::draw
