#pragma once

#include <td/Types.h>

namespace gui
{

/// Bits of a keyboard modifier mask. They are named as on a Mac keyboard, and by what people expect of them: on Linux
/// the Ctrl key arrives as Cmd, since it is the one for commands (Ctrl-plus, Ctrl-wheel), the Super key as Ctrl, and
/// AltGr as Fn.
enum class KeyModifier : unsigned int
{
    Shift = 1,
    CapsLock = 2,
    Ctrl = 4,
    Alt = 8,
    Cmd = 16,
    Fn = 32
};

/// Whether a mask has this bit.
constexpr bool isKeyModifierPressed(unsigned int modifiers, KeyModifier modifier)
{
    return (modifiers & static_cast<unsigned int>(modifier)) != 0;
}
constexpr bool isShiftPressed(unsigned int modifiers) { return isKeyModifierPressed(modifiers, KeyModifier::Shift); }
constexpr bool isCtrlPressed(unsigned int modifiers) { return isKeyModifierPressed(modifiers, KeyModifier::Ctrl); }
constexpr bool isAltPressed(unsigned int modifiers) { return isKeyModifierPressed(modifiers, KeyModifier::Alt); }
constexpr bool isCmdPressed(unsigned int modifiers) { return isKeyModifierPressed(modifiers, KeyModifier::Cmd); }
constexpr bool isFnPressed(unsigned int modifiers) { return isKeyModifierPressed(modifiers, KeyModifier::Fn); }

/// Whether the keys are held that have Ctrl, and a logo, printed on them, by whichever bit they arrive: on Linux Cmd
/// and Ctrl. For a program that tells Control from Command as its users read it on their keyboards.
constexpr bool isControlKeyPressed(unsigned int modifiers) { return isKeyModifierPressed(modifiers, KeyModifier::Cmd); }
/// See isControlKeyPressed.
constexpr bool isLogoKeyPressed(unsigned int modifiers) { return isKeyModifierPressed(modifiers, KeyModifier::Ctrl); }

/// The mask without one of its modifiers.
constexpr unsigned int removeKeyModifier(unsigned int modifiers, KeyModifier modifier)
{
    return modifiers & ~static_cast<unsigned int>(modifier);
}

/// One key that went down or up, with the modifiers held at that moment.
/// A key is one of three kinds. A character: its code is the UTF-16 unit the key stands for. A virtual key (arrows,
/// function keys, the keypad and so on): getVirtual() says which, and the code is the platform's key code. A key that
/// is neither: its code is the platform's key code shifted left by 8 bits.
class Key
{
public:
    /// The keys that stand for no character. Values are those of the platform tables; the gaps are not used.
    enum class Virtual : td::BYTE
    {
        None = 0,
        Tab = 1,
        Return = 2,
        Left = 3,
        Right = 4,
        Up = 5,
        Down = 6,
        Home = 7,
        End = 8,
        PageUp = 9,
        PageDown = 10,
        Backspace = 12,
        Escape = 13,
        F1 = 14,
        F2 = 15,
        F3 = 16,
        F4 = 17,
        F5 = 18,
        F6 = 19,
        F7 = 20,
        F8 = 21,
        F9 = 22,
        F10 = 23,
        F11 = 24,
        F12 = 25,
        Delete = 30, ///< the one that deletes forwards
        VolumeUp = 31,
        VolumeDown = 32,
        Mute = 33,
        Keypad0 = 34,
        Keypad1 = 35,
        Keypad2 = 36,
        Keypad3 = 37,
        Keypad4 = 38,
        Keypad5 = 39,
        Keypad6 = 40,
        Keypad7 = 41,
        Keypad8 = 42,
        Keypad9 = 43,
        KeypadDecimal = 44,
        KeypadEnter = 45,
        KeypadPlus = 46,
        KeypadMinus = 47,
        KeypadMultiply = 48,
        KeypadDivide = 49,
        KeypadClear = 51
    };

    /// No key: code, modifiers and count are 0.
    Key() = default;

    /// @param virtualKey  a value of Virtual; 0 for a key that is not virtual
    Key(unsigned int code, unsigned int modifiers, unsigned short count, unsigned char virtualKey)
        : _code(code)
        , _modifiers(modifiers)
        , _count(count)
        , _virtual(static_cast<Virtual>(virtualKey))
    {
    }

    unsigned int getCode() const { return _code; }
    unsigned short getCount() const { return _count; } ///< how many times the key was pressed; 1 as a rule
    Virtual getVirtual() const { return _virtual; }    ///< None for a key that is not virtual
    unsigned int getModifiers() const { return _modifiers; }

    bool isVirtual() const { return _virtual != Virtual::None; }

    /// Whether the key is a character from 1 to 127. A virtual key never is, whatever its code.
    bool isASCII() const { return !isVirtual() && _code >= 1 && _code <= 127; }

    /// The character of an ASCII key, with the case it was typed in; 0 for every other key.
    char getChar() const { return isASCII() ? static_cast<char>(_code) : '\0'; }

    bool isShiftPressed() const { return gui::isShiftPressed(_modifiers); }
    bool isAltPressed() const { return gui::isAltPressed(_modifiers); }
    bool isCmdPressed() const { return gui::isCmdPressed(_modifiers); }
    bool isFnPressed() const { return gui::isFnPressed(_modifiers); }

private:
    friend class KeyHelper;

    void setCode(unsigned int code, unsigned short count)
    {
        _code = code;
        _count = count;
        _virtual = Virtual::None;
    }
    void setVirtual(unsigned int code, unsigned short count, Virtual virtualKey)
    {
        _code = code;
        _count = count;
        _virtual = virtualKey;
    }

    unsigned int _code = 0;
    unsigned int _modifiers = 0;
    unsigned short _count = 0;
    Virtual _virtual = Virtual::None;
};

static_assert(sizeof(Key) == 12);

/// Fills key records, for those who translate the window system's events.
class KeyHelper
{
public:
    explicit KeyHelper(Key& key)
        : _key(key)
    {
    }

    /// Makes it a key without a virtual value.
    void set(unsigned int code, unsigned int modifiers, unsigned short count)
    {
        _key._modifiers = modifiers;
        _key.setCode(code, count);
    }
    /// Makes it a virtual key. @param code  the platform's key code
    void setVirtual(unsigned int code, unsigned int modifiers, unsigned short count, Key::Virtual virtualKey)
    {
        _key._modifiers = modifiers;
        _key.setVirtual(code, count, virtualKey);
    }

private:
    Key& _key;
};

} // namespace gui
