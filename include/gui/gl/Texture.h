#pragma once

#include <td/Types.h>

namespace gui::gl
{

/// What a GL texture is, which decides how it is bound. Textures, in the plural, is the class that holds them.
struct Texture
{
    /// Only CubeMap binds to GL_TEXTURE_CUBE_MAP; every other value binds to GL_TEXTURE_2D.
    enum class Type : td::BYTE
    {
        Tex2D = 2,     ///< an image addressed by (u, v)
        FontAtlas = 3, ///< the glyph image of a font
        CubeStrip = 4, ///< one image with the six faces of a cube side by side
        CubeMap = 5    ///< a GL cube map
    };
};

} // namespace gui::gl
