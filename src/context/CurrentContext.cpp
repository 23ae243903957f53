#include <gui/gl/CurrentContext.h>

#include "Restoration.h"

#include <gui/gl/ContextResource.h>
#include <td/GUIThread.h>
#include <vo/Log.h>

#include <epoxy/gl.h>

#include <map>
#include <utility>
#include <vector>

namespace gui::gl
{

namespace
{

struct Name
{
    CurrentContext::Kind kind;
    unsigned int name;
};

struct LivingContext
{
    CurrentContext::Handle handle;
    std::vector<Name> namesToDelete;
};

struct State
{
    // By id: an address that the window system hands out a second time must not revive the first context's names.
    std::map<CurrentContext::ID, LivingContext> living;
    CurrentContext::ID current = 0;
    CurrentContext::ID last = 0;
    std::vector<CurrentContext::Listener> listeners;
};

State& state()
{
    // Never destroyed: owners of GL names may be static objects.
    static State* const pState = new State;
    return *pState;
}

void deleteNow(Name name)
{
    switch (name.kind)
    {
    case CurrentContext::Kind::Buffer:
        glDeleteBuffers(1, &name.name);
        break;
    case CurrentContext::Kind::Framebuffer:
        glDeleteFramebuffers(1, &name.name);
        break;
    case CurrentContext::Kind::Program:
        glDeleteProgram(name.name);
        break;
    case CurrentContext::Kind::ProgramPipeline:
        glDeleteProgramPipelines(1, &name.name);
        break;
    case CurrentContext::Kind::Query:
        glDeleteQueries(1, &name.name);
        break;
    case CurrentContext::Kind::Renderbuffer:
        glDeleteRenderbuffers(1, &name.name);
        break;
    case CurrentContext::Kind::Sampler:
        glDeleteSamplers(1, &name.name);
        break;
    case CurrentContext::Kind::Shader:
        glDeleteShader(name.name);
        break;
    case CurrentContext::Kind::Texture:
        glDeleteTextures(1, &name.name);
        break;
    case CurrentContext::Kind::TransformFeedback:
        glDeleteTransformFeedbacks(1, &name.name);
        break;
    case CurrentContext::Kind::VertexArray:
        glDeleteVertexArrays(1, &name.name);
        break;
    }
}

std::map<CurrentContext::ID, LivingContext>::iterator find(CurrentContext::Handle handle)
{
    auto& living = state().living;
    auto it = living.begin();
    while (it != living.end() && it->second.handle != handle)
        ++it;
    return it;
}

} // namespace

void CurrentContext::set(Handle handle)
{
    State& s = state();
    if (handle != nullptr && s.living.empty())
        td::GUIThread::claim();
    TD_ASSERT_GUI_THREAD();
    auto it = s.living.end();
    if (handle != nullptr)
    {
        it = find(handle);
        if (it == s.living.end())
            it = s.living.emplace(++s.last, LivingContext{handle, {}}).first;
    }
    const ID id = it == s.living.end() ? 0 : it->first;
    if (id == s.current)
        return;
    s.current = id;
    for (const CurrentContext::Listener listener : s.listeners)
        listener();
    if (id == 0)
        return;
    for (const Name name : std::exchange(it->second.namesToDelete, {}))
        deleteNow(name);
}

void CurrentContext::died(Handle handle)
{
    TD_ASSERT_GUI_THREAD();
    State& s = state();
    const auto it = find(handle);
    if (it == s.living.end())
        return;
    if (it->first == s.current)
        set(nullptr);
    s.living.erase(it);
}

// A resource's owner may end others, and make some, in its call: each is back in the common ring before.
void CurrentContext::retire()
{
    State& s = state();
    const ID id = s.current;
    if (id == 0)
        return;
    ContextResource leaving(nullptr, nullptr);
    ContextResource::moveAll(id, leaving);
    while (leaving._pNext != &leaving)
    {
        ContextResource* const pResource = leaving._pNext;
        pResource->unlink();
        pResource->linkBefore(&ContextResource::all());
        pResource->_function(pResource->_pOwner, ContextResource::Event::Leaving);
    }
    if (const auto it = s.living.find(id); it != s.living.end())
        died(it->second.handle);
}

void CurrentContext::restoreFrom(ID lost)
{
    if (!isThere("CurrentContext::restoreFrom"))
        return;
    const ID id = getID();
    if (lost == 0 || lost == id)
        return;
    ContextResource waiting(nullptr, nullptr);
    ContextResource::moveAll(lost, waiting);
    if (waiting._pNext == &waiting)
        return;
    const Restoration restoration;
    while (waiting._pNext != &waiting)
    {
        ContextResource* const pResource = waiting._pNext;
        pResource->unlink();
        pResource->_contextID = id;
        pResource->linkBefore(&ContextResource::all());
        pResource->_function(pResource->_pOwner, ContextResource::Event::Restored);
    }
    glBindVertexArray(0);
    glUseProgram(0);
    for (const Listener listener : state().listeners)
        listener();
}

void CurrentContext::onChange(Listener listener) { state().listeners.push_back(listener); }

CurrentContext::ID CurrentContext::getID() { return state().current; }

bool CurrentContext::isAlive(ID id)
{
    const State& s = state();
    return (id != 0 && id == s.current) || s.living.contains(id);
}

void CurrentContext::deleteName(ID owner, Kind kind, unsigned int name)
{
    if (name == 0)
        return;
    State& s = state();
    const auto it = s.living.find(owner);
    if (it == s.living.end())
        return;
    if (owner == s.current)
        deleteNow({kind, name});
    else
        it->second.namesToDelete.push_back({kind, name});
}

bool CurrentContext::isThere(const char* operation)
{
    TD_ASSERT_GUI_THREAD(false);
    if (state().current != 0)
        return true;
    vo::dbgLog("Error! %s without a current GL context!", operation);
    return false;
}

} // namespace gui::gl
