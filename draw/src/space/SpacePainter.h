#pragma once

#include "SpacePrograms.h"
#include "SpaceSight.h"

#include <memory>
#include <vector>

namespace gui::draw
{

/// What draws of lines, points and instances have in common: programs of the current context, and one log line for each
/// kind of failure.
class SpacePainter
{
public:
    /// @param owner  the class that says what fails; a literal
    explicit SpacePainter(const char* owner)
        : _owner(owner)
    {
    }

    /// Whether a context is current, on the GUI thread.
    bool isThere() const;
    /// Logs a reason unless it was the last one. @return false
    bool fail(const char* reason);
    /// What fails from now on is said again. @return true
    bool succeed()
    {
        _lastFailure = nullptr;
        return true;
    }

    /// After the sight has looked: finds out whether that is for a sun's shadows, or under them.
    static void askForShadows(const Eye& eye, const Light& light, SpaceSight& sight);
    /// @return null after a failure; else a program in use, which knows the sight
    SpaceProgram* activate(SpaceProgram::Kind kind, unsigned int features, const SpaceSight& sight,
                           gl::Buffer* pBuffer = nullptr);
    bool drawQuads(const std::vector<gl::Quads::Range>& ranges)
    {
        return _pPrograms->getQuads().draw(ranges) || fail("there is no vertex array");
    }

private:
    const char* _owner;
    std::shared_ptr<SpacePrograms> _pPrograms;
    const char* _lastFailure = nullptr;
};

} // namespace gui::draw
