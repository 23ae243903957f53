#include "SpacePainter.h"

#include <vo/Log.h>

namespace gui::draw
{

bool SpacePainter::fail(const char* reason)
{
    if (_lastFailure != reason)
        vo::dbgLog("Error! %s::draw: %s!", _owner, reason);
    _lastFailure = reason;
    return false;
}

SpaceProgram* SpacePainter::activate(SpaceProgram::Kind kind, unsigned int features, const SpaceSight& sight,
                                     gl::Buffer* pBuffer)
{
    if (!_pPrograms || _pPrograms->getContext() != gl::CurrentContext::getID())
        _pPrograms = SpacePrograms::get();
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
    return pProgram;
}

} // namespace gui::draw
