#include "SpacePainter.h"

#include "ShadowMap.h"
#include "SpaceLayers.h"

#include <td/GUIThread.h>
#include <vo/Log.h>

namespace gui::draw
{

bool SpacePainter::isThere() const
{
    TD_ASSERT_GUI_THREAD(false);
    return gl::CurrentContext::isThere(_owner);
}

bool SpacePainter::fail(const char* reason)
{
    if (_lastFailure != reason)
        vo::dbgLog("Error! %s::draw: %s!", _owner, reason);
    _lastFailure = reason;
    return false;
}

void SpacePainter::askForShadows(const Eye& eye, const Light& light, SpaceSight& sight)
{
    const std::shared_ptr<SpaceLayers> pLayers = eye._pLayers.lock();
    sight.isOfSun = pLayers && pLayers->getWhat() == SpaceLayers::What::Shadows;
    // The map is the frame's, as the eye is.
    const bool isUnder = pLayers && !sight.isOfSun && light.kind == Light::Kind::Sun;
    sight.pShadowMap = isUnder ? pLayers->getShadowMap() : nullptr;
}

SpaceProgram* SpacePainter::activate(SpaceProgram::Kind kind, unsigned int features, const SpaceSight& sight,
                                     gl::Buffer* pBuffer)
{
    if (!_pPrograms || _pPrograms->getContext() != gl::CurrentContext::getID())
        _pPrograms = SpacePrograms::get();
    const bool isLit = (kind == SpaceProgram::Kind::Instances || (features & SpaceProgram::Spheres) != 0) &&
                       (features & (SpaceProgram::Plain | SpaceProgram::Ids)) == 0;
    if (isLit && sight.pShadowMap != nullptr)
        features |= SpaceProgram::Shadowed;
    if (!sight.clipping.isEmpty())
        features |= SpaceProgram::Clipped;
    SpaceProgram* pProgram = _pPrograms->find(kind, features);
    if (pProgram == nullptr)
    {
        fail("its program does not link");
        return nullptr;
    }
    pProgram->setBuffer(pBuffer);
    pProgram->activate();
    pProgram->setBuffer(nullptr);
    sight.tell(*pProgram);
    if ((features & SpaceProgram::Shadowed) != 0 && sight.pShadowMap != nullptr)
        sight.pShadowMap->tell(*pProgram, pProgram->at(SpaceProgram::ToShadowMap),
                               pProgram->at(SpaceProgram::ShadowSize), SpaceProgram::cShadowUnit,
                               sight.origin + sight.reference);
    return pProgram;
}

} // namespace gui::draw
