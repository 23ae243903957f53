#pragma once

#include <string>

namespace gui::gl
{

/// Who called, from the inside to the outside, one in a line: `program(function+0x1c)`, or `program+0x1234` where the
/// function has no name that is known, for addr2line. What is of this room is left out.
std::string callersText();

} // namespace gui::gl
