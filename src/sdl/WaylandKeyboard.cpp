#include "Keyboard.h"

#include <gui/gl/port/Keys.h>
#include <gui/port/sdl/SDLPort.h>

#include <wayland-client.h>
#include <xkbcommon/xkbcommon.h>

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <utility>
#include <vector>

namespace gui::gl
{

namespace
{

// Listens to the compositor beside SDL, which keeps the layout to itself: on a queue of its own, so that nothing that
// SDL waits for goes astray.
class WaylandKeyboard : public Keyboard
{
public:
    explicit WaylandKeyboard(wl_display* pDisplay);
    ~WaylandKeyboard() override;
    WaylandKeyboard(const WaylandKeyboard&) = delete;
    WaylandKeyboard& operator=(const WaylandKeyboard&) = delete;

    std::uint32_t getSymbol(const gui::SDLEvent& keyEvent, bool isShifted) override;

private:
    static void onGlobal(void* pThis, wl_registry* pRegistry, uint32_t name, const char* interface, uint32_t version);
    static void onGlobalRemove(void*, wl_registry*, uint32_t) {}
    static void onCapabilities(void* pThis, wl_seat* pSeat, uint32_t capabilities);
    static void onName(void*, wl_seat*, const char*) {}
    static void onKeymap(void* pThis, wl_keyboard*, uint32_t format, int32_t fd, uint32_t size);
    static void onEnter(void*, wl_keyboard*, uint32_t, wl_surface*, wl_array*) {}
    static void onLeave(void*, wl_keyboard*, uint32_t, wl_surface*) {}
    static void onKey(void* pThis, wl_keyboard*, uint32_t, uint32_t, uint32_t keyCode, uint32_t);
    static void onModifiers(void* pThis, wl_keyboard*, uint32_t, uint32_t, uint32_t, uint32_t, uint32_t group);
    static void onRepeatInfo(void*, wl_keyboard*, int32_t, int32_t) {}

    static constexpr wl_registry_listener cRegistryListener{onGlobal, onGlobalRemove};
    static constexpr wl_seat_listener cSeatListener{onCapabilities, onName};
    static constexpr wl_keyboard_listener cKeyboardListener{onKeymap, onEnter,     onLeave,
                                                            onKey,    onModifiers, onRepeatInfo};

