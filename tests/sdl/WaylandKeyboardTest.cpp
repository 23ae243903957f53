#include "sdl/Keyboard.h"

#include <gui/port/sdl/SDL.h>

#include <gtest/gtest.h>
#include <wayland-client-core.h>
#include <wayland-server.h>
#include <xkbcommon/xkbcommon.h>

#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>

namespace test
{

namespace
{

// A compositor with two seats: the first has a pointer, the second a keyboard with a German layout.
class Compositor
{
public:
    Compositor()
    {
        EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets.data()), 0);
        wl_client_create(_pDisplay, sockets[1]);
        for (uint32_t& capabilities : _capabilities)
            wl_global_create(_pDisplay, &wl_seat_interface, 1, &capabilities, onBind);
        _thread = std::thread(
            [this]
            {
                constexpr int cTurn = 5;
                while (!_isOver)
                {
                    wl_display_flush_clients(_pDisplay);
                    wl_event_loop_dispatch(wl_display_get_event_loop(_pDisplay), cTurn);
                }
            });
    }
    ~Compositor()
    {
        _isOver = true;
        _thread.join();
        wl_display_destroy_clients(_pDisplay);
        wl_display_destroy(_pDisplay);
    }
    Compositor(const Compositor&) = delete;
    Compositor& operator=(const Compositor&) = delete;

    std::array<int, 2> sockets{}; // the first is the client's

private:
    static void onBind(wl_client* pClient, void* pCapabilities, uint32_t version, uint32_t id)
    {
        static const struct wl_seat_interface requests = {
            .get_pointer = nullptr, .get_keyboard = onGetKeyboard, .get_touch = nullptr, .release = nullptr};
        wl_resource* const pSeat = wl_resource_create(pClient, &wl_seat_interface, static_cast<int>(version), id);
        wl_resource_set_implementation(pSeat, &requests, pCapabilities, nullptr);
        wl_seat_send_capabilities(pSeat, *static_cast<uint32_t*>(pCapabilities));
    }

    static void onGetKeyboard(wl_client* pClient, wl_resource* pSeat, uint32_t id)
    {
        const uint32_t capabilities = *static_cast<uint32_t*>(wl_resource_get_user_data(pSeat));
        if ((capabilities & WL_SEAT_CAPABILITY_KEYBOARD) == 0)
        {
            wl_resource_post_error(pSeat, 0, "no keyboard");
            return;
        }
        wl_resource* const pKeyboard = wl_resource_create(pClient, &wl_keyboard_interface, 1, id);
        xkb_context* const pContext = xkb_context_new(XKB_CONTEXT_NO_FLAGS);
        const xkb_rule_names names{nullptr, nullptr, "de", nullptr, nullptr};
        xkb_keymap* const pKeymap = xkb_keymap_new_from_names(pContext, &names, XKB_KEYMAP_COMPILE_NO_FLAGS);
        char* const text = xkb_keymap_get_as_string(pKeymap, XKB_KEYMAP_FORMAT_TEXT_V1);
        const std::size_t size = std::strlen(text) + 1;
        const int fd = memfd_create("keymap", MFD_CLOEXEC);
        EXPECT_EQ(write(fd, text, size), static_cast<ssize_t>(size));
        wl_keyboard_send_keymap(pKeyboard, WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1, fd, static_cast<uint32_t>(size));
        close(fd);
        std::free(text); // NOLINT(cppcoreguidelines-no-malloc): the library's
        xkb_keymap_unref(pKeymap);
        xkb_context_unref(pContext);
    }

    wl_display* _pDisplay = wl_display_create();
    std::array<uint32_t, 2> _capabilities{WL_SEAT_CAPABILITY_POINTER, WL_SEAT_CAPABILITY_KEYBOARD};
    std::atomic<bool> _isOver = false;
    std::thread _thread;
};

// A seat that is asked for a keyboard that it has not ends the connection, and the program.
TEST(WaylandKeyboard, IsThatOfTheSeatThatHasOne)
{
    Compositor compositor;
    wl_display* const pDisplay = wl_display_connect_to_fd(compositor.sockets[0]);
    ASSERT_NE(pDisplay, nullptr);
    {
        const auto pKeyboard = gui::gl::createWaylandKeyboard(pDisplay);
        gui::SDLEvent event{};
        event.scancode = SDL_SCANCODE_Y;
        EXPECT_EQ(pKeyboard->getSymbol(event, false), std::uint32_t(XKB_KEY_z));
        EXPECT_EQ(pKeyboard->getSymbol(event, true), std::uint32_t(XKB_KEY_Z));
    }
    EXPECT_EQ(wl_display_get_error(pDisplay), 0);
    wl_display_disconnect(pDisplay);
}

} // namespace

} // namespace test
