#pragma once

#include <cstdint>
#include <string>

// GL's numbers as people know them, without the GL_ in front.

namespace replay
{

/// Of an enumeration; its number in hexadecimal where it has no name here.
std::string nameOf(std::int64_t value);
/// Of what a draw makes of its vertices.
std::string nameOfMode(std::int64_t mode);
/// Of what is cleared or copied: "COLOR | DEPTH".
std::string nameOfBuffers(std::int64_t bits);

} // namespace replay
