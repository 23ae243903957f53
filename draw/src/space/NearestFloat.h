#pragma once

namespace gui::draw
{

/// The float nearest to a number. Volatile since GCC 12, where it rounds two numbers at a time and they are used as
/// doubles again, takes those that they were made of: a remainder would be 0, and a matrix begin elsewhere than the
/// shaders do.
inline float nearestFloat(double value)
{
    const volatile float nearest = static_cast<float>(value);
    return nearest;
}

} // namespace gui::draw
