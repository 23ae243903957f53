#include "FrameTimer.h"

#include "../context/Features.h"

#include <epoxy/gl.h>

#include <utility>

namespace gui::gl
{

namespace
{

constexpr std::size_t cMaxPending = 8;
constexpr double cPerMillisecond = 1e6;

} // namespace

FrameTimer::~FrameTimer()
{
    const auto deleteNames = [](CurrentContext::ID id, const Stamps& stamps)
    {
        CurrentContext::deleteName(id, CurrentContext::Kind::Query, stamps.begin);
        CurrentContext::deleteName(id, CurrentContext::Kind::Query, stamps.end);
    };
    for (const auto& [id, timed] : _contexts)
    {
        for (const Stamps& stamps : timed.pending)
            deleteNames(id, stamps);
        for (const Stamps& stamps : timed.unused)
            deleteNames(id, stamps);
    }
    deleteNames(_stampsContext, _stamps);
}

FrameTimer::Timed& FrameTimer::current()
{
    const auto [it, isNew] = _contexts.try_emplace(CurrentContext::getID());
    if (isNew && it->first != 0)
    {
        it->second.isMeasured = Features::get().hasTimeStamps;
        std::erase_if(_contexts,
                      [](const auto& timed) { return timed.first != 0 && !CurrentContext::isAlive(timed.first); });
    }
    return it->second;
}

void FrameTimer::begin(std::uint64_t number)
{
    if (_stamps.begin != 0)
        _contexts[_stampsContext].unused.push_back(std::exchange(_stamps, {}));
    Timed& timed = current();
    // A driver that never answers gets no more questions.
    if (!timed.isMeasured || timed.pending.size() >= cMaxPending)
        return;
    if (timed.unused.empty())
    {
        GLuint names[2] = {};
        glGenQueries(2, names);
        timed.unused.push_back({0, names[0], names[1]});
    }
    _stamps = timed.unused.back();
    timed.unused.pop_back();
    _stamps.number = number;
    _stampsContext = CurrentContext::getID();
    glQueryCounter(_stamps.begin, GL_TIMESTAMP);
}

void FrameTimer::end()
{
    if (_stamps.begin == 0)
        return;
    Timed& timed = _contexts[_stampsContext];
    if (_stampsContext == CurrentContext::getID())
    {
        glQueryCounter(_stamps.end, GL_TIMESTAMP);
        timed.pending.push_back(std::exchange(_stamps, {}));
    }
    else
        timed.unused.push_back(std::exchange(_stamps, {}));
}

FrameTimer::Result FrameTimer::takeFinished()
{
    Timed& timed = current();
    while (!timed.pending.empty())
    {
        const Stamps stamps = timed.pending.front();
        GLuint isThere = GL_FALSE;
        glGetQueryObjectuiv(stamps.end, GL_QUERY_RESULT_AVAILABLE, &isThere);
        if (isThere == GL_FALSE)
            break;
        GLuint64 begin = 0, end = 0;
        glGetQueryObjectui64v(stamps.begin, GL_QUERY_RESULT, &begin);
        glGetQueryObjectui64v(stamps.end, GL_QUERY_RESULT, &end);
        // Of OpenGL ES, a clock that was changed meanwhile.
        GLint isDisjoint = 0;
        if (Features::get().isES)
            glGetIntegerv(GL_GPU_DISJOINT_EXT, &isDisjoint);
        if (isDisjoint == 0)
            timed.finished = {stamps.number, static_cast<double>(end - begin) / cPerMillisecond};
        timed.pending.pop_front();
        timed.unused.push_back(stamps);
    }
    return timed.finished;
}

} // namespace gui::gl
