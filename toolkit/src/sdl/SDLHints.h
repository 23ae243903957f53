#pragma once

namespace gui::sdl
{

/// What a desktop program wants of either version of SDL, to be said before its video starts.
void giveHints();

} // namespace gui::sdl
