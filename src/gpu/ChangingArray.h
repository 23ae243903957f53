#pragma once

#include "Pieces.h"

#include <gui/gl/ContextResource.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace gui::gl
{

/// A GL buffer that follows an array in memory: what was appended and changed is sent, what was moved is copied within
/// GL, and nothing else. Whatever still draws from it goes on undisturbed: ranges are written in the order of the
/// commands, all new contents and larger ones get storage of their own.
class ChangingArray
{
public:
    /// What it follows.
    struct Source
    {
        const void* data;
        std::size_t elementBytes; // in GL
        std::size_t room;         // for so many elements at least
        bool isNarrowed = false;  // 32-bit numbers in memory, 16-bit ones in GL
        bool canSlide = true;     // the first element may stand behind the beginning
        bool isQueue = false;     // memory has only those that GL lacks
    };

    Pieces pieces; ///< what is known of the array's elements

    /// Brings GL's buffer up to date; pieces has the array's size.
    /// @param name  GL's buffer; 0 makes one, and a larger or rearranged one takes its place
    /// @param before  its name in a context that was lost
    /// @return false when GL has no name to give: all is as before
    bool update(unsigned int& name, unsigned int before, const Source& source, const ContextResource& home);

    /// Tells that a buffer, which was made elsewhere, has n elements, and room for no more.
    void adopt(std::size_t n);

    /// Sends n elements that come behind the last, if GL has all others and room for these. @return false when not
    bool append(unsigned int name, const void* data, std::size_t n, std::size_t elementBytes);

    /// Where the first element stands.
    std::size_t getBase() const { return _base; }

private:
    bool moveToNew(unsigned int& name, unsigned int before, const Source& source, const ContextResource& home);
    void sendNew(const Source& source);

    std::size_t _capacity = 0;
    std::size_t _base = 0;
    std::vector<std::uint16_t> _narrowed;
};

} // namespace gui::gl
