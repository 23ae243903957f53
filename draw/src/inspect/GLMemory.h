#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace gui::draw
{

/// What the GL objects of the current context were asked for. Names are given out from 1 on; it stops looking after
/// some hundred that are none.
struct GLMemory
{
    enum class Kind
    {
        Buffer,
        Texture,
        Renderbuffer
    };

    using Names = std::set<std::pair<Kind, unsigned int>>;

    struct Object
    {
        Kind kind = Kind::Buffer;
        unsigned int name = 0;
        unsigned int target = 0; ///< of a texture
        int width = 0;           ///< of a texture or renderbuffer, in pixels
        int height = 0;
        std::uint64_t nBytes = 0;
    };

    std::vector<Object> objects; ///< by their size, largest first
    std::uint64_t nBytes = 0;    ///< of all

    std::uint64_t getBytes(Kind kind) const;
    std::size_t getCount(Kind kind) const;

    /// Whether the driver tells it without anything being bound.
    static bool isTold();
    /// Those in use; none where it is not told.
    static Names getNames();
    /// Asks for each name in use. @param without  names that are left out
    static GLMemory ask(const Names& without);
};

/// "12 bytes", "3.4 kB", "5.6 MB"
std::string toText(std::uint64_t nBytes);

} // namespace gui::draw
