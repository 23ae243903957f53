#pragma once

#include <functional>
#include <memory>
#include <random>
#include <vector>

namespace gui::gl
{
class View;
}

namespace soak
{

using Random = std::mt19937;

inline int below(Random& random, int n) { return static_cast<int>(random() % static_cast<unsigned int>(n)); }

/// Somebody who moves, clicks, turns the wheel and types without a plan.
class User
{
public:
    virtual ~User() = default;

    /// Does a few things. @param views  that are shown  @param turn  lets the program go on meanwhile
    virtual void act(const std::vector<gui::gl::View*>& views, Random& random, const std::function<void()>& turn) = 0;
};

/// In front of an X server of its own, which DISPLAY names from then on. @return null when there is none
std::unique_ptr<User> createX11User();

/// Where there is no display: native views get the events as from a surface.
std::unique_ptr<User> createOffscreenUser();

} // namespace soak