    wl_display* _pDisplay;
    wl_event_queue* _pQueue;
    wl_registry* _pRegistry;
    std::vector<wl_seat*> _seats;
    wl_seat* _pSeat = nullptr; // the one whose keyboard this is
    wl_keyboard* _pKeyboard = nullptr;
    xkb_context* _pContext;
    xkb_keymap* _pKeymap = nullptr;
    xkb_state* _pState = nullptr;
    uint32_t _group = 0;
    std::array<uint32_t, 256> _keyGroups{}; // of each key, when it went down or up last
};

WaylandKeyboard::WaylandKeyboard(wl_display* pDisplay)
    : _pDisplay(pDisplay)
    , _pQueue(wl_display_create_queue(pDisplay))
    , _pContext(xkb_context_new(XKB_CONTEXT_NO_FLAGS))
{
    auto* const pWrapper = static_cast<wl_display*>(wl_proxy_create_wrapper(pDisplay));
    wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(pWrapper), _pQueue);
    _pRegistry = wl_display_get_registry(pWrapper);
    wl_proxy_wrapper_destroy(pWrapper);
    wl_registry_add_listener(_pRegistry, &cRegistryListener, this);
    // The first brings the seats, the second what they have, the third the layout.
    constexpr int cRoundtrips = 3;
    for (int i = 0; i < cRoundtrips; ++i)
        wl_display_roundtrip_queue(_pDisplay, _pQueue);
}

WaylandKeyboard::~WaylandKeyboard()
{
    if (_pKeyboard != nullptr)
        wl_keyboard_destroy(_pKeyboard);
    for (wl_seat* const pSeat : _seats)
        wl_seat_destroy(pSeat);
    wl_registry_destroy(_pRegistry);
    wl_event_queue_destroy(_pQueue);
    xkb_state_unref(_pState);
    xkb_keymap_unref(_pKeymap);
    xkb_context_unref(_pContext);
}

void WaylandKeyboard::onGlobal(void* pThis, wl_registry* pRegistry, uint32_t name, const char* interface, uint32_t)
{
    auto& keyboard = *static_cast<WaylandKeyboard*>(pThis);
    if (std::strcmp(interface, wl_seat_interface.name) != 0)
        return;
    auto* const pSeat = static_cast<wl_seat*>(wl_registry_bind(pRegistry, name, &wl_seat_interface, 1));
    wl_seat_add_listener(pSeat, &cSeatListener, pThis);
    keyboard._seats.push_back(pSeat);
}

// Keyboards come and go. To ask a seat for one that it has not announced ends the connection.
void WaylandKeyboard::onCapabilities(void* pThis, wl_seat* pSeat, uint32_t capabilities)
{
    auto& keyboard = *static_cast<WaylandKeyboard*>(pThis);
    const bool hasKeyboard = (capabilities & WL_SEAT_CAPABILITY_KEYBOARD) != 0;
    if (hasKeyboard && keyboard._pKeyboard == nullptr)
    {
        keyboard._pSeat = pSeat;
        keyboard._pKeyboard = wl_seat_get_keyboard(pSeat);
        wl_keyboard_add_listener(keyboard._pKeyboard, &cKeyboardListener, pThis);
    }
    else if (!hasKeyboard && pSeat == keyboard._pSeat)
    {
        keyboard._pSeat = nullptr;
        wl_keyboard_destroy(std::exchange(keyboard._pKeyboard, nullptr));
    }
}

void WaylandKeyboard::onKeymap(void* pThis, wl_keyboard*, uint32_t format, int32_t fd, uint32_t size)
{
    auto& keyboard = *static_cast<WaylandKeyboard*>(pThis);
    void* const pText = format == WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1 && size > 0
                            ? mmap(nullptr, size, PROT_READ, MAP_PRIVATE, fd, 0)
                            : MAP_FAILED;
    close(fd);
    if (pText == MAP_FAILED)
        return;
    // The size counts the terminating zero, but the text is somebody else's.
    const auto* const text = static_cast<const char*>(pText);
    xkb_keymap* const pKeymap = xkb_keymap_new_from_buffer(keyboard._pContext, text, strnlen(text, size),
                                                           XKB_KEYMAP_FORMAT_TEXT_V1, XKB_KEYMAP_COMPILE_NO_FLAGS);
    munmap(pText, size);
    if (pKeymap == nullptr)
        return;
    xkb_state_unref(keyboard._pState);
    xkb_keymap_unref(keyboard._pKeymap);
    keyboard._pKeymap = pKeymap;
    keyboard._pState = xkb_state_new(pKeymap);
}

// A whole batch of events is read before the first is asked about; the layout may have changed since.
void WaylandKeyboard::onKey(void* pThis, wl_keyboard*, uint32_t, uint32_t, uint32_t keyCode, uint32_t)
{
    auto& keyboard = *static_cast<WaylandKeyboard*>(pThis);
    if (keyCode < keyboard._keyGroups.size())
        keyboard._keyGroups[keyCode] = keyboard._group;
}

void WaylandKeyboard::onModifiers(void* pThis, wl_keyboard*, uint32_t, uint32_t, uint32_t, uint32_t, uint32_t group)
{
    static_cast<WaylandKeyboard*>(pThis)->_group = group;
}

std::uint32_t WaylandKeyboard::getSymbol(const gui::SDLEvent& keyEvent, bool isShifted)
{
    constexpr unsigned int cFirstKeyCode = 8;
    wl_display_dispatch_queue_pending(_pDisplay, _pQueue);
    const unsigned int keyCode = toKernelKeyCode(keyEvent.scancode);
    if (_pState == nullptr || keyCode == 0)
        return 0;
    const xkb_mod_index_t shift = xkb_keymap_mod_get_index(_pKeymap, XKB_MOD_NAME_SHIFT);
    const xkb_mod_mask_t modifiers = isShifted && shift != XKB_MOD_INVALID ? xkb_mod_mask_t(1) << shift : 0;
    xkb_state_update_mask(_pState, modifiers, 0, 0, 0, 0, _keyGroups[keyCode]);
    return xkb_state_key_get_one_sym(_pState, keyCode + cFirstKeyCode);
}

} // namespace

std::unique_ptr<Keyboard> createWaylandKeyboard(SDL_Window* pWindow)
{
    wl_display* const pDisplay = gui::sdl::getWayland(pWindow);
    return pDisplay != nullptr ? createWaylandKeyboard(pDisplay) : nullptr;
}

std::unique_ptr<Keyboard> createWaylandKeyboard(wl_display* pDisplay)
{
    return std::make_unique<WaylandKeyboard>(pDisplay);
}

} // namespace gui::gl
