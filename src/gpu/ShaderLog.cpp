#include "ShaderLog.h"

#include <algorithm>
#include <charconv>
#include <cstddef>

namespace gui::gl
{

namespace
{

// A driver that reports one line over and over must not flood the log.
constexpr std::size_t cMaxMessages = 16;

bool skip(std::string_view& text, std::string_view head)
{
    if (!text.starts_with(head))
        return false;
    text.remove_prefix(head.size());
    return true;
}

bool readNumber(std::string_view& text, int& number)
{
    const auto [pEnd, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || number < 0)
        return false;
    text.remove_prefix(static_cast<std::size_t>(pEnd - text.data()));
    return true;
}

// @return false when the message names no line
bool parseMessage(std::string_view text, int& line, int& column)
{
    skip(text, "ERROR: ") || skip(text, "WARNING: ");
    int sourceString = 0;
    column = 0;
    if (!readNumber(text, sourceString))
        return false;
    if (skip(text, "("))
        return readNumber(text, line) && skip(text, ")") && line > 0;
    if (!skip(text, ":") || !readNumber(text, line) || line == 0)
        return false;
    if (skip(text, "(") && !(readNumber(text, column) && skip(text, ")")))
        column = 0;
    return text.starts_with(":");
}

std::string_view takeLine(std::string_view& text)
{
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    return line;
}

std::string_view lineOf(std::string_view source, int number)
{
    std::string_view line;
    for (int i = 0; i < number; ++i)
    {
        if (source.empty())
            return {};
        line = takeLine(source);
    }
    return line;
}

// Blanks as wide as what stands before the column; tabs stay, so that the caret lands where the source's own do.
std::string caretLine(std::string_view line, std::size_t column)
{
    std::string caret(line.substr(0, column - 1));
    for (char& c : caret)
        if (c != '\t')
            c = ' ';
    return caret + '^';
}

} // namespace

std::vector<ShaderMessage> parseShaderLog(std::string_view infoLog)
{
    std::vector<ShaderMessage> messages;
    while (!infoLog.empty() && messages.size() < cMaxMessages)
    {
        ShaderMessage message{0, 0, takeLine(infoLog)};
        if (parseMessage(message.text, message.line, message.column))
            messages.push_back(message);
    }
    return messages;
}

std::vector<std::string> explainShaderLog(std::string_view infoLog, std::string_view source)
{
    std::vector<std::string> lines;
    for (const ShaderMessage& message : parseShaderLog(infoLog))
    {
        const std::string_view line = lineOf(source, message.line);
        if (line.empty())
            continue;
        const std::string number = std::to_string(message.line);
        lines.emplace_back(message.text);
        lines.push_back("  " + number + " | " + std::string(line));
        const auto column = static_cast<std::size_t>(message.column);
        if (column > 0 && column <= line.size() + 1)
            lines.push_back("  " + std::string(number.size(), ' ') + " | " + caretLine(line, column));
    }
    return lines;
}

} // namespace gui::gl
