#include <gui/ZavObject.h>

#include "AsyncQueue.h"

#include <gui/NativeObject.h>
#include <td/Assert.h>

#include <memory>
#include <utility>

namespace gui
{

ZavObject::~ZavObject() { release(); }

void ZavObject::destroy() { delete this; }

unsigned int ZavObject::getObjType() const { return 0; }

void ZavObject::release()
{
    if (NativeObject* const pNative = std::exchange(_handle, nullptr))
        pNative->release();
}

void ZavObject::asyncCall(std::function<void()>* pFn, bool wake)
{
    TD_ASSERT(pFn != nullptr);
    AsyncQueue::instance().push(std::unique_ptr<std::function<void()>>(pFn), wake);
}

} // namespace gui
