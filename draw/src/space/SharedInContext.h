#pragma once

#include <gui/gl/CurrentContext.h>

#include <algorithm>
#include <memory>
#include <vector>

namespace gui::draw
{

/// What all that draw in a context have together, of one kind: the current context's, made when there is none yet. It
/// goes with the last that has it.
/// @tparam Shared  lives in the context that is current when it is made; getContext() tells which that is, or which has
///                 taken its place
template <typename Shared>
std::shared_ptr<Shared> getSharedInContext()
{
    static std::vector<std::weak_ptr<Shared>> s_all;
    std::erase_if(s_all, [](const auto& pShared) { return pShared.expired(); });
    for (const auto& pShared : s_all)
        if (auto pThere = pShared.lock(); pThere->getContext() == gl::CurrentContext::getID())
            return pThere;
    auto pNew = std::make_shared<Shared>();
    s_all.push_back(pNew);
    return pNew;
}

} // namespace gui::draw
