#pragma once

#include <gui/draw/Box3.h>
#include <gui/draw/Eye.h>
#include <gui/gl/Quads.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace gui::draw
{

/// Boxes about things that follow each other in a list, so many in each: what is drawn or left out together.
class SpaceBlocks
{
public:
    explicit SpaceBlocks(std::size_t nThingsOfOne)
        : _nThingsOfOne(nThingsOfOne)
    {
    }

    /// There are so many now; those that are new have changed.
    void resize(std::size_t nThings);
    /// Some are elsewhere.
    void markChanged(std::size_t first, std::size_t n);

    /// Finds the boxes of those that have changed. @param boxOf  of the things from a first one to behind a last one
    template <typename BoxOf>
    void update(const BoxOf& boxOf)
    {
        if (!_isChanged)
            return;
        _isChanged = false;
        _bounds = {};
        for (std::size_t i = 0; i < _blocks.size(); ++i)
        {
            Block& block = _blocks[i];
            if (block.isChanged)
                block = {boxOf(i * _nThingsOfOne, endOf(i)), false};
            _bounds.add(block.box);
        }
    }

    /// Around everything, since the last update.
    const Box3& getBounds() const { return _bounds; }
    std::size_t getBlockOf(std::size_t thing) const { return thing / _nThingsOfOne; }
    const Box3& getBox(std::size_t block) const { return _blocks[block].box; }
    /// Which things a block has: count is 0 for none.
    gl::Quads::Range getRange(std::size_t block) const
    {
        return {static_cast<std::uint32_t>(block * _nThingsOfOne),
                static_cast<std::uint32_t>(endOf(block) - block * _nThingsOfOne)};
    }

    /// The things of blocks that may be seen, in a row as far as they follow each other.
    /// @param reach, size  how far things go on beyond their boxes, in points and in model units
    void findSeen(const Eye& eye, double reach, double size, std::vector<gl::Quads::Range>& ranges) const;

private:
    struct Block
    {
        Box3 box;
        bool isChanged = true;
    };

    std::size_t endOf(std::size_t block) const { return std::min((block + 1) * _nThingsOfOne, _nThings); }

    std::size_t _nThingsOfOne;
    std::vector<Block> _blocks;
    std::size_t _nThings = 0;
    Box3 _bounds;
    bool _isChanged = false;
};

} // namespace gui::draw
