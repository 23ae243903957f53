#pragma once

#include "../context/TextureBinding.h"

#include <gui/gl/Program.h>
#include <gui/gl/Textures.h>
#include <td/Assert.h>
#include <td/Color.h>
#include <vo/Log.h>

#include <epoxy/gl.h>
#include <glm/vec3.hpp>
#include <glm/vec4.hpp>

namespace gui::gl
{

/// The program that commands send to, and the colour that they sent last.
inline Program* s_pCurrentProgram = nullptr;
inline td::Color s_prevColor(0, 0, 0, 0);

/// The one that commands sent to in a context that is lost, until another takes its place.
inline Program* s_pProgramBefore = nullptr;

/// Reaches what commands need of the current program. What they send most often is inline.
class ProgHelper
{
public:
    static void setMVP(const glm::mat4& matrix) { s_pCurrentProgram->setMVP(matrix); }

    static void setColor3(const glm::vec3& color)
    {
        if (s_pCurrentProgram->_color3Location >= 0) [[likely]]
            glUniform3fv(s_pCurrentProgram->_color3Location, 1, &color.x);
        else
            s_pCurrentProgram->setColor3(color);
    }

    static void setColor4(const glm::vec4& color)
    {
        if (s_pCurrentProgram->_color4Location >= 0) [[likely]]
            glUniform4fv(s_pCurrentProgram->_color4Location, 1, &color.x);
        else
            s_pCurrentProgram->setColor4(color);
    }

    /// On OpenGL ES, to the uniform that stands for the state.
    static void setPointSize(float size)
    {
        if (s_pCurrentProgram != nullptr && s_pCurrentProgram->_pointSizeLocation >= 0)
            glUniform1f(s_pCurrentProgram->_pointSizeLocation, size);
    }

    /// @return false, after a log line and an assertion, when the program has no texture set
    static bool setTexture(Textures::Unit unit, unsigned char index)
    {
        Textures* const pTextures = s_pCurrentProgram != nullptr ? s_pCurrentProgram->_pTextures : nullptr;
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
        glBindTexture(textureTarget(pTexture->type), pTexture->id);
    }
};

} // namespace gui::gl
