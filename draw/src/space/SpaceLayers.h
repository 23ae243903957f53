#pragma once

#include "GlassCanvas.h"

#include <gui/draw/Eye.h>

#include <vector>

namespace gui::draw
{

/// What a frame's eyes share: what is translucent waits here until all else has been drawn.
class SpaceLayers
{
public:
    /// @param isSolid  whether nothing is translucent: where only depth counts
    explicit SpaceLayers(bool isSolid)
        : _isSolid(isSolid)
    {
    }

    bool isSolid() const { return _isSolid; }
    /// @param pOwner  what draws, to be removed when it goes
    void add(const void* pOwner, GlassCanvas::Source source) { _waiting.push_back({pOwner, std::move(source)}); }
    void remove(const void* pOwner);
    /// Draws all that waits into what is bound, and forgets it.
    void flush();

private:
    struct Waiting
    {
        const void* pOwner;
        GlassCanvas::Source source;
    };

    bool _isSolid;
    std::vector<Waiting> _waiting;
};

} // namespace gui::draw
