#pragma once

#include "CallStream.h"
#include "ProgramTexts.h"

#include <set>
#include <string>
#include <utility>

namespace gui::gl
{

/// Writes the calls that make GL objects as they are now. Each once, with what it consists of: a vertex array with its
/// buffers, a framebuffer with its textures. What is bound stays bound.
///
/// What renderbuffers and textures of several samples hold is left out, as GL tells nobody exactly.
class ObjectCapture
{
public:
    ObjectCapture(const ProgramTexts& texts, CallWriter& writer);

    /// Writes an object unless it is known.  @param target  of a texture: as it is or will be bound
    void need(GLCall::Kind kind, unsigned int name, unsigned int target = 0);

    /// Made in the frame: it is known from now on. Deleted in it: whoever gets the name is another.
    void made(GLCall::Kind kind, unsigned int name) { _known.insert({kind, name}); }
    bool deleted(GLCall::Kind kind, unsigned int name) { return _known.erase({kind, name}) > 0; }

    /// What can't be captured, for the log; empty when all can.
    const std::string& missing() const { return _missing; }
    void setMissing(const std::string& what);

private:
    void writeBuffer(unsigned int name);
    void writeVertexArray(unsigned int name);
    void writeTexture(unsigned int name, unsigned int target);
    void writeLevels(unsigned int target);
    void writeFramebuffer(unsigned int name);
    void writeAttachment(unsigned int attachment, bool hasSamples);
    void writeRenderbuffer(unsigned int name);
    void writeProgram(unsigned int name);
    void writeUniforms(unsigned int name);

    const ProgramTexts& _texts;
    CallWriter& _writer;
    std::set<std::pair<GLCall::Kind, unsigned int>> _known;
    std::string _missing;
};

} // namespace gui::gl
