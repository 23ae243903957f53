#pragma once

#include "ObjectCapture.h"

namespace gui::gl
{

/// Writes the calls that set GL's state as it is now: what is on, functions, masks and values, and what is bound. The
/// objects that are bound are written before.
void writeState(CallWriter& writer, ObjectCapture& objects);

} // namespace gui::gl
