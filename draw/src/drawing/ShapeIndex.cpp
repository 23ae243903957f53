#include "ShapeIndex.h"

#include "ZOrder.h"

#include <algorithm>
#include <cmath>

namespace gui::draw
{

namespace
{

constexpr std::size_t cBranch = 8;

enum State : std::uint8_t
{
    IsAbsent,
    IsInTree,
    IsChanged, // since there is a tree
    IsUnknown  // to be asked for its rectangle
};
constexpr std::uint8_t cState = 3;
// Beside these: what lists have it, absent or not.
constexpr std::uint8_t cIsInChanged = 4, cIsInUnknown = 8;

using Rect = ShapeIndex::Rect;

bool touches(const Rect& a, const Rect& b)
{
    return a.left <= b.right && a.right >= b.left && a.top <= b.bottom && a.bottom >= b.top;
}

void widen(Rect& rect, const Rect& by)
{
    rect = {std::min(rect.left, by.left), std::min(rect.top, by.top), std::max(rect.right, by.right),
            std::max(rect.bottom, by.bottom)};
}

} // namespace

void ShapeIndex::set(std::uint32_t number)
{
    if (number >= _states.size())
        _states.resize(number + std::size_t(1), IsAbsent);
    std::uint8_t& state = _states[number];
    if ((state & cIsInUnknown) == 0)
        _unknown.push_back(number);
    state = static_cast<std::uint8_t>((state & cIsInChanged) | cIsInUnknown | IsUnknown);
}

void ShapeIndex::remove(std::uint32_t number)
{
    if (number < _states.size())
        _states[number] = static_cast<std::uint8_t>((_states[number] & ~cState) | IsAbsent);
}

void ShapeIndex::clear() { *this = ShapeIndex(); }

void ShapeIndex::build()
{
    _changed.clear();
    _levels.assign(1, {});
    std::vector<Node>& leaves = _levels[0];
    Rect all;
    for (std::uint32_t number = 0; number < _rects.size(); ++number)
    {
        const bool isThere = (_states[number] & cState) != IsAbsent;
        _states[number] = isThere ? IsInTree : IsAbsent;
        if (!isThere)
            continue;
        leaves.empty() ? void(all = _rects[number]) : widen(all, _rects[number]);
        leaves.push_back({_rects[number], number});
    }
    _nInTree = leaves.size();
    const auto cell = [](double low, double high, double from, double to)
    {
        const double share = to > from ? ((low / 2 + high / 2) - from) / (to - from) : 0;
        return static_cast<std::uint32_t>(std::clamp(share, 0.0, 1.0) * 4294967295.0);
    };
    std::vector<std::pair<std::uint64_t, Node>> sorted;
    sorted.reserve(leaves.size());
    for (const Node& node : leaves)
        sorted.emplace_back(zOrderOf(cell(node.rect.left, node.rect.right, all.left, all.right),
                                     cell(node.rect.top, node.rect.bottom, all.top, all.bottom)),
                            node);
    std::sort(sorted.begin(), sorted.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    std::transform(sorted.begin(), sorted.end(), leaves.begin(), [](const auto& pair) { return pair.second; });
    while (_levels.back().size() > cBranch)
    {
        const std::vector<Node>& below = _levels.back();
        std::vector<Node> level;
        for (std::size_t i = 0; i < below.size(); i += cBranch)
        {
            Node node{below[i].rect};
            for (std::size_t k = i; k < std::min(i + cBranch, below.size()); ++k)
                widen(node.rect, below[k].rect);
            level.push_back(node);
        }
        _levels.push_back(std::move(level));
    }
}

void ShapeIndex::search(std::size_t level, std::size_t first, std::size_t end, const Rect& rect,
                        const std::function<void(std::uint32_t)>& found) const
{
    const std::vector<Node>& nodes = _levels[level];
    for (std::size_t i = first; i < std::min(end, nodes.size()); ++i)
    {
        if (!touches(nodes[i].rect, rect))
            continue;
        if (level > 0)
            search(level - 1, i * cBranch, (i + 1) * cBranch, rect, found);
        else if ((_states[nodes[i].number] & cState) == IsInTree)
            found(nodes[i].number);
    }
}

void ShapeIndex::find(const Rect& rect, const std::function<Rect(std::uint32_t)>& rectOf,
                      const std::function<void(std::uint32_t)>& found)
{
    if (_rects.size() < _states.size())
        _rects.grow(_states.size() - _rects.size());
    for (const std::uint32_t number : _unknown)
    {
        std::uint8_t& state = _states[number];
        state = static_cast<std::uint8_t>(state & ~cIsInUnknown);
        if ((state & cState) != IsUnknown)
            continue;
        _rects[number] = rectOf(number);
        if ((state & cIsInChanged) == 0)
            _changed.push_back(number);
        state = IsChanged | cIsInChanged;
    }
    _unknown.clear();
    if (_levels.empty() || _changed.size() > 64 + _nInTree / 64)
        build();
    search(_levels.size() - 1, 0, cBranch, rect, found);
    for (const std::uint32_t number : _changed)
        if ((_states[number] & cState) == IsChanged && touches(_rects[number], rect))
            found(number);
}

} // namespace gui::draw
