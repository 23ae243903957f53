#pragma once

#include "GlassCanvas.h"

#include <gui/draw/Eye.h>

#include <vector>

namespace gui::draw
{

class ShadowMap;

/// What a frame's eyes share: what is translucent waits here until all else has been drawn.
class SpaceLayers
{
public:
    /// What of a scene a pass draws.
    enum class What
    {
        All,
        Solid,  ///< nothing is translucent: where only depth counts
        Shadows ///< only what casts them
    };

    explicit SpaceLayers(What what)
        : _what(what)
    {
    }

    What getWhat() const { return _what; }
    void setWhat(What what) { _what = what; }
    /// What the sun sees; null where it is not asked. Not owned.
    const ShadowMap* getShadowMap() const { return _pShadowMap; }
    void setShadowMap(const ShadowMap* pMap) { _pShadowMap = pMap; }
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

    What _what;
    const ShadowMap* _pShadowMap = nullptr;
    std::vector<Waiting> _waiting;
};

} // namespace gui::draw
