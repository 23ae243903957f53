#include "ProgHelper.h"

#include <td/Assert.h>
#include <vo/Log.h>

namespace gui::gl
{

void ProgHelper::setMVP(const glm::mat4* pMatrix) { _pProgram->setMVP(*pMatrix); }

bool ProgHelper::setTexture(Textures::Unit unit, unsigned char index)
{
    Textures* const pTextures = _pProgram != nullptr ? _pProgram->_pTextures : nullptr;
    if (pTextures == nullptr)
        vo::dbgLog("Error! Textures used without being set in an active program!");
    TD_ASSERT(pTextures, false);
    pTextures->setActive(unit, index);
    return true;
}

} // namespace gui::gl
