#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace gui::draw
{

/// Where a line may end, or has to.
struct LineBreak
{
    std::uint32_t offset; // in bytes
    bool isHard;

    bool operator==(const LineBreak&) const = default;
};

/// Unicode's rules for where text may be taken apart, by ICU. All take well-formed UTF-8 of less than 2 GiB, and leave
/// out its beginning, but not its end; nothing for an empty text.
std::vector<LineBreak> findLineBreaks(std::string_view text, const std::string& language);
std::vector<std::uint32_t> findGraphemes(std::string_view text);
std::vector<std::uint32_t> findWords(std::string_view text, const std::string& language);
/// Whether a text's last character ends a line, or more.
bool endsInLineEnd(std::string_view text);

/// The character at an offset below the text's size, and the one before an offset above 0.
char32_t characterAt(std::string_view text, std::size_t offset);
char32_t characterBefore(std::string_view text, std::size_t offset);
/// Whether what stands around an offset may be one letter; quick, and true more often than it has to be.
bool mayBeOneLetter(std::string_view text, std::size_t offset);
bool mayBeOneLetter(char32_t before, char32_t after);

} // namespace gui::draw
