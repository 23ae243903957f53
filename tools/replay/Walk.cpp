#include "Walk.h"

#include "Error.h"

#include <capture/CallStream.h>

#include <algorithm>
#include <cstring>

namespace replay
{

namespace
{

// @return whether it is a note on what follows
bool takeNote(const GLCall& call, CallArguments arguments, DrawPlace& place)
{
    if (std::strcmp(call.name, "guiglCommand") == 0)
    {
        place.list = static_cast<unsigned int>(arguments[0].integer);
        place.command = static_cast<unsigned int>(arguments[1].integer);
        place.nCommands = static_cast<unsigned int>(arguments[2].integer);
        return true;
    }
    if (std::strcmp(call.name, "guiglCallers") != 0)
        return false;
    constexpr std::uint64_t cMostLetters = 4096;
    place.callers.assign(static_cast<const char*>(arguments[0].pointer), std::min(arguments[0].nBytes, cMostLetters));
    for (char& letter : place.callers)
        if (static_cast<unsigned char>(letter) < ' ' && letter != '\n')
            letter = '?';
    return true;
}

} // namespace

void walk(const gui::gl::FrameFile& file, FrameModel& model, const std::function<bool(const Step&)>& take)
{
    using gui::gl::FrameFile;
    gui::gl::PixelStore store;
    std::size_t nDraws = 0;
    for (const FrameFile::Part part : FrameFile::cParts)
    {
        DrawPlace place;
        gui::gl::CallReader reader(file.part(part), file.calls(), store);
        while (reader.next())
        {
            if (takeNote(reader.call(), reader.arguments(), place))
                continue;
            const bool isDraw = reader.call().role == GLCall::Role::Draw;
            model.follow(reader.call(), reader.arguments());
            if (part == FrameFile::Part::Frame && isDraw)
                ++nDraws;
            if (!take({reader.call(), reader.arguments(), part, nDraws, place}))
                return;
            // A command draws once.
            if (isDraw)
                place.list = 0;
        }
        if (!reader.error().empty())
            throw Error("damaged: " + reader.error());
    }
}

} // namespace replay
