#include "SpaceBlocks.h"

namespace gui::draw
{

void SpaceBlocks::resize(std::size_t nThings)
{
    if (nThings == _nThings)
        return;
    const std::size_t before = std::min(nThings, _nThings);
    _blocks.resize((nThings + _nThingsOfOne - 1) / _nThingsOfOne);
    _nThings = nThings;
    _isChanged = true;
    // The last one that stays has more or fewer.
    if (before / _nThingsOfOne < _blocks.size())
        _blocks[before / _nThingsOfOne].isChanged = true;
    if (nThings > 0)
        _blocks.back().isChanged = true;
}

void SpaceBlocks::markChanged(std::size_t first, std::size_t n)
{
    const std::size_t end = std::min(first + n, _nThings);
    for (std::size_t i = first / _nThingsOfOne; i * _nThingsOfOne < end; ++i)
        _blocks[i].isChanged = true;
    _isChanged = true;
}

void SpaceBlocks::findSeen(const Eye& eye, double reach, double size, std::vector<gl::Quads::Range>& ranges) const
{
    ranges.clear();
    const Eye wide = eye.getPart({-reach, -reach, eye.getSize().width + reach, eye.getSize().height + reach});
    const auto isSeen = [&](const Box3& box) { return wide.sees({box.min - size, box.max + size}); };
    if (!isSeen(_bounds))
        return;
    for (std::size_t i = 0; i < _blocks.size(); ++i)
    {
        if (!isSeen(_blocks[i].box))
            continue;
        const gl::Quads::Range range = getRange(i);
        if (!ranges.empty() && ranges.back().first + ranges.back().count == range.first)
            ranges.back().count += range.count;
        else
            ranges.push_back(range);
    }
}

} // namespace gui::draw
