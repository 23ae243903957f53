#pragma once

#include "Player.h"

#include <map>
#include <string>

namespace replay
{

/// GL's state as it is now, in words, by what it is: "GL_BLEND" is "on", "program" is "3", "uniform color" is
/// "1 0 0 1". Names are those of the program that was captured.
std::map<std::string, std::string> stateTexts(const Player& player);

} // namespace replay
