#pragma once

#include "FrameFile.h"
#include "ObjectCapture.h"

#include "../gpu/CommandListener.h"

#include <map>
#include <string>

namespace gui::gl
{

/// What is captured of a frame in one context, while it is drawn.
class FrameRecording
{
public:
    /// The frame begins: GL's state is written, and what is bound.
    explicit FrameRecording(const ProgramTexts& texts);

    void before(const GLCall& call, CallArguments arguments);
    void after(const GLCall& call, CallArguments arguments);
    void onCommand(const Command* pCommand);

    /// The frame has ended.  @return what is wrong, in words; empty when nothing is
    std::string save(const std::string& path, const FrameFile::Info& info);

    std::size_t nBytes() const;
    const std::string& missing() const { return _objects.missing(); }

private:
    bool isLeftOut(const GLCall& call, CallArguments arguments) const;
    void needObjects(const GLCall& call, CallArguments arguments);
    void writeDeleted(const GLCall& call, CallArguments arguments);
    void writeProgram(unsigned int program);
    bool writeFromBuffer(const GLCall& call, CallArguments arguments);
    void writeCallers();

    const ProgramTexts& _texts;
    std::array<CallWriter, 3> _parts; // by FrameFile::Part
    ObjectCapture _objects;
    std::map<const CommandList*, std::uint32_t> _lists;
    std::string _callers;
    bool _isDiscarded = false; // by a query: what is drawn is not
};

} // namespace gui::gl
