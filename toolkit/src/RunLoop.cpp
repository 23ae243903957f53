#include <gui/port/RunLoop.h>

#include "AsyncQueue.h"
#include "TimerQueue.h"

#include <gui/NativeView.h>
#include <gui/Window.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace gui
{

namespace
{

constexpr double cDefaultDisplayRate = 60;

// What a display may have between two refreshes.
constexpr RunLoop::Clock::duration cShortestRefresh = std::chrono::milliseconds(1);
constexpr RunLoop::Clock::duration cLongestRefresh = std::chrono::seconds(1);
// Ticks are this part of a beat behind it: late enough for times that jitter, with the rest of the beat to draw in.
constexpr int cAfterBeat = 8;
// How many times the measured beat of frames counts for less than what was known of it.
constexpr int cSlowness = 16;

// What a caller may ask for, of a sleep or between two ticks, without the time overflowing.
constexpr double cLongestSleepInSeconds = 1e6;

RunLoop::Clock::duration toDuration(double seconds)
{
    const auto sleep = std::chrono::duration<double>(std::min(seconds, cLongestSleepInSeconds));
    return std::chrono::duration_cast<RunLoop::Clock::duration>(sleep);
}

// How long a time is behind the place that is a little behind a beat.
RunLoop::Clock::duration sinceBeat(RunLoop::Time time, RunLoop::Time shown, RunLoop::Clock::duration beat)
{
    const RunLoop::Clock::duration since = (time - (shown + beat / cAfterBeat)) % beat;
    return since < RunLoop::Clock::duration::zero() ? since + beat : since;
}

// The whole divisor of the display's rate that is nearest to the middle of the range, and in it: any other rate limps.
// The higher one of two. Where there is none, the middle itself, as far as the display can follow.
double frameRate(double displayRate, float minFPS, float maxFPS)
{
    const double rate = displayRate > 0 ? displayRate : cDefaultDisplayRate;
    if (!(minFPS > 0 && maxFPS > 0 && maxFPS >= minFPS))
        return rate;
    const auto min = static_cast<double>(minFPS);
    const auto max = static_cast<double>(maxFPS);
    const double middle = (min + max) / 2;
    double best = 0;
    const double nAbove = std::max(1.0, std::floor(rate / middle));
    for (const double divisor : {rate / nAbove, rate / (nAbove + 1)})
        if (divisor >= min && divisor <= max && (best == 0 || std::abs(divisor - middle) < std::abs(best - middle)))
            best = divisor;
    return best > 0 ? best : std::min(rate, middle);
}

} // namespace

RunLoop::RunLoop() = default;

RunLoop::~RunLoop() = default;

void RunLoop::connect()
{
    AsyncQueue::instance().setWakeUp([this] { wakeUp(); });
}

void RunLoop::disconnect() { AsyncQueue::instance().setWakeUp({}); }

std::optional<RunLoop::Time> RunLoop::getNextDue() const { return isSomethingDue() ? Clock::now() : getNextTick(); }

int RunLoop::run()
{
    while (step(cLongestSleepInSeconds))
        ;
    return std::exchange(_exitCode, std::nullopt).value_or(0);
}

bool RunLoop::step(double seconds)
{
    if (hasQuit())
        return false;
    if (!isSomethingDue() && seconds > 0)
    {
        const Time end = Clock::now() + toDuration(seconds);
        const std::optional<Time> tick = getNextTick();
        wait(tick ? std::min(*tick, end) : end);
    }
    dispatchEvents();
    if (!hasQuit())
        AsyncQueue::instance().runPending();
    if (!hasQuit())
        TimerQueue::instance().runDue();
    if (!hasQuit())
        runTicks();
    if (!hasQuit())
        runRedraws();
    return !hasQuit();
}

void RunLoop::quit(int code)
{
    _exitCode = code;
    wakeUp();
}

void RunLoop::restart()
{
    _exitCode.reset();
    _hasLastWindowClosed = false;
}

void RunLoop::closeWindows(int code)
{
    quit(code);
    // A copy: what closes may take others along, and may open some.
    std::vector<Window*> windows = _openWindows;
    for (; !windows.empty(); windows.pop_back())
        if (std::ranges::find(_openWindows, windows.back()) != _openWindows.end())
            windows.back()->close();
}

void RunLoop::windowOpened(Window* pWindow)
{
    _openWindows.push_back(pWindow);
    _hasLastWindowClosed = false;
}

void RunLoop::windowClosed(Window* pWindow)
{
    std::erase(_openWindows, pWindow);
    if (!_openWindows.empty())
        return;
    _hasLastWindowClosed = true;
    wakeUp();
}

void RunLoop::setNeedsDisplay(NativeView* pView) { entryOf(pView).needsDisplay = true; }

void RunLoop::startFrameClock(NativeView* pView, float minFPS, float maxFPS)
{
    const double rate = frameRate(getDisplayRate(pView), minFPS, maxFPS);
    Entry& entry = entryOf(pView);
    entry.hasClock = true;
    entry.minFPS = minFPS;
    entry.maxFPS = maxFPS;
    entry.period = toDuration(1 / rate);
    entry.nextTick = Clock::now() + entry.period;
}

void RunLoop::updateFrameClock(NativeView* pView)
{
    if (Entry* const pEntry = find(pView); pEntry != nullptr && pEntry->hasClock)
        startFrameClock(pView, pEntry->minFPS, pEntry->maxFPS);
}

void RunLoop::alignFrameClock(NativeView* pView, Time shown, Clock::duration refresh)
{
    Entry* const pEntry = find(pView);
    if (pEntry == nullptr || refresh < cShortestRefresh || refresh > cLongestRefresh)
        return;
    Entry& entry = *pEntry;
    measure(entry, shown, refresh);
    if (!entry.hasClock)
        return;
    const Clock::duration beat = entry.measured;
    const double rate = 1 / std::chrono::duration<double>(beat).count();
    const double nBeats = rate / frameRate(rate, entry.minFPS, entry.maxFPS);
    const auto n = static_cast<Clock::rep>(std::lround(std::min(nBeats, cLongestSleepInSeconds)));
    constexpr double cRounding = 1e-6;
    // A rate that no beat divides into stays what it is.
    if (std::abs(nBeats - static_cast<double>(n)) > cRounding)
        return;
    entry.period = beat * n;
    // To the place behind a beat that is nearest: a beat is neither left out nor taken twice where the times jitter.
    const Clock::duration after = sinceBeat(entry.nextTick, shown, beat);
    entry.nextTick -= after > beat / 2 ? after - beat : after;
}

std::optional<RunLoop::Time> RunLoop::getNextBeat(const NativeView* pView, Time after) const
{
    const Entry* const pEntry = find(pView);
    if (pEntry == nullptr || pEntry->measured == Clock::duration::zero() || after - pEntry->shown > cLongestRefresh)
        return std::nullopt;
    const Clock::duration since = sinceBeat(after, pEntry->shown, pEntry->measured);
    return after + pEntry->measured - since;
}

// Compositors have periods of their own: that of a display's mode is not always what it is shown at.
void RunLoop::measure(Entry& entry, Time shown, Clock::duration refresh)
{
    const Clock::duration since = shown - entry.shown;
    if (entry.refresh != refresh)
    {
        entry.refresh = refresh;
        entry.measured = refresh;
    }
    else if (since > Clock::duration::zero() && since < cLongestRefresh)
    {
        const auto n = std::max<Clock::rep>(1, (since + entry.measured / 2) / entry.measured);
        const Clock::duration beat = since / n;
        if (std::chrono::abs(beat - refresh) <= refresh / 4)
            entry.measured += (beat - entry.measured) / cSlowness;
    }
    entry.shown = shown;
}

void RunLoop::stopFrameClock(NativeView* pView)
{
    if (Entry* const pEntry = find(pView))
        pEntry->hasClock = false;
}

bool RunLoop::hasFrameClock(const NativeView* pView) const
{
    const Entry* const pEntry = find(pView);
    return pEntry != nullptr && pEntry->hasClock;
}

void RunLoop::setVisible(NativeView* pView, bool isVisible)
{
    Entry& entry = entryOf(pView);
    if (isVisible && !entry.isVisible)
        entry.nextTick = Clock::now();
    entry.isVisible = isVisible;
}

void RunLoop::forget(NativeView* pView)
{
    std::erase_if(_entries, [pView](const Entry& entry) { return entry.pView == pView; });
}

RunLoop::Entry& RunLoop::entryOf(NativeView* pView)
{
    if (Entry* const pEntry = find(pView))
        return *pEntry;
    return _entries.emplace_back(Entry{.pView = pView});
}

RunLoop::Entry* RunLoop::find(const NativeView* pView)
{
    const auto it =
        std::find_if(_entries.begin(), _entries.end(), [pView](const Entry& entry) { return entry.pView == pView; });
    return it != _entries.end() ? &*it : nullptr;
}

const RunLoop::Entry* RunLoop::find(const NativeView* pView) const { return const_cast<RunLoop*>(this)->find(pView); }

bool RunLoop::isSomethingDue() const
{
    return !AsyncQueue::instance().isEmpty() ||
           std::any_of(_entries.begin(), _entries.end(), [](const Entry& entry) { return entry.needsDisplay; });
}

std::optional<RunLoop::Time> RunLoop::getNextTick() const
{
    std::optional<Time> next = TimerQueue::instance().getNextDue();
    for (const Entry& entry : _entries)
        if (entry.hasClock && entry.isVisible && (!next || entry.nextTick < *next))
            next = entry.nextTick;
    return next;
}

void RunLoop::runTicks()
{
    // Handlers may start and stop clocks and make views come and go: the views are looked up again one by one.
    const std::vector<Entry> entries = _entries;
    const Time now = Clock::now();
    for (const Entry& candidate : entries)
    {
        Entry* const pEntry = find(candidate.pView);
        if (pEntry == nullptr || !pEntry->hasClock || !pEntry->isVisible || pEntry->nextTick > now)
            continue;
        // Ticks lie on multiples of the period, so that the rate does not drift; those that were missed are left out.
        const auto nMissed = (now - pEntry->nextTick) / pEntry->period;
        pEntry->nextTick += pEntry->period * (nMissed + 1);
        pEntry->needsDisplay = false;
        pEntry->pView->onFrameTick();
    }
}

void RunLoop::runRedraws()
{
    const std::vector<Entry> entries = _entries;
    for (const Entry& candidate : entries)
    {
        if (!candidate.needsDisplay)
            continue;
        Entry* const pEntry = find(candidate.pView);
        if (pEntry == nullptr || !pEntry->needsDisplay)
            continue;
        // Before the draw: a request from inside it is for the next turn.
        pEntry->needsDisplay = false;
        pEntry->pView->drawNow();
    }
}

} // namespace gui
