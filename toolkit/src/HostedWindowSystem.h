#pragma once

#include <gui/port/WindowSystem.h>

#include <memory>

namespace gui
{

class Host;

/// A window system that does its host's bidding: no window of its own is seen.
std::unique_ptr<WindowSystem> createHostedWindowSystem(std::unique_ptr<Host> pHost);

} // namespace gui
