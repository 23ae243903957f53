#pragma once

#include "Fuzz.h"
#include "shapes/TessellationFixture.h"

namespace fuzz
{

/// Points of an input: its next byte says how the rest is read, as floats of any bits or as whole numbers on a grid, on
/// which points meet, stand still and lie on one line. At most max.
test::Outline takeOutline(Input& input, std::size_t max);

/// Makes the shapes of all inputs, one after the other: its memory is that of those before.
test::Tessellating& shapes();

void require(const testing::AssertionResult& holds);

} // namespace fuzz
