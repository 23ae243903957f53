#pragma once

#include "GrowingArray.h"

#include <td/RectNormalized.h>

#include <cstdint>
#include <functional>
#include <vector>

namespace gui::draw
{

/// A tree of boxes over numbered rectangles, packed level by level along a curve that fills the plane. It is made anew
/// when too much has changed since; what has changed is looked at one by one until then. Nothing is asked of rectangles
/// before something looks for some.
class ShapeIndex
{
public:
    using Rect = td::RectNormalized<double>;

    /// Adds or moves a rectangle.
    void set(std::uint32_t number);
    void remove(std::uint32_t number);
    void clear();

    /// Calls a function for all whose rectangle touches this one, in no order. @param rectOf  of a number that was set
    void find(const Rect& rect, const std::function<Rect(std::uint32_t)>& rectOf,
              const std::function<void(std::uint32_t)>& found);

private:
    struct Node
    {
        Rect rect;
        std::uint32_t number = 0; // of the rectangle, in the lowest level
    };

    void build();
    void search(std::size_t level, std::size_t first, std::size_t end, const Rect& rect,
                const std::function<void(std::uint32_t)>& found) const;

    GrowingArray<Rect> _rects;              // by number, of those that are there and known
    std::vector<std::uint8_t> _states;      // by number
    std::vector<std::uint32_t> _unknown;    // set since the last look, and removed perhaps
    std::vector<std::uint32_t> _changed;    // since there is a tree
    std::vector<std::vector<Node>> _levels; // the lowest first
    std::size_t _nInTree = 0;
};

} // namespace gui::draw
