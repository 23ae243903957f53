#pragma once

#include <gui/gl/Program.h>

namespace gui::gl
{

/// Reaches what commands need of the current program.
class ProgHelper
{
public:
    /// Whether commands send to this program now.
    static bool isCurrent(const Program* pProgram);

    /// Tells that textures were bound, or deleted, other than by a command: the next command with one binds it again.
    static void forgetTexture();

    void setProgram(Program* pProgram) { _pProgram = pProgram; }
    void setMVP(const glm::mat4* pMatrix);
    /// @return false, after a log line and an assertion, when the program has no texture set
    bool setTexture(Textures::Unit unit, unsigned char index);

private:
    Program* _pProgram = nullptr;
};

} // namespace gui::gl
