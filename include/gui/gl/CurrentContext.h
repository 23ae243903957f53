#pragma once

#include <td/Export.h>
#include <td/Types.h>

#include <cstdint>

namespace gui::gl
{

/// Knows which GL context is current, so that GL names are deleted where they belong and cached state is right.
///
/// The library's own surfaces report their contexts here. An application or a host that makes contexts current by
/// itself must do the same: set() right after it made one current (or none), died() before it destroys one. As long as
/// no context is known to be current, the operations that create GL objects refuse with a log line.
///
/// GL names are numbers per context. Whoever holds one remembers the context's id, and hands name and id to deleteName:
/// the library's objects do, and an application that makes framebuffers, say, can do the same:
/// @code
/// glGenFramebuffers(1, &_framebuffer);
/// _contextID = gui::gl::CurrentContext::getID();
/// // and in the destructor, whichever context is current then, or none:
/// CurrentContext::deleteName(_contextID, gui::gl::CurrentContext::Kind::Framebuffer, _framebuffer);
/// @endcode
/// GUI thread only.
class GUIGL_API CurrentContext
{
public:
    /// What the window system calls a context: any pointer that tells living contexts apart. Null means none.
    using Handle = const void*;
    /// A number that is never used for a second context; 0 means none.
    using ID = std::uint64_t;

    /// The kind of GL object that a name belongs to: all that OpenGL 4.1 has.
    enum class Kind : td::BYTE
    {
        Buffer,
        Framebuffer,
        Program,
        ProgramPipeline,
        Query,
        Renderbuffer,
        Sampler,
        Shader,
        Texture,
        TransformFeedback,
        VertexArray
    };

    /// What onChange calls.
    using Listener = void (*)();

    /// Tells that this context is now current. When it was not before, the current program and the colour and texture
    /// last sent are forgotten, and names that were handed over for deletion meanwhile are deleted.
    static void set(Handle handle);

    /// Tells that this context is about to be destroyed. Its names die with it; nothing will be deleted for them.
    static void died(Handle handle);

    /// Tells that the current context is about to be replaced by another, and still works: what the library's objects
    /// have in it is deleted, framebuffers read their pixels, and it counts as dead. Instead of died, where that can
    /// be: others may share what is in a context, a toolkit for one, and would keep it. Nothing when none is current.
    static void retire();

    /// Makes all that the library's objects had in a context anew in the one that is current, with what they keep: see
    /// ContextResource, whose order it follows. Its end is the time at which GL names are right again; they are the
    /// same ones where the driver lets them be. Vertex array, program and textures that were bound are not.
    ///
    /// Surfaces of the library's and hosts with a HostedView need not call it; who makes contexts by himself does:
    /// @code
    /// const CurrentContext::ID lost = CurrentContext::getID();
    /// CurrentContext::died(context); // or retire(), as long as it works
    /// context = makeAnotherContext();
    /// CurrentContext::set(context);
    /// CurrentContext::restoreFrom(lost);
    /// @endcode
    /// @param lost  the context that is gone; what is of others stays as it is. Without a current context there is a
    ///              log line: "Error! CurrentContext::restoreFrom without a current GL context!"
    static void restoreFrom(ID lost);

    /// Has a function called after each change, before anything is done in the context that is current then: for those
    /// who remember what they told GL, as the library's commands do. It is called for good.
    static void onChange(Listener listener);

    /// The current context's id; 0 when none is.
    static ID getID();

    /// Whether a context is there still: false for one that died, and for 0. An owner of names whose context is not
    /// there has nothing in GL any more.
    static bool isAlive(ID id);

    /// Deletes a GL name: at once when its context is current, when that context is made current next if it is not; a
    /// name whose context died is forgotten.  @param owner  where the name was made  @param name  0 does nothing
    static void deleteName(ID owner, Kind kind, unsigned int name);

    /// For creating operations: whether a context is current. Writes "Error! <operation> without a current GL context!"
    /// to the log when none is.
    static bool isThere(const char* operation);
};

} // namespace gui::gl
