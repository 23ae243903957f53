#pragma once

#include <td/Types.h>

#include <cstddef>
#include <string>
#include <vector>

namespace gui
{

/// Reads a whole file. Only regular files are read: a pipe or a device may never end.
/// @return false when it can't be read or has more than maxBytes bytes; cause then says why, and bytes is unchanged
bool readFile(const char* path, std::size_t maxBytes, std::vector<td::BYTE>& bytes, std::string& cause);

} // namespace gui
