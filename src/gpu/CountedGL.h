#pragma once

#include <cstdint>

namespace gui::gl
{

/// GL's entry points, replaced by functions that count the calls and pass them on.
class CountedGL
{
public:
    struct Counts
    {
        unsigned int nDraws = 0;
        std::uint64_t nVertices = 0;
        unsigned int nStates = 0;
        unsigned int nUploads = 0;
        std::uint64_t nBytes = 0;
    };

    static void install();
    static void restore();

    /// What was counted since they were cleared last, by whoever counts.
    static Counts& counts();
};

} // namespace gui::gl
