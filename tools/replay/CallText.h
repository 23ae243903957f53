#pragma once

#include "Walk.h"

#include <string>

namespace replay
{

/// A call as one reads it: "glDrawElements(TRIANGLES, 300, UNSIGNED_INT, 0)".
std::string textOf(const GLCall& call, CallArguments arguments);

/// Where a draw comes from: "list 2, command 14 of 31"; empty where nobody said.
std::string textOf(const DrawPlace& place);

} // namespace replay
