#include "SDLEvents.h"

#include "Keyboard.h"
#include "Modifiers.h"
#include "SDLContext.h"

#include <gui/gl/InputTuning.h>
#include <gui/gl/port/KeySymbols.h>
#include <gui/gl/port/Keys.h>
#include <gui/gl/port/NativeSurface.h>

#include <SDL_keyboard.h>
#include <SDL_mouse.h>
#include <SDL_touch.h>
#include <xkbcommon/xkbcommon-keysyms.h>

#include <algorithm>
#include <iterator>
#include <optional>

namespace gui::gl
{

namespace
{

// Whether the right Alt key is an AltGr; known since it went down last.
bool s_isRightAltAltGr = false;

unsigned int modifiersOf(const gui::SDLEvent& event) { return toModifiers(event.modifiers, s_isRightAltAltGr); }

td::Point<double> toPoint(int x, int y) { return {static_cast<double>(x), static_cast<double>(y)}; }

td::Point<double> mousePoint(const gui::SDLEvent& event) { return toPoint(event.mouseX, event.mouseY); }

// SDL's numbers of the buttons and their bits; the left one and the right one first, which may be held with others.
struct ButtonName
{
    int number;
    ButtonEvent::Button button;
};
constexpr ButtonName cButtons[] = {{SDL_BUTTON_LEFT, ButtonEvent::Button::Left},
                                   {SDL_BUTTON_RIGHT, ButtonEvent::Button::Right},
                                   {SDL_BUTTON_MIDDLE, ButtonEvent::Button::Middle},
                                   {SDL_BUTTON_X1, ButtonEvent::Button::Back},
                                   {SDL_BUTTON_X2, ButtonEvent::Button::Forward}};

bool isLeftDown(const gui::SDLEvent& event) { return (event.mouseButtons & SDL_BUTTON_LMASK) != 0; }

} // namespace

SDLEvents::SDLEvents(NativeSurfaceClient& client, SDLContext& context)
    : _client(client)
    , _context(context)
    , _self(std::make_shared<SDLEvents*>(this))
{
    gui::setEventSink(context.getWindow(), this);
    if (client.acceptsDrops())
        gui::acceptDrops();
}

SDLEvents::~SDLEvents()
{
    gui::setEventSink(_context.getWindow(), nullptr);
    if (_takesText && hasKeyboard())
        SDL_StopTextInput();
}

void SDLEvents::onShow(const td::Size<int>& size)
{
    gui::setEventSink(_context.getWindow(), nullptr);
    _context.prepareToShow(size);
    gui::setEventSink(_context.getWindow(), this);
}

void SDLEvents::onEvent(const gui::SDLEvent& event)
{
    switch (event.event.type)
    {
    case SDL_WINDOWEVENT:
        onWindow(event);
        break;
    case SDL_MOUSEBUTTONDOWN:
    case SDL_MOUSEBUTTONUP:
        onButton(event);
        break;
    case SDL_MOUSEMOTION:
        onMotion(event);
        break;
    case SDL_MOUSEWHEEL:
        onWheel(event);
        break;
    case SDL_FINGERDOWN:
    case SDL_FINGERMOTION:
    case SDL_FINGERUP:
        onFinger(event);
        break;
    case SDL_KEYDOWN:
    case SDL_KEYUP:
        onKey(event);
        break;
    case SDL_TEXTINPUT:
        onText(event);
        break;
    case SDL_TEXTEDITING:
        onComposition(event.text, event.event.edit.start, event.event.edit.length);
        break;
    case SDL_TEXTEDITING_EXT:
        onComposition(event.text, event.event.editExt.start, event.event.editExt.length);
        break;
    case SDL_DROPCOMPLETE:
        _client.onDrop({event.files, event.text, modifiersOf(event), mousePoint(event)});
        break;
    default:
        break;
    }
}

void SDLEvents::onWindow(const gui::SDLEvent& event)
{
    switch (event.event.window.event)
    {
    case SDL_WINDOWEVENT_ENTER:
        _isLeavePending = false;
        if (_isPointerInside)
            break;
        _isPointerInside = true;
        _client.onMotion({MotionEvent::Kind::Entered, modifiersOf(event), mousePoint(event)});
        break;
    case SDL_WINDOWEVENT_LEAVE:
        // A drag that goes on outside is left when it is over.
        if (_isDragging)
            _isLeavePending = true;
        else
            leave(event, mousePoint(event));
        break;
    case SDL_WINDOWEVENT_FOCUS_GAINED:
        switchTextInput();
        _client.onFocus(true);
        break;
    case SDL_WINDOWEVENT_FOCUS_LOST:
        // Another window of the program, if it has the keyboard now, wants to decide itself.
        if (SDL_GetKeyboardFocus() == nullptr)
            SDL_StopTextInput();
        _client.onFocus(false);
        break;
    default:
        break;
    }
}

void SDLEvents::leave(const gui::SDLEvent& event, const td::Point<double>& point)
{
    _isLeavePending = false;
    if (!_isPointerInside)
        return;
    _isPointerInside = false;
    _client.onMotion({MotionEvent::Kind::Exited, modifiersOf(event), point});
}

void SDLEvents::onButton(const gui::SDLEvent& event)
{
    const SDL_MouseButtonEvent& button = event.event.button;
    const auto* const pName = std::ranges::find(cButtons, int(button.button), &ButtonName::number);
    if (pName == std::end(cButtons))
        return;
    const bool isLeft = button.button == SDL_BUTTON_LEFT;
    const bool isDown = button.type == SDL_MOUSEBUTTONDOWN;
    const td::Point<double> point = toPoint(button.x, button.y);
    if (isLeft)
        _isDragging = isDown;
    const std::weak_ptr<SDLEvents*> self = _self;
    _client.onButton({pName->button, isDown, isLeftDown(event), button.clicks, modifiersOf(event), point});
    // The click may have ended the view, and this with it.
    if (!self.expired() && _isLeavePending && !_isDragging)
        leave(event, point);
}

void SDLEvents::onMotion(const gui::SDLEvent& event)
{
    const SDL_MouseMotionEvent& motion = event.event.motion;
    // The mouse that SDL makes of the first finger.
    if (motion.which == SDL_TOUCH_MOUSEID && _pinch.isActive())
        return;
    const td::Point<double> point = toPoint(motion.x, motion.y);
    if ((motion.state & SDL_BUTTON_LMASK) != 0)
        _client.onMotion({MotionEvent::Kind::Dragged, modifiersOf(event), point});
    else if (motion.state == 0)
        _client.onMotion({MotionEvent::Kind::Moved, modifiersOf(event), point});
    else
        for (const ButtonName& name : cButtons)
            if ((motion.state & static_cast<Uint32>(SDL_BUTTON(name.number))) != 0)
            {
                _client.onMotion({MotionEvent::Kind::OtherDragged, modifiersOf(event), point, name.button});
                break;
            }
}

void SDLEvents::onWheel(const gui::SDLEvent& event)
{
    // Content follows the fingers: SDL counts what is scrolled to, to the right.
    const SDL_MouseWheelEvent& wheel = event.event.wheel;
    const double dx = (0.0 - static_cast<double>(wheel.preciseX)) * zav::s_wheelUnitsPerNotch;
    const double dy = static_cast<double>(wheel.preciseY) * zav::s_wheelUnitsPerNotch;
    _client.onWheel({dx, dy, modifiersOf(event), mousePoint(event)});
}

void SDLEvents::onFinger(const gui::SDLEvent& event)
{
    int width = 0;
    int height = 0;
    SDL_GetWindowSize(_context.getWindow(), &width, &height);
    const td::Size<double> size{static_cast<double>(width), static_cast<double>(height)};
    if (const std::optional<double> magnification = _pinch.onFinger(event.event.tfinger, size))
        _client.onMagnification({*magnification, modifiersOf(event)});
}

// SDL takes text for all windows or none.

bool SDLEvents::hasKeyboard() const { return SDL_GetKeyboardFocus() == _context.getWindow(); }

void SDLEvents::switchTextInput() const
{
    if (!hasKeyboard())
        return;
    if (!_takesText)
    {
        SDL_StopTextInput();
        return;
    }
    SDL_StartTextInput();
    SDL_SetTextInputRect(&_textInputRect);
}

void SDLEvents::setTextInput(bool isOn)
{
    _takesText = isOn;
    switchTextInput();
}

void SDLEvents::setTextInputRect(const SDL_Rect& rect)
{
    _textInputRect = rect;
    if (_takesText && hasKeyboard())
        SDL_SetTextInputRect(&_textInputRect);
}

void SDLEvents::onText(const gui::SDLEvent& event)
{
    _client.onText({event.text, event.isOfKey ? modifiersOf(event) : 0});
}

void SDLEvents::onComposition(std::string_view text, int start, int nSelected)
{
    // Input methods have -1 for a caret that isn't shown.
    const auto toNumber = [](int number) { return static_cast<std::size_t>(std::max(number, 0)); };
    _client.onComposition({text, start < 0 ? text.size() : toNumber(start), toNumber(nSelected)});
}

void SDLEvents::onKey(const gui::SDLEvent& event)
{
    const SDL_KeyboardEvent& key = event.event.key;
    const bool isDown = key.type == SDL_KEYDOWN;
    Keyboard& keyboard = Keyboard::of(_context.getWindow());
    if (isDown && key.keysym.scancode == SDL_SCANCODE_RALT)
        s_isRightAltAltGr = keyboard.getSymbol(event, false) == XKB_KEY_ISO_Level3_Shift;

    const KeyMapping mapping = mapKey(key.keysym.scancode, (event.modifiers & KMOD_NUM) != 0);
    if (mapping.keyCode == 0)
        return;
    unsigned short character = mapping.character;
    const bool isOfShifted = mapping.kind == KeyMapping::Character::OfShiftedLayout;
    if (isOfShifted || mapping.kind == KeyMapping::Character::OfLayout)
    {
        const bool isShifted = isOfShifted || (event.modifiers & KMOD_SHIFT) != 0;
        if (const unsigned short ofLayout = toCharacter(keyboard.getSymbol(event, isShifted)))
            character = ofLayout;
    }
    _client.onKey({isDown, mapping.keyCode, character, modifiersOf(event)});
}

} // namespace gui::gl
