#include "TextureBinding.h"

#include <td/Assert.h>

namespace gui::gl
{

unsigned int getZavPosID(Texture::Unit unit)
{
    TD_ASSERT(static_cast<std::size_t>(unit) < cZavPos.size(), 0);
    return cZavPos[static_cast<std::size_t>(unit)];
}

bool activateUnit(Texture::Unit unit)
{
    const GLenum glUnit = getZavPosID(unit);
    if (glUnit == 0)
        return false;
    glActiveTexture(glUnit);
    return true;
}

} // namespace gui::gl
