#pragma once

#include <common/Captions.h>

/// How everything is written on the map: dark letters of one size.
namespace worldmap
{

/// With a light rim, which keeps letters apart from the borders and coasts that they cross.
extern const examples::Captions::Style cRimmed;
extern const examples::Captions::Style cPlain;

/// @return false, after a line in the log, when a font is missing
[[nodiscard]] bool initWriting(examples::Captions& captions);

void drawWriting(examples::Captions& captions);

} // namespace worldmap
