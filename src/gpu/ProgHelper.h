#pragma once

#include <gui/gl/Program.h>
#include <gui/gl/Textures.h>
#include <td/Assert.h>
#include <vo/Log.h>

#include <epoxy/gl.h>
#include <glm/vec3.hpp>
#include <glm/vec4.hpp>

namespace gui::gl
{

/// Reaches what commands need of the current program. What they send most often is inline.
class ProgHelper
{
public:
    /// Whether commands send to this program now.
    static bool isCurrent(const Program* pProgram);

    /// Tells that textures were bound, or deleted, other than by a command: the next command with one binds it again.
    static void forgetTexture();

    void setProgram(Program* pProgram) { _pProgram = pProgram; }
    void setMVP(const glm::mat4* pMatrix) { _pProgram->setMVP(*pMatrix); }
    void setColor3(const glm::vec3& color)
    {
        if (_pProgram->_color3Location >= 0) [[likely]]
            glUniform3fv(_pProgram->_color3Location, 1, &color.x);
        else
            _pProgram->setColor3(color);
    }
    void setColor4(const glm::vec4& color)
    {
        if (_pProgram->_color4Location >= 0) [[likely]]
            glUniform4fv(_pProgram->_color4Location, 1, &color.x);
        else
            _pProgram->setColor4(color);
    }
    /// @return false, after a log line and an assertion, when the program has no texture set
    bool setTexture(Textures::Unit unit, unsigned char index)
    {
        Textures* const pTextures = _pProgram != nullptr ? _pProgram->_pTextures : nullptr;
        if (pTextures == nullptr) [[unlikely]]
            vo::dbgLog("Error! Textures used without being set in an active program!");
        TD_ASSERT(pTextures, false);
        setActive(*pTextures, unit, index);
        return true;
    }

private:
    // Textures::setActive, inlined where nothing is wrong.
    static void setActive(Textures& textures, Textures::Unit unit, unsigned char index)
    {
        const Textures::TextureInfo* const pTexture = textures._textures.begin() + index;
        if (unit > Textures::Unit::T31 || pTexture >= textures._textures.end() || pTexture->id == 0) [[unlikely]]
        {
            textures.setActive(unit, index);
            return;
        }
        glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(unit));
        glBindTexture(pTexture->type == Texture::Type::CubeMap ? GL_TEXTURE_CUBE_MAP : GL_TEXTURE_2D, pTexture->id);
    }

    Program* _pProgram = nullptr;
};

} // namespace gui::gl
