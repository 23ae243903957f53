#pragma once

#include "../gpu/ChangingArray.h"

#include <cstddef>
#include <unordered_map>

namespace gui::gl
{

/// What there is to know about a font's strings once some were replaced.
struct FontEdits
{
    ChangingArray vertices;                             ///< of all strings, once they are committed
    std::unordered_map<std::size_t, std::size_t> rooms; ///< vertices that the strings that were replaced have room for
};

} // namespace gui::gl
