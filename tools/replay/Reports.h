#pragma once

#include "Player.h"

#include <string>

// What guigl-replay prints.

namespace replay
{

/// The frame, and its draws, one in a line.
void printDraws(const gui::gl::FrameFile& file);

/// What is other at each draw than at the one before, and how many pixels it changed.
void printChanges(Player& player);

/// How long the GPU took for each draw.
void printTimes(Player& player);

/// What a buffer holds at the end of the frame; as vertices where a vertex array says how, else as bytes. Throws an
/// Error when there is none of this name.
void printBuffer(const gui::gl::FrameFile& file, unsigned int name);

/// The shaders of a program, as it is at the end of the frame. Throws an Error when there is none of this name.
void printProgram(const gui::gl::FrameFile& file, unsigned int name);

} // namespace replay
