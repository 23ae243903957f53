#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace gui::gl
{

/// Where a driver's message points to in a shader's source.
struct ShaderMessage
{
    int line;              ///< from 1
    int column;            ///< from 1; 0 when the driver names none
    std::string_view text; ///< the whole line of the driver's log
};

/// The messages of a driver's info log that name a line. Understood are "0:7(12): error: …", "0(7) : error …" and
/// "ERROR: 0:7: …", each with the number of the source string before the line.
std::vector<ShaderMessage> parseShaderLog(std::string_view infoLog);

/// The source lines that an info log names, each under the message that names it, with its number and a caret where a
/// column is known: one log line each, none when the log names no line of this source.
std::vector<std::string> explainShaderLog(std::string_view infoLog, std::string_view source);

} // namespace gui::gl
