#pragma once

#include "GLMemory.h"

#include <gui/gl/Buffer.h>
#include <gui/gl/Texture2DProgram.h>

#include <td/Point.h>
#include <td/Size.h>

#include <vector>

namespace gui::draw
{

/// Draws the context's flat textures side by side, as they are: without what their filters and levels make of them.
class TextureSheet
{
public:
    /// A texture and where it is in the view, in points.
    struct Place
    {
        GLMemory::Object texture;
        td::Point<double> at; ///< its top left corner
        td::Size<double> size;
    };

    TextureSheet() = default;
    ~TextureSheet();
    TextureSheet(const TextureSheet&) = delete;
    TextureSheet& operator=(const TextureSheet&) = delete;

    /// Where as many of them as there is room for go, from the bottom of the view upwards, largest first.
    static std::vector<Place> arrange(const GLMemory& memory, const td::Size<double>& view);

    /// Draws them over what is there. @param view  in points
    void draw(const std::vector<Place>& places, const td::Size<double>& view);

private:
    gl::Texture2DProgram _program;
    gl::Buffer _buffer{gl::DataType::Vec2, gl::DataType::Vec2};
    std::uint64_t _contextID = 0;
    unsigned int _sampler = 0;
    bool _isReady = false;
};

} // namespace gui::draw
