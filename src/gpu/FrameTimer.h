#pragma once

#include <gui/gl/CurrentContext.h>

#include <cstdint>
#include <deque>
#include <map>
#include <vector>

namespace gui::gl
{

/// How long GL works on a frame, by time stamps that it writes down when it comes to them. They arrive some frames
/// later. A frame that ends in another context than it began in is not measured.
class FrameTimer
{
public:
    struct Result
    {
        std::uint64_t number = 0;
        double milliseconds = -1;
    };

    FrameTimer() = default;
    ~FrameTimer();
    FrameTimer(const FrameTimer&) = delete;
    FrameTimer& operator=(const FrameTimer&) = delete;

    void begin(std::uint64_t number);
    void end();

    /// The latest frame of the current context that GL has finished.
    Result takeFinished();

private:
    struct Stamps
    {
        std::uint64_t number = 0;
        unsigned int begin = 0; // query names
        unsigned int end = 0;
    };
    struct Timed
    {
        bool isMeasured = false;
        std::deque<Stamps> pending; // oldest first
        std::vector<Stamps> unused;
        Result finished;
    };

    Timed& current();

    std::map<CurrentContext::ID, Timed> _contexts;
    Stamps _stamps; // of the frame that has begun, and
    CurrentContext::ID _stampsContext = 0;
};

} // namespace gui::gl
