#include <gui/gl/ContextResource.h>

namespace gui::gl
{

ContextResource& ContextResource::all()
{
    // Never destroyed: owners of GL names may be static objects.
    static ContextResource* const pRing = []
    {
        auto* const pNew = new ContextResource(nullptr, nullptr);
        pNew->_pPrevious = pNew->_pNext = pNew;
        return pNew;
    }();
    return *pRing;
}

void ContextResource::set(CurrentContext::ID contextID)
{
    if (contextID == _contextID)
        return;
    unlink();
    _contextID = contextID;
    if (contextID != 0)
        linkBefore(&all());
}

void ContextResource::unlink()
{
    if (_pNext == nullptr)
        return;
    _pPrevious->_pNext = _pNext;
    _pNext->_pPrevious = _pPrevious;
    _pPrevious = _pNext = nullptr;
}

void ContextResource::linkBefore(ContextResource* pNext)
{
    _pNext = pNext;
    _pPrevious = pNext->_pPrevious;
    _pPrevious->_pNext = this;
    pNext->_pPrevious = this;
}

void ContextResource::moveAll(CurrentContext::ID from, ContextResource& to)
{
    to._pPrevious = to._pNext = &to;
    ContextResource& ring = all();
    for (ContextResource* pResource = ring._pNext; pResource != &ring;)
    {
        ContextResource* const pNext = pResource->_pNext;
        if (pResource->_contextID == from)
        {
            pResource->unlink();
            pResource->linkBefore(&to);
        }
        pResource = pNext;
    }
}

} // namespace gui::gl
