#include "WaylandProbe.h"

#include <poll.h>
#include <wayland-client.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <memory>
#include <vector>

namespace gui
{

namespace
{

using Clock = std::chrono::steady_clock;

struct Answers
{
    WaylandProbe probe;
    std::vector<wl_output*> outputs;
    bool isDone = false;
};

Answers& answersOf(void* pData) { return *static_cast<Answers*>(pData); }

void onScale(void* pData, wl_output* pOutput, int32_t scale)
{
    Answers& answers = answersOf(pData);
    const auto index = std::ranges::find(answers.outputs, pOutput) - answers.outputs.begin();
    answers.probe.outputScales.at(static_cast<std::size_t>(index)) = static_cast<float>(scale);
}
void onGeometry(void*, wl_output*, int32_t, int32_t, int32_t, int32_t, int32_t, const char*, const char*, int32_t) {}
void onMode(void*, wl_output*, uint32_t, int32_t, int32_t, int32_t) {}
void onOutputDone(void*, wl_output*) {}

wl_output_listener outputListener()
{
    wl_output_listener listener{};
    listener.geometry = onGeometry;
    listener.mode = onMode;
    listener.done = onOutputDone;
    listener.scale = onScale;
    return listener;
}

void onGlobal(void* pData, wl_registry* pRegistry, uint32_t name, const char* interface, uint32_t version)
{
    constexpr uint32_t cVersionWithScale = 2;
    static const wl_output_listener listener = outputListener();
    Answers& answers = answersOf(pData);
    const auto is = [interface](const char* other) { return std::strcmp(interface, other) == 0; };
    if (is("wl_compositor"))
        answers.probe.hasCompositor = true;
    else if (is("wl_seat"))
        answers.probe.hasSeat = true;
    else if (is("xdg_wm_base"))
        answers.probe.hasShell = true;
    else if (is("wl_output") && version >= cVersionWithScale)
    {
        answers.probe.outputScales.push_back(1);
        answers.outputs.push_back(
            static_cast<wl_output*>(wl_registry_bind(pRegistry, name, &wl_output_interface, cVersionWithScale)));
        wl_output_add_listener(answers.outputs.back(), &listener, pData);
    }
}

void onGlobalRemove(void*, wl_registry*, uint32_t) {}
void onSync(void* pData, wl_callback*, uint32_t) { answersOf(pData).isDone = true; }

constexpr wl_registry_listener cRegistryListener{onGlobal, onGlobalRemove};
constexpr wl_callback_listener cSyncListener{onSync};

// Reads what comes until the time. @return false when nothing came or the connection broke
bool readEvents(wl_display* pDisplay, Clock::time_point end)
{
    while (wl_display_prepare_read(pDisplay) != 0)
        if (wl_display_dispatch_pending(pDisplay) < 0)
            return false;
    wl_display_flush(pDisplay);
    const auto rest = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
    pollfd descriptor{wl_display_get_fd(pDisplay), POLLIN, 0};
    if (rest.count() <= 0 || poll(&descriptor, 1, static_cast<int>(rest.count())) <= 0)
    {
        wl_display_cancel_read(pDisplay);
        return false;
    }
    return wl_display_read_events(pDisplay) == 0 && wl_display_dispatch_pending(pDisplay) >= 0;
}

// As wl_display_roundtrip, which waits for ever on a compositor that hangs.
bool roundtrip(wl_display* pDisplay, Answers& answers, Clock::time_point end)
{
    answers.isDone = false;
    wl_callback* const pCallback = wl_display_sync(pDisplay);
    wl_callback_add_listener(pCallback, &cSyncListener, &answers);
    while (!answers.isDone && readEvents(pDisplay, end))
        ;
    wl_callback_destroy(pCallback);
    return answers.isDone;
}

} // namespace

std::optional<WaylandProbe> WaylandProbe::ask()
{
    constexpr auto cPatience = std::chrono::seconds(2);
    const std::unique_ptr<wl_display, decltype(&wl_display_disconnect)> display(wl_display_connect(nullptr),
                                                                                wl_display_disconnect);
    if (display == nullptr)
        return std::nullopt;
    const Clock::time_point end = Clock::now() + cPatience;
    Answers answers;
    wl_registry* const pRegistry = wl_display_get_registry(display.get());
    wl_registry_add_listener(pRegistry, &cRegistryListener, &answers);
    // The first brings the globals, the second what the output says.
    const bool isAnswered = roundtrip(display.get(), answers, end) && roundtrip(display.get(), answers, end);
    for (wl_output* const pOutput : answers.outputs)
        wl_output_destroy(pOutput);
    wl_registry_destroy(pRegistry);
    return isAnswered ? std::optional(answers.probe) : std::nullopt;
}

} // namespace gui
