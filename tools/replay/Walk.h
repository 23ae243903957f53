#pragma once

#include "FrameModel.h"

#include <functional>

namespace replay
{

/// What the library told of a draw.
struct DrawPlace
{
    unsigned int list = 0; ///< of commands; 0 for none
    unsigned int command = 0;
    unsigned int nCommands = 0;
    std::string callers; ///< one in a line
};

/// A call of a frame.
struct Step
{
    const GLCall& call;
    CallArguments arguments;
    gui::gl::FrameFile::Part part;
    std::size_t draw; ///< the draws of the frame so far, this one too if it is one
    const DrawPlace& place;

    bool isDraw() const { return part == gui::gl::FrameFile::Part::Frame && call.role == GLCall::Role::Draw; }
};

/// Goes through a file's calls, each of which is safe when it is handed on. Throws an Error at the first that isn't.
/// @param take  returns whether to go on
void walk(const gui::gl::FrameFile& file, FrameModel& model, const std::function<bool(const Step&)>& take);

} // namespace replay
