#pragma once

#include <gui/Texture.h>
#include <td/Size.h>

#include <cstdint>
#include <string>
#include <vector>

namespace replay
{

/// What a framebuffer shows: of several samples their mean; of one that has depth alone, near is dark.
struct Picture
{
    td::Size<int> size;
    std::vector<unsigned char> pixels; ///< four bytes each, the lowest row first

    /// Reads a framebuffer, whatever is set in GL, and leaves all as it was. Empty for one that has nothing to read.
    /// @param screenSize  of framebuffers that belong to no texture
    static Picture read(unsigned int framebuffer, const td::Size<int>& screenSize);

    /// The size of what read would read.
    static td::Size<int> sizeOf(unsigned int framebuffer, const td::Size<int>& screenSize);

    /// Pixels that differ in any of their colours; all where the sizes do.
    std::size_t nDifferent(const Picture& other) const;

    gui::Texture toTexture() const;
    /// Throws an Error when it can't be written.
    void save(const std::string& path) const;
};

} // namespace replay
