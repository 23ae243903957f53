#pragma once

#include <gui/port/RunLoop.h>
#include <td/Export.h>

#include <cstdint>
#include <optional>

namespace gui
{

/// The beat of a display, from what a server that counts frames tells of it: when frames are, and how far apart.
/// Times may jitter by some milliseconds, where the server has no display and goes by its own clock. Some servers only
/// pretend to count: what can be no beat is left out.
class GUIGL_API DisplayBeat
{
public:
    /// The display went on to a frame.
    struct Frame
    {
        std::uint64_t count = 0; ///< of the frames before it
        RunLoop::Time time{};
    };

    /// How many frames to ask ahead for the second of a pair.
    static constexpr std::uint64_t cSpan = 16;

    /// A pair that was asked for at once: the next frame, and one that is cSpan ahead of what was told last. Long ago
    /// it tells of the interval alone.  @return whether they go with the beat, which is known then
    bool add(const Frame& first, const Frame& second, RunLoop::Time now);

    RunLoop::Time getTime() const { return _last.time; } ///< of the last frame, without the jitter
    RunLoop::Clock::duration getInterval() const { return _interval; }

private:
    void begin(const Frame& frame, RunLoop::Clock::duration interval);
    bool goOn(const Frame& frame, RunLoop::Clock::duration interval);

    Frame _base;     // of the measure
    Frame _nextBase; // behind it
    Frame _last;
    RunLoop::Clock::duration _interval{}; // 0: not known
    bool _hasTime = false;
    bool _wasOff = false;
};

} // namespace gui
