#pragma once

#include "BakedFont.h"

#include <string>

namespace fontbake
{

/// A PNG that shows the font's characters as lines of text, laid out and blended as text is: black on white, or white
/// on black for a font that is made for that. A space stands where code
/// points are left out; the replacement box comes last. Throws Error.
std::string previewOf(const BakedFont& font);

} // namespace fontbake
