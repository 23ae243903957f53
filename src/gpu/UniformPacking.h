#pragma once

#include <gui/gl/Command.h>
#include <td/Types.h>

#include <array>

namespace gui::gl
{

class Program;

// The uniforms that a command carries are packed in groups: a type byte, a location byte and the value.

inline constexpr unsigned int cGroupHead = 2;

/// Bytes of a value, by uniform type. Type 0 ends the groups.
inline constexpr std::array<td::BYTE, 21> UniformSize{0, 1, 1, 1, 3, 4, 8, 4, 4, 8, 12, 8, 12, 8, 8, 8, 8, 8, 8, 8, 8};

/// Types 1 to this one can be packed.
inline constexpr td::BYTE cLastPackableType = 5;

/// Writes a group of a packable type. @return the position behind it
td::BYTE* packUniform(td::BYTE* dst, const Command::_additinalUniform& uniform);

/// Sends the groups from p on, up to a type byte of 0 or the end, to a program in use.
/// @return whether all types were known; those behind an unknown one are not sent
bool sendUniforms(Program& program, const td::BYTE* p, const td::BYTE* pEnd);

} // namespace gui::gl
