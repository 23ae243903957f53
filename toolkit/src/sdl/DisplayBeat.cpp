#include "DisplayBeat.h"

namespace gui
{

namespace
{

using Duration = RunLoop::Clock::duration;

// Apart by less there is too much jitter in a pair: it was asked for behind a pause, and both are the next frame.
constexpr std::uint64_t cFewestFrames = DisplayBeat::cSpan / 2;
// What a display may have between two frames.
constexpr Duration cShortestInterval = std::chrono::milliseconds(1);
constexpr Duration cLongestInterval = std::chrono::seconds(1);
// Older ones tell nothing of when the next is; those of another machine's clock neither.
constexpr Duration cOldestFrame = std::chrono::seconds(1);
// The beat is measured over this time, and up to twice as much: long enough for the jitter, and displays drift.
constexpr Duration cMeasureTime = std::chrono::seconds(5);
// How many frames there may be between two pairs for the second to go on from the first.
constexpr std::uint64_t cMostFrames = 1'000'000;
constexpr int cSteadiness = 4; // of what is known of the last frame, against one that is told

Duration timesOf(Duration interval, std::uint64_t n) { return interval * static_cast<Duration::rep>(n); }

} // namespace

bool DisplayBeat::add(const Frame& first, const Frame& second, RunLoop::Time now)
{
    if (second.count < first.count || second.count - first.count < cFewestFrames)
        return false;
    // A server that only pretends has answered both at once.
    const auto n = static_cast<Duration::rep>(second.count - first.count);
    const Duration interval = (second.time - first.time) / n;
    if (interval < cShortestInterval || interval > cLongestInterval)
    {
        _interval = Duration::zero();
        _hasTime = false;
        return false;
    }
    if (std::chrono::abs(now - second.time) > cOldestFrame)
    {
        if (!_hasTime)
            _interval = interval;
        return false;
    }
    if (!_hasTime)
        begin(second, interval);
    else if (goOn(second, interval))
        _wasOff = false;
    // One that comes late is no change of the display.
    else if (!_wasOff)
        return !(_wasOff = true);
    else
        begin(second, interval);
    return true;
}

void DisplayBeat::begin(const Frame& frame, Duration interval)
{
    _base = _nextBase = _last = frame;
    _interval = interval;
    _hasTime = true;
    _wasOff = false;
}

// Within a third of a beat of where it should be: two thirds would be the beat beside it.
bool DisplayBeat::goOn(const Frame& frame, Duration interval)
{
    const std::uint64_t nFrames = frame.count - _last.count;
    if (nFrames == 0 || nFrames > cMostFrames || std::chrono::abs(interval - _interval) > _interval / 10)
        return false;
    const Duration off = frame.time - _last.time - timesOf(_interval, nFrames);
    if (std::chrono::abs(off) > _interval / 3)
        return false;
    _last = {frame.count, frame.time - off + off / cSteadiness};
    _interval = (frame.time - _base.time) / static_cast<Duration::rep>(frame.count - _base.count);
    if (frame.time - _nextBase.time > cMeasureTime)
    {
        _base = _nextBase;
        _nextBase = _last;
    }
    return true;
}

} // namespace gui
