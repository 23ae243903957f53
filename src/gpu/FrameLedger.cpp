#include <gui/gl/FrameLedger.h>

#include "CommandCounter.h"
#include "CountedGL.h"
#include "FrameTimer.h"

#include <chrono>
#include <memory>
#include <optional>

namespace gui::gl
{

namespace
{

using Clock = std::chrono::steady_clock;

struct Ledger
{
    FrameLedger::Frame last;
    CommandCounter commands;
    std::unique_ptr<FrameTimer> timer;      // null when GL's time is not asked for
    std::optional<Clock::time_point> begin; // of the frame that has begun
    std::uint64_t nFrames = 0;
    CommandCounter commandsAtPause;
    CountedGL::Counts countsAtPause;
    int nPauses = 0;
    bool isOn = false;
};

Ledger& ledger()
{
    // Never destroyed, like the contexts that its timer measures.
    static Ledger* const pLedger = new Ledger;
    return *pLedger;
}

} // namespace

void FrameLedger::start(Times times)
{
    Ledger& l = ledger();
    if (l.isOn)
        return;
    const int nPauses = l.nPauses;
    l = Ledger{};
    l.nPauses = nPauses;
    l.isOn = true;
    if (times == Times::CPUAndGPU)
        l.timer = std::make_unique<FrameTimer>();
    CountedGL::counts() = {};
    CountedGL::install();
    CommandCounter::s_pCurrent = &l.commands;
}

void FrameLedger::stop()
{
    Ledger& l = ledger();
    if (!l.isOn)
        return;
    CommandCounter::s_pCurrent = nullptr;
    CountedGL::restore();
    l.timer.reset();
    l.begin.reset();
    l.isOn = false;
}

bool FrameLedger::isOn() { return ledger().isOn; }

const FrameLedger::Frame& FrameLedger::getLast() { return ledger().last; }

void FrameLedger::begin()
{
    Ledger& l = ledger();
    if (!l.isOn)
        return;
    if (l.timer)
        l.timer->begin(l.nFrames + 1);
    l.begin = Clock::now();
}

void FrameLedger::end()
{
    Ledger& l = ledger();
    if (!l.isOn || !l.begin)
        return;
    Frame& frame = l.last;
    frame.number = ++l.nFrames;
    frame.cpuTime = std::chrono::duration<double, std::milli>(Clock::now() - *l.begin).count();
    l.begin.reset();
    if (l.timer)
    {
        l.timer->end();
        const FrameTimer::Result finished = l.timer->takeFinished();
        frame.gpuTime = finished.milliseconds;
        frame.gpuNumber = finished.number;
    }
    CountedGL::Counts& counts = CountedGL::counts();
    frame.nDraws = counts.nDraws;
    frame.nVertices = counts.nVertices;
    frame.nStatesSent = counts.nStates;
    frame.nUploads = counts.nUploads;
    frame.nBytesUploaded = counts.nBytes;
    frame.nCommands = l.commands.nCommands;
    frame.nStatesSaved = l.commands.nSaved;
    counts = {};
    l.commands = {};
}

FrameLedger::Pause::Pause()
{
    Ledger& l = ledger();
    if (l.nPauses++ > 0)
        return;
    l.commandsAtPause = l.commands;
    l.countsAtPause = CountedGL::counts();
}

FrameLedger::Pause::~Pause()
{
    Ledger& l = ledger();
    if (--l.nPauses > 0)
        return;
    l.commands = l.commandsAtPause;
    CountedGL::counts() = l.countsAtPause;
}

} // namespace gui::gl
