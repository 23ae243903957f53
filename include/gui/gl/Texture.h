#pragma once

#include <td/Types.h>

namespace gui::gl
{

/// What a GL texture is, which decides how it is bound, and where it is bound to. Textures, in the plural, is the class
/// that holds them.
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

    /// A texture unit: unit n is GL_TEXTURE0 + n. Textures::Unit is the same.
    enum class Unit : td::BYTE
    {
        // clang-format off
        T0, T1, T2, T3, T4, T5, T6, T7, T8, T9, T10, T11, T12, T13, T14, T15,
        T16, T17, T18, T19, T20, T21, T22, T23, T24, T25, T26, T27, T28, T29, T30, T31
        // clang-format on
    };
};

} // namespace gui::gl
