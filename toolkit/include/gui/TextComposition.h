#pragma once

#include <cstddef>
#include <string>

namespace gui
{

/// What an input method (for Chinese, Japanese and Korean, or for accents by a dead key) has composed so far and has
/// not given yet. A view shows it at its caret, underlined, in place of the one before; it is not a part of the text.
struct TextComposition
{
    std::string text; ///< UTF-8, well-formed; empty when the composition is over, or given up
    /// What of it the user is at, in bytes of the text and never within a character: a selected part, or, where both
    /// are the same, a caret.
    std::size_t begin = 0;
    std::size_t end = 0; ///< see begin; not less

    bool operator==(const TextComposition&) const = default;
};

} // namespace gui
