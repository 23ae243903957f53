#pragma once

#include "Command.h"

#include <td/Export.h>

#include <array>
#include <cstddef>
#include <cstdint>

namespace gui::gl
{

/// Counts what each frame costs: draw calls, changes of state, uploads, commands by kind, and times. It is off at first
/// and costs nothing then; while it is on, GL's entry points go through functions that count, also those that the
/// application calls by itself. Of draw calls of several
/// ranges only glMultiDrawElementsBaseVertex is seen, as one call; mapped buffers are not.
///
/// A view's frames begin and end by themselves, with onDraw; a program that draws without a view marks its frames by
/// begin() and end(). Calls between frames count for the frame that follows. A test can say that nothing is uploaded
/// any more:
///
///     FrameLedger::start();
///     ... // draw two frames
///     EXPECT_EQ(FrameLedger::getLast().nUploads, 0u);
///
/// GUI thread only.
class GUIGL_API FrameLedger
{
public:
    /// What one frame cost.
    struct Frame
    {
        std::uint64_t number = 0;     ///< 1 for the first frame since start; 0 means that there was none yet
        unsigned int nDraws = 0;      ///< draw calls that reached GL
        std::uint64_t nVertices = 0;  ///< that they named, for all instances
        unsigned int nStatesSent = 0; ///< calls that change state: binding, uniforms, enabling, and the like
        /// Colours and textures that commands did not send because they were the last ones sent.
        unsigned int nStatesSaved = 0;
        unsigned int nUploads = 0;        ///< calls that give GL vertices, indices or pixels
        std::uint64_t nBytesUploaded = 0; ///< by those calls; storage without content counts 0
        std::array<unsigned int, std::size_t(Command::Type::DrawAll) + 1> nCommands{}; ///< executed, by Command::Type
        double cpuTime = 0; ///< milliseconds from the frame's begin to its end
        /// Milliseconds that GL spent on an earlier frame, the latest that it has finished; below 0 as long as there is
        /// none, and where the driver does not measure.
        double gpuTime = -1;
        std::uint64_t gpuNumber = 0; ///< the number of that earlier frame

        /// How many commands of one type were executed.
        unsigned int getCount(Command::Type type) const { return nCommands[static_cast<std::size_t>(type)]; }
    };

    /// What is measured in time.
    enum class Times
    {
        CPU,
        CPUAndGPU ///< asks GL for time stamps, in contexts of 3.3 and later
    };

    /// Switches it on and begins anew; when it is on already, it stays as it was.
    static void start(Times times = Times::CPUAndGPU);
    /// Switches it off. The last frame stays readable.
    static void stop();
    static bool isOn();

    /// The last frame that ended.
    static const Frame& getLast();

    /// Marks where a frame begins and ends. A view calls both; calling end() before the end of onDraw gives the time up
    /// to there. An end without a begin does nothing, a second begin takes the place of the first. Nothing happens
    /// while the ledger is off.
    static void begin();
    static void end();

    /// While one lives, nothing is counted: for the display of these very numbers.
    class GUIGL_API Pause
    {
    public:
        Pause();
        ~Pause();
        Pause(const Pause&) = delete;
        Pause& operator=(const Pause&) = delete;
    };
};

} // namespace gui::gl
