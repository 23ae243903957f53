#pragma once

#include "CurrentContext.h"

#include <td/Export.h>
#include <td/Types.h>

namespace gui::gl
{

/// The context that something has GL objects in, and who makes them again when another context takes its place: a GPU
/// that was reset, a host that moves its widget. The library's buffers, programs and the like have one, and so can
/// objects of an application's that outlive a context. (A view is told by onContextLost and onContextRestored.)
/// @code
/// class Ramp
/// {
///     static void onEvent(void* pOwner, gui::gl::ContextResource::Event event)
///     {
///         if (event == gui::gl::ContextResource::Event::Restored)
///             static_cast<Ramp*>(pOwner)->upload(); // from what it keeps
///     }
///     gui::gl::ContextResource _home{onEvent, this};
/// };
/// // and where the GL objects are made:
/// _home.set(gui::gl::CurrentContext::getID());
/// @endcode
/// It costs nothing until a context is replaced. Not copyable. GUI thread only.
class GUIGL_API ContextResource
{
public:
    /// What the owner is called for.
    enum class Event : td::BYTE
    {
        /// The context is current, still works, and is about to be replaced: delete the names, and read what only GL
        /// has. It is not told when the context is gone already.
        Leaving,
        /// Another context is current: make everything anew. Names of the old one mean nothing any more.
        Restored
    };

    /// What is called. It may make and end resources, its own as well.
    using Function = void (*)(void* pOwner, Event event);

    /// In no context yet. @param pOwner  what the function gets
    ContextResource(Function function, void* pOwner)
        : _function(function)
        , _pOwner(pOwner)
    {
    }
    ~ContextResource() { unlink(); }
    ContextResource(const ContextResource&) = delete;
    ContextResource& operator=(const ContextResource&) = delete;

    /// The GL objects live in this context from now on; 0 for none. After a loss resources are called in the order in
    /// which they were set: what needs others that were there before finds them made.
    void set(CurrentContext::ID contextID);
    /// The context that was set, or the one that has taken its place; 0 for none.
    CurrentContext::ID getID() const { return _contextID; }
    /// Whether that context is there.
    bool isAlive() const { return CurrentContext::isAlive(_contextID); }
    /// CurrentContext::deleteName in that context.
    void deleteName(CurrentContext::Kind kind, unsigned int name) const
    {
        CurrentContext::deleteName(_contextID, kind, name);
    }

private:
    friend class CurrentContext;

    void unlink();
    void linkBefore(ContextResource* pNext);
    static ContextResource& all();
    static void moveAll(CurrentContext::ID from, ContextResource& to);

    Function _function;
    void* _pOwner;
    CurrentContext::ID _contextID = 0;
    // A ring of all that were set, in that order.
    ContextResource* _pPrevious = nullptr;
    ContextResource* _pNext = nullptr;
};

} // namespace gui::gl
