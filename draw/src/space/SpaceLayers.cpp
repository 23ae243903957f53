#include "SpaceLayers.h"

#include <utility>

namespace gui::draw
{

void SpaceLayers::remove(const void* pOwner)
{
    std::erase_if(_waiting, [=](const Waiting& waiting) { return waiting.pOwner == pOwner; });
}

void SpaceLayers::flush()
{
    if (_waiting.empty())
        return;
    std::vector<GlassCanvas::Source> sources;
    for (Waiting& waiting : _waiting)
        sources.push_back(std::move(waiting.source));
    _waiting.clear();
    GlassCanvas::get()->draw(sources);
}

} // namespace gui::draw
