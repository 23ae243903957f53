#include "SDLEvents.h"

#include "Keyboard.h"
#include "Modifiers.h"
#include "SDLContext.h"

#include <gui/gl/InputTuning.h>
#include <gui/gl/port/KeySymbols.h>
#include <gui/gl/port/Keys.h>
#include <gui/gl/port/NativeSurface.h>
#include <gui/port/sdl/SDLPort.h>

#include <xkbcommon/xkbcommon-keysyms.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

namespace gui::gl
{

namespace
{

// Whether the right Alt key is an AltGr; known since it went down last.
bool s_isRightAltAltGr = false;

unsigned int modifiersOf(const gui::SDLEvent& event) { return toModifiers(event.modifiers, s_isRightAltAltGr); }

using Type = gui::SDLEvent::Type;

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
        gui::sdl::acceptDrops();
}

SDLEvents::~SDLEvents()
{
    gui::setEventSink(_context.getWindow(), nullptr);
    if (_takesText && hasKeyboard())
        gui::sdl::stopTextInput(_context.getWindow());
}

void SDLEvents::onShow(const td::Size<int>& size)
{
    gui::setEventSink(_context.getWindow(), nullptr);
    _context.prepareToShow(size);
    gui::setEventSink(_context.getWindow(), this);
}

void SDLEvents::onEvent(const gui::SDLEvent& event)
{
    switch (event.type)
    {
    case Type::Entered:
    case Type::Left:
        onPointer(event);
        break;
    case Type::FocusGained:
    case Type::FocusLost:
        onFocus(event.type == Type::FocusGained);
        break;
    case Type::ButtonDown:
    case Type::ButtonUp:
        onButton(event);
        break;
    case Type::Motion:
        onMotion(event);
        break;
    case Type::Wheel:
        onWheel(event);
        break;
    case Type::Pinch:
        _client.onMagnification({event.magnification, modifiersOf(event)});
        break;
    case Type::FingerDown:
    case Type::FingerMotion:
    case Type::FingerUp:
        onFinger(event);
        break;
    case Type::KeyDown:
    case Type::KeyUp:
        onKey(event);
        break;
    case Type::Text:
        onText(event);
        break;
    case Type::Composition:
        onComposition(event.text, event.start, event.nSelected);
        break;
    case Type::Dropped:
        _client.onDrop({event.files, event.text, modifiersOf(event), event.mouse});
        break;
    default:
        break;
    }
}

void SDLEvents::onPointer(const gui::SDLEvent& event)
{
    if (event.type == Type::Left)
    {
        // A drag that goes on outside is left when it is over.
        if (_isDragging)
            _isLeavePending = true;
        else
            leave(event, event.mouse);
        return;
    }
    _isLeavePending = false;
    if (!std::exchange(_isPointerInside, true))
        _client.onMotion({MotionEvent::Kind::Entered, modifiersOf(event), event.mouse});
}

void SDLEvents::onFocus(bool hasFocus)
{
    // Another window of the program, if it has the keyboard now, wants to decide itself.
    if (hasFocus)
        switchTextInput();
    else if (SDL_GetKeyboardFocus() == nullptr)
        gui::sdl::stopTextInput(_context.getWindow());
    _client.onFocus(hasFocus);
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
    const auto* const pName = std::ranges::find(cButtons, event.button, &ButtonName::number);
    if (pName == std::end(cButtons))
        return;
    const bool isDown = event.type == Type::ButtonDown;
    if (event.button == SDL_BUTTON_LEFT)
        _isDragging = isDown;
    const std::weak_ptr<SDLEvents*> self = _self;
    _client.onButton({pName->button, isDown, isLeftDown(event), event.nClicks, modifiersOf(event), event.mouse});
    // The click may have ended the view, and this with it.
    if (!self.expired() && _isLeavePending && !_isDragging)
        leave(event, event.mouse);
}

void SDLEvents::onMotion(const gui::SDLEvent& event)
{
    // The mouse that SDL makes of the first finger.
    if (event.isOfTouch && _pinch.isGoingOn())
        return;
    if (isLeftDown(event))
        _client.onMotion({MotionEvent::Kind::Dragged, modifiersOf(event), event.mouse});
    else if (event.mouseButtons == 0)
        _client.onMotion({MotionEvent::Kind::Moved, modifiersOf(event), event.mouse});
    else
        for (const ButtonName& name : cButtons)
            if ((event.mouseButtons & (1U << (name.number - 1))) != 0)
            {
                _client.onMotion({MotionEvent::Kind::OtherDragged, modifiersOf(event), event.mouse, name.button});
                break;
            }
}

void SDLEvents::onWheel(const gui::SDLEvent& event)
{
    // Content follows the fingers: SDL counts what is scrolled to, to the right.
    const double dx = (0.0 - event.wheel.x) * zav::s_wheelUnitsPerNotch;
    const double dy = event.wheel.y * zav::s_wheelUnitsPerNotch;
    _client.onWheel({dx, dy, modifiersOf(event), event.mouse});
}

void SDLEvents::onFinger(const gui::SDLEvent& event)
{
    int width = 0;
    int height = 0;
    SDL_GetWindowSize(_context.getWindow(), &width, &height);
    const td::Size<double> size{static_cast<double>(width), static_cast<double>(height)};
    if (const std::optional<double> magnification = _pinch.onFinger(event, size))
        _client.onMagnification({*magnification, modifiersOf(event)});
}

// SDL2 takes text for all windows or none.

bool SDLEvents::hasKeyboard() const { return SDL_GetKeyboardFocus() == _context.getWindow(); }

void SDLEvents::switchTextInput() const
{
    if (!hasKeyboard())
        return;
    if (_takesText)
        gui::sdl::startTextInput(_context.getWindow(), _textInputRect);
    else
        gui::sdl::stopTextInput(_context.getWindow());
}

void SDLEvents::setTextInput(bool isOn)
{
    _takesText = isOn;
    switchTextInput();
}

void SDLEvents::setTextInputRect(const SDL_Rect& rect)
{
    _textInputRect = rect;
    if (_takesText)
        switchTextInput();
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
    const bool isDown = event.type == Type::KeyDown;
    Keyboard& keyboard = Keyboard::of(_context.getWindow());
    if (isDown && event.scancode == SDL_SCANCODE_RALT)
        s_isRightAltAltGr = keyboard.getSymbol(event, false) == XKB_KEY_ISO_Level3_Shift;

    const KeyMapping mapping = mapKey(event.scancode, (event.modifiers & gui::sdl::cNumLock) != 0);
    if (mapping.keyCode == 0)
        return;
    unsigned short character = mapping.character;
    const bool isOfShifted = mapping.kind == KeyMapping::Character::OfShiftedLayout;
    if (isOfShifted || mapping.kind == KeyMapping::Character::OfLayout)
    {
        const bool isShifted = isOfShifted || (event.modifiers & gui::sdl::cShift) != 0;
        if (const unsigned short ofLayout = toCharacter(keyboard.getSymbol(event, isShifted)))
            character = ofLayout;
    }
    _client.onKey({isDown, mapping.keyCode, character, modifiersOf(event)});
}

} // namespace gui::gl
