#include "User.h"

#include "sdl/XServer.h"
#include "src/native/GLView.h"

#include <gui/Key.h>
#include <gui/gl/View.h>

#include <cctype>
#include <iterator>
#include <string>

namespace soak
{

namespace
{

constexpr int cActions = 12;

// What programs have uses for, but Escape, which ends them, F11, and S, which saves pictures.
constexpr char cCharacters[] = "123456789 fwad+-0mloenpt";

class X11User : public User
{
public:
    bool isOk() const { return _server.isOk(); }

    // The keys go where the pointer is: there is no window manager.
    void act(const std::vector<gui::gl::View*>&, Random& random, const std::function<void()>& turn) override
    {
        test::Arguments words{"xdotool"};
        const auto add = [&words](std::initializer_list<std::string> more) { words.insert(words.end(), more); };
        const char* const cModifiers[] = {"shift", "ctrl", "alt"};
        const char* const cKeys[] = {"Left", "Right", "Up", "Down", "plus", "minus", "space"};
        for (int i = 0; i < cActions; ++i)
        {
            const std::string modifier = cModifiers[below(random, 3)];
            const bool isModified = below(random, 3) == 0;
            if (isModified)
                add({"keydown", modifier});
            switch (below(random, 6))
            {
            case 0:
                add({"key", cKeys[below(random, std::size(cKeys))]});
                break;
            case 1:
                if (const char c = cCharacters[below(random, std::size(cCharacters) - 1)]; std::isalnum(c) != 0)
                    add({"key", std::string(1, c)});
                break;
            case 2:
                add({"click", std::to_string(1 + below(random, 7))});
                break;
            case 3:
                add({"mousedown", "1"});
                move(words, random);
                add({"mouseup", "1"});
                break;
            default:
                move(words, random);
                break;
            }
            if (isModified)
                add({"keyup", modifier});
        }
        test::Process xdotool(words);
        while (xdotool.isRunning())
            turn();
    }

private:
    static void move(test::Arguments& words, Random& random)
    {
        words.insert(words.end(),
                     {"mousemove", std::to_string(below(random, 1280)), std::to_string(below(random, 1024))});
    }

    test::XServer _server;
};

class OffscreenUser : public User
{
public:
    void act(const std::vector<gui::gl::View*>& views, Random& random, const std::function<void()>& turn) override
    {
        using namespace gui::gl;
        auto* const pNative =
            views.empty() ? nullptr : dynamic_cast<GLView*>(views[random() % views.size()]->getHandle());
        if (pNative == nullptr)
            return;
        td::Size<double> size;
        pNative->getSize(size);
        constexpr gui::KeyModifier cModifiers[] = {gui::KeyModifier::Shift, gui::KeyModifier::Cmd,
                                                   gui::KeyModifier::Alt};
        for (int i = 0; i < cActions; ++i)
        {
            const td::Point<double> point{size.width * below(random, 100) / 90.0,
                                          size.height * below(random, 100) / 90.0};
            const unsigned int modifiers =
                below(random, 3) == 0 ? static_cast<unsigned int>(cModifiers[below(random, 3)]) : 0;
            const bool isDown = below(random, 2) == 0;
            switch (below(random, 7))
            {
            case 0:
                pNative->onKey({isDown, static_cast<unsigned short>(123 + below(random, 4)), 0, modifiers});
                break;
            case 1:
                pNative->onKey({isDown, 128,
                                static_cast<unsigned char>(cCharacters[below(random, std::size(cCharacters) - 1)]),
                                modifiers});
                break;
            case 2:
                pNative->onButton({below(random, 3) == 0 ? ButtonEvent::Button::Right : ButtonEvent::Button::Left,
                                   isDown, isDown, static_cast<unsigned short>(1 + below(random, 2)), modifiers,
                                   point});
                break;
            case 3:
                pNative->onWheel({below(random, 40) - 20.0, below(random, 40) - 20.0, modifiers, point});
                break;
            case 4:
                pNative->onMagnification({below(random, 10) / 10.0 - 0.4, modifiers});
                break;
            default:
                pNative->onMotion({static_cast<MotionEvent::Kind>(below(random, 4)), modifiers, point});
                break;
            }
        }
        turn();
    }
};

} // namespace

std::unique_ptr<User> createX11User()
{
    auto pUser = std::make_unique<X11User>();
    return pUser->isOk() ? std::move(pUser) : nullptr;
}

std::unique_ptr<User> createOffscreenUser() { return std::make_unique<OffscreenUser>(); }

} // namespace soak
