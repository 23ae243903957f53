#include "WaylandButtons.h"

#include <linux/input-event-codes.h>
#include <wayland-client.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace gui::sdl
{

namespace
{

using Clock = std::chrono::steady_clock;

// At SDL's numbers less 1.
constexpr std::array<uint32_t, 5> cButtons{BTN_LEFT, BTN_MIDDLE, BTN_RIGHT, BTN_SIDE, BTN_EXTRA};

} // namespace

struct WaylandButtons::Listeners
{
    static void onGlobal(void* pThis, wl_registry* pRegistry, uint32_t name, const char* interface, uint32_t)
    {
        auto& buttons = *static_cast<WaylandButtons*>(pThis);
        if (std::strcmp(interface, wl_seat_interface.name) != 0)
            return;
        auto* const pSeat = static_cast<wl_seat*>(wl_registry_bind(pRegistry, name, &wl_seat_interface, 1));
        buttons._pointers.push_back(std::make_unique<Pointer>(Pointer{&buttons, pSeat}));
        wl_seat_add_listener(pSeat, &cSeat, buttons._pointers.back().get());
    }
    static void onGlobalRemove(void*, wl_registry*, uint32_t) {}

    // To ask a seat for a pointer that it has not announced ends the connection.
    static void onCapabilities(void* pData, wl_seat* pSeat, uint32_t capabilities)
    {
        Pointer& pointer = *static_cast<Pointer*>(pData);
        const bool hasPointer = (capabilities & WL_SEAT_CAPABILITY_POINTER) != 0;
        if (hasPointer && pointer.pPointer == nullptr)
        {
            pointer.pPointer = wl_seat_get_pointer(pSeat);
            wl_pointer_add_listener(pointer.pPointer, &cPointer, pData);
        }
        else if (!hasPointer && pointer.pPointer != nullptr)
        {
            wl_pointer_destroy(std::exchange(pointer.pPointer, nullptr));
            pointer.pSurface = nullptr;
        }
    }
    static void onName(void*, wl_seat*, const char*) {}

    static void onEnter(void* pData, wl_pointer*, uint32_t, wl_surface* pSurface, wl_fixed_t, wl_fixed_t)
    {
        static_cast<Pointer*>(pData)->pSurface = pSurface;
    }
    static void onLeave(void* pData, wl_pointer*, uint32_t, wl_surface*)
    {
        static_cast<Pointer*>(pData)->pSurface = nullptr;
    }
    static void onMotion(void*, wl_pointer*, uint32_t, wl_fixed_t, wl_fixed_t) {}
    static void onButton(void* pData, wl_pointer*, uint32_t, uint32_t time, uint32_t button, uint32_t state)
    {
        const Pointer& pointer = *static_cast<Pointer*>(pData);
        const auto* const pButton = std::ranges::find(cButtons, button);
        if (pointer.pSurface == nullptr || pButton == cButtons.end())
            return;
        const auto number = static_cast<int>(pButton - cButtons.begin()) + 1;
        pointer.pOwner->_events.push_back({pointer.pSurface, number, state == WL_POINTER_BUTTON_STATE_PRESSED,
                                           std::chrono::milliseconds(time), Clock::now()});
    }
    static void onAxis(void*, wl_pointer*, uint32_t, uint32_t, wl_fixed_t) {}

    // Later versions tell of more, which nobody has asked for.
    static constexpr wl_pointer_listener makePointer()
    {
        wl_pointer_listener listener{};
        listener.enter = onEnter;
        listener.leave = onLeave;
        listener.motion = onMotion;
        listener.button = onButton;
        listener.axis = onAxis;
        return listener;
    }

    static constexpr wl_registry_listener cRegistry{onGlobal, onGlobalRemove};
    static constexpr wl_seat_listener cSeat{onCapabilities, onName};
    static const wl_pointer_listener cPointer;
};

constexpr wl_pointer_listener WaylandButtons::Listeners::cPointer = WaylandButtons::Listeners::makePointer();

// Without a roundtrip: the pointer is there before the user can press its buttons.
WaylandButtons::WaylandButtons(wl_display* pDisplay)
    : _registry(pDisplay, Listeners::cRegistry, this)
{
}

WaylandButtons::~WaylandButtons()
{
    for (const std::unique_ptr<Pointer>& pPointer : _pointers)
    {
        if (pPointer->pPointer != nullptr)
            wl_pointer_destroy(pPointer->pPointer);
        wl_seat_destroy(pPointer->pSeat);
    }
}

void WaylandButtons::dispatch() { _registry.dispatch(); }

std::optional<std::chrono::milliseconds> WaylandButtons::take(const wl_surface* pSurface, int button, bool isDown)
{
    dispatch();
    if (const std::optional<std::chrono::milliseconds> time = find(pSurface, button, isDown))
        return time;
    // What is sent to two listeners may be read in two parts.
    _registry.readWithoutWaiting();
    return find(pSurface, button, isDown);
}

// The first: a batch is read before the first of its events is told.
std::optional<std::chrono::milliseconds> WaylandButtons::find(const wl_surface* pSurface, int button, bool isDown)
{
    // SDL leaves some out, those of another seat say, and tells of the others at once.
    const Clock::time_point oldest = Clock::now() - std::chrono::seconds(1);
    std::erase_if(_events, [oldest](const Event& event) { return event.arrived < oldest; });
    const auto isIt = [&](const Event& event)
    { return event.pSurface == pSurface && event.button == button && event.isDown == isDown; };
    const auto it = std::ranges::find_if(_events, isIt);
    if (it == _events.end())
        return std::nullopt;
    const std::chrono::milliseconds time = it->time;
    _events.erase(_events.begin(), it + 1);
    return time;
}

} // namespace gui::sdl
