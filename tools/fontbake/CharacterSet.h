#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace fontbake
{

/// Code points in ascending order, none twice. What a font lays out without a picture is left out: space, tab and the
/// line breaks U+000A and U+2028; so is U+FFFD, whose picture is the replacement box that every font has.
using CharacterSet = std::vector<char32_t>;

/// Reads ranges such as "32-126,160-255,U+400-U+45F": code points or pairs of them, decimal or hexadecimal after "U+".
/// Throws Error for anything else.
CharacterSet charactersOfRanges(std::string_view ranges);

/// The characters of a text in UTF-8, control characters left out. Throws Error, naming the line, where it is
/// malformed.
/// @param name  of the text, for the message
CharacterSet charactersOfText(std::string_view text, const std::string& name);

/// "U+0041", as messages show a character.
std::string nameOf(char32_t codePoint);

} // namespace fontbake
