#pragma once

#include <array>

namespace gui::gl
{

/// Counts executed commands by their type, and colours and textures that they did not send again.
struct CommandCounter
{
    std::array<unsigned int, 11> nCommands{};
    unsigned int nSaved = 0;

    /// The counter at work; null while nobody counts.
    static inline CommandCounter* s_pCurrent = nullptr;
};

} // namespace gui::gl
