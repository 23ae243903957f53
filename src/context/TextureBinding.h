#pragma once

#include <gui/gl/Texture.h>

#include <epoxy/gl.h>

#include <array>
#include <cstddef>

namespace gui::gl
{

/// GL's name of each texture unit.
constexpr std::array<GLenum, 32> cZavPos = []
{
    std::array<GLenum, 32> names{};
    for (GLenum i = 0; i < names.size(); ++i)
        names[i] = GL_TEXTURE0 + i;
    return names;
}();
static_assert(cZavPos.size() == std::size_t(Texture::Unit::T31) + 1);

constexpr GLenum textureTarget(Texture::Type type)
{
    return type == Texture::Type::CubeMap ? GL_TEXTURE_CUBE_MAP : GL_TEXTURE_2D;
}

/// What commands bound last: unit * 256 + index in the texture set of the current program.
constexpr unsigned short cNoTexture = 65535;
inline unsigned short s_prevTexture = cNoTexture;

/// Tells that textures were bound, or deleted, other than by a command: the next command with one binds it again.
inline void forgetTexture() { s_prevTexture = cNoTexture; }

/// Binds a texture to the active unit.
inline void bindTexture(Texture::Type type, unsigned int textureID)
{
    forgetTexture();
    glBindTexture(textureTarget(type), textureID);
}

/// Makes a unit the active one. @return false after an assertion, when there is no such unit
bool activateUnit(Texture::Unit unit);

/// GL's name of a unit; 0 after an assertion.
unsigned int getZavPosID(Texture::Unit unit);

} // namespace gui::gl
