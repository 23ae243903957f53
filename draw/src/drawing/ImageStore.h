#pragma once

#include <gui/draw/Image.h>
#include <gui/gl/CurrentContext.h>
#include <gui/gl/Textures.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace gui::draw
{

/// The images of a drawing and their textures, by numbers from 1 on.
class ImageStore
{
public:
    /// Takes a number for one more use of an image. @return 0 for no image
    std::uint32_t take(const Image& image);
    void giveBack(std::uint32_t number);
    const Image& get(std::uint32_t number) const { return _entries[number - 1].image; }
    void clear() { _entries.clear(); }

    /// Its texture in the current context, made when it is not there yet. @return 0 when GL had no room
    unsigned int getTexture(std::uint32_t number);

private:
    struct Entry
    {
        Image image;
        std::size_t nUses = 0;
        std::unique_ptr<gl::Textures> pTextures;
        gl::CurrentContext::ID contextID = 0;
    };

    std::vector<Entry> _entries;
};

} // namespace gui::draw
