#pragma once

#include <string>

namespace replay
{

/// Ends the program, with a line, when it takes too long: a shader in a file may go on for ever, and nobody can tell
/// before.  @param seconds  from now on; 0 ends the watch
void watch(const std::string& file, unsigned int seconds);

} // namespace replay
