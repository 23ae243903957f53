#pragma once

#include <td/Export.h>

#include <functional>

namespace gui
{

class NativeObject;

/// The root of the toolkit's objects: one that has a counterpart in the window system. Not copyable.
class GUIGL_API ZavObject
{
public:
    ZavObject() = default;
    ZavObject(const ZavObject&) = delete;
    ZavObject& operator=(const ZavObject&) = delete;

    /// Releases the native object, if there still is one.
    virtual ~ZavObject();

    /// Deletes an object that was made with new.
    virtual void destroy();

    /// The code of the object's kind; 0 for a kind that has none.
    virtual unsigned int getObjType() const;

    /// The native object; null until there is one, and again after release().
    NativeObject* getHandle() const { return _handle; }

    /// Lets go of the native object. Nothing when there is none.
    void release();

    /// Runs a function later on the GUI thread, once, from the run loop's next turn on and in the order of the calls;
    /// never from inside this call. May be called from any thread.
    /// @param pFn   made with new; taken over and deleted after its call. If it throws, the exception leaves the run
    ///              loop's turn, and the functions behind it stay queued. Null is misuse ("pFn != nullptr") and queues
    ///              nothing.
    /// @param wake  true wakes a run loop that sleeps; false leaves the function until the loop wakes for another
    ///              reason
    static void asyncCall(std::function<void()>* pFn, bool wake);

protected:
    /// What getHandle gives. Who makes the native object sets it.
    NativeObject* _handle = nullptr;
};

} // namespace gui
