#pragma once

#include <gui/gl/FrameLedger.h>

namespace gui::gl
{

/// Counts executed commands by their type, and colours and textures that they did not send again.
struct CommandCounter
{
    decltype(FrameLedger::Frame::nCommands) nCommands{};
    unsigned int nSaved = 0;

    /// The counter at work; null while nobody counts.
    static inline CommandCounter* s_pCurrent = nullptr;
};

} // namespace gui::gl
