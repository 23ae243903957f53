#pragma once

#include <td/Types.h>

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace gui
{

/// The bytes of a resource, found as Res finds it.
/// @param content  takes the bytes of one that is a file
/// @param bytes    the resource: content, or what is compiled in
/// @return false with the cause when there is none or when it can't be read
bool readResource(const char* name, std::size_t maxBytes, std::vector<td::BYTE>& content,
                  std::span<const td::BYTE>& bytes, std::string& cause);

} // namespace gui
