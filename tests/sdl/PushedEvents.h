#pragma once

#include <cstdint>
#include <string>

// Events that no user of a test can make, as SDL has them, for the window with the keyboard or another one.
namespace test::pushed
{

/// The window with the keyboard; 0 when none has it.
std::uint32_t focused();
bool isTextInputActive();
/// Which the user has set; 0 for nothing.
void setDoubleClickTime(int milliseconds);

/// What a finger does.
enum class Finger
{
    Down,
    Motion,
    Up
};
/// A finger at half the height. @param x  from 0 to 1 over the window
void finger(Finger kind, int id, float x);
/// The pointer, with these buttons held as SDL has their bits: 1 is the left one, 4 the right one.
void move(std::uint32_t window, int x, std::uint32_t buttons = 1);
/// What SDL makes of the first finger.
void moveByTouch(std::uint32_t window, int x);
void releaseLeft(std::uint32_t window, int x);
void compose(const std::string& text, int start, int length);

} // namespace test::pushed
