#include <gui/gl/port/Keys.h>

#include <algorithm>
#include <array>
#include <iterator>

namespace gui::gl
{

namespace
{

using Character = KeyMapping::Character;

constexpr unsigned short cUnknownKeyCode = 127;

// Usages of the keyboard page (0x07) of the USB HID Usage Tables 1.4. The last two have names in SDL only.
struct Usage
{
    enum
    {
        A = 4,
        K = 14,
        U = 24,
        Digit1 = 30,
        Digit0 = 39,
        Return = 40,
        Escape = 41,
        Backspace = 42,
        Tab = 43,
        Space = 44,
        Comma = 54,
        Slash = 56,
        CapsLock = 57,
        F1,
        F2,
        F3,
        F4,
        F5,
        F6,
        F7,
        F8,
        F9,
        F10,
        F11,
        F12,
        PrintScreen = 70,
        Home = 74,
        PageUp = 75,
        Delete = 76,
        End = 77,
        PageDown = 78,
        Right = 79,
        Left = 80,
        Down = 81,
        Up = 82,
        NumLock = 83,
        KpDivide = 84,
        KpMultiply = 85,
        KpMinus = 86,
        KpPlus = 87,
        KpEnter = 88,
        Kp1 = 89,
        Kp2,
        Kp3,
        Kp4,
        Kp5,
        Kp6,
        Kp7,
        Kp8,
        Kp9,
        Kp0,
        KpPeriod = 99,
        NonUSBackslash = 100,
        KpEquals = 103,
        Mute = 127,
        VolumeUp = 128,
        VolumeDown = 129,
        KpComma = 133,
        International1 = 135,
        International9 = 143,
        Return2 = 158,
        KpClear = 216,
        LeftCtrl = 224,
        LeftShift,
        LeftAlt,
        LeftSuper,
        RightCtrl,
        RightShift,
        RightAlt,
        RightSuper,
        Mode = 257,
        AudioMute = 262
    };
};

struct KeyEntry
{
    int usage;
    KeyMapping key;
    unsigned short keyCodeWithoutNumLock = 0; // 0: the same
};

constexpr KeyEntry special(int usage, unsigned short keyCode, unsigned short character = 0)
{
    return {usage, {keyCode, character != 0 ? Character::Fixed : Character::None, character}};
}

constexpr KeyEntry keypad(int usage, unsigned short keyCode, char character, unsigned short keyCodeWithoutNumLock = 0)
{
    return {
        usage, {keyCode, Character::OfShiftedLayout, static_cast<unsigned short>(character)}, keyCodeWithoutNumLock};
}

struct Code
{
    enum : unsigned short
    {
        Delete = 117,
        Home = 115,
        End = 119,
        PageUp = 116,
        PageDown = 121,
        Left = 123,
        Right = 124,
        Down = 125,
        Up = 126
    };
};

constexpr std::array cSpecialKeys{
    special(Usage::Return, 36, '\r'),
    special(Usage::Return2, 36, '\r'),
    special(Usage::Tab, 48, '\t'),
    special(Usage::Backspace, 51, '\b'),
    special(Usage::Escape, 53, '\x1b'),
    special(Usage::Delete, Code::Delete),
    special(Usage::Home, Code::Home),
    special(Usage::End, Code::End),
    special(Usage::PageUp, Code::PageUp),
    special(Usage::PageDown, Code::PageDown),
    special(Usage::Left, Code::Left),
    special(Usage::Right, Code::Right),
    special(Usage::Up, Code::Up),
    special(Usage::Down, Code::Down),
    special(Usage::F1, 122),
    special(Usage::F2, 120),
    special(Usage::F3, 99),
    special(Usage::F4, 118),
    special(Usage::F5, 96),
    special(Usage::F6, 97),
    special(Usage::F7, 98),
    special(Usage::F8, 100),
    special(Usage::F9, 101),
    special(Usage::F10, 109),
    special(Usage::F11, 103),
    special(Usage::F12, 111),
    special(Usage::VolumeUp, 72),
    special(Usage::VolumeDown, 73),
    special(Usage::Mute, 74),
    special(Usage::AudioMute, 74),
    special(Usage::KpEnter, 76, '\r'),
    special(Usage::KpClear, 71),
    keypad(Usage::KpPeriod, 65, '.', Code::Delete),
    keypad(Usage::KpMultiply, 67, '*'),
    keypad(Usage::KpPlus, 69, '+'),
    keypad(Usage::KpDivide, 75, '/'),
    keypad(Usage::KpMinus, 78, '-'),
    keypad(Usage::Kp0, 82, '0', cUnknownKeyCode), // Insert
    keypad(Usage::Kp1, 83, '1', Code::End),
    keypad(Usage::Kp2, 84, '2', Code::Down),
    keypad(Usage::Kp3, 85, '3', Code::PageDown),
    keypad(Usage::Kp4, 86, '4', Code::Left),
    keypad(Usage::Kp5, 87, '5', cUnknownKeyCode),
    keypad(Usage::Kp6, 88, '6', Code::Right),
    keypad(Usage::Kp7, 89, '7', Code::Home),
    keypad(Usage::Kp8, 91, '8', Code::Up),
    keypad(Usage::Kp9, 92, '9', Code::PageUp),
};

constexpr std::array cModifierKeys{
    Usage::LeftCtrl, Usage::LeftShift,  Usage::LeftAlt, Usage::LeftSuper, Usage::RightCtrl, Usage::RightShift,
    Usage::RightAlt, Usage::RightSuper, Usage::Mode,    Usage::CapsLock,  Usage::NumLock,
};

// The usages of keys that print, and the code of the first in each range.
struct Range
{
    int first;
    int last;
    unsigned short keyCode;
};

constexpr std::array cPrintingKeys{
    Range{Usage::A, Usage::Digit0, 128},
    Range{Usage::Space, Usage::Slash, 164},
    Range{Usage::NonUSBackslash, Usage::NonUSBackslash, 180},
    Range{Usage::KpEquals, Usage::KpEquals, 181},
    Range{Usage::KpComma, Usage::International9, 182},
};

// Rows of keys whose usages follow one another, with the kernel's numbers (linux/input-event-codes.h).
struct Row
{
    int first;
    unsigned char keyCodes[10];
};

constexpr std::array cKernelKeyCodes{
    Row{Usage::A, {30, 48, 46, 32, 18, 33, 34, 35, 23, 36}},
    Row{Usage::K, {37, 38, 50, 49, 24, 25, 16, 19, 31, 20}},
    Row{Usage::U, {22, 47, 17, 45, 21, 44}},
    Row{Usage::Digit1, {2, 3, 4, 5, 6, 7, 8, 9, 10, 11}},
    Row{Usage::Return, {28, 1, 14, 15}},
    // The kernel has one number for the key beside Return, wherever it stands.
    Row{Usage::Space, {57, 12, 13, 26, 27, 43, 43, 39, 40, 41}},
    Row{Usage::Comma, {51, 52, 53, 58}},
    Row{Usage::F1, {59, 60, 61, 62, 63, 64, 65, 66, 67, 68}},
    Row{Usage::F11, {87, 88}},
    Row{Usage::PrintScreen, {99, 70, 119, 110, 102, 104, 111, 107, 109}},
    Row{Usage::Right, {106, 105, 108, 103, 69}},
    Row{Usage::KpDivide, {98, 55, 74, 78, 96, 79, 80, 81, 75, 76}},
    Row{Usage::Kp6, {77, 71, 72, 73, 82, 83, 86, 127}},
    Row{Usage::KpEquals, {117}},
    Row{Usage::Mute, {113, 115, 114}},
    Row{Usage::KpComma, {121}},
    Row{Usage::International1, {89, 93, 124}},
    Row{Usage::LeftCtrl, {29, 42, 56, 125, 97, 54, 100, 126}},
};

} // namespace

KeyMapping mapKey(int usage, bool isNumLock)
{
    if (std::find(cModifierKeys.begin(), cModifierKeys.end(), usage) != cModifierKeys.end())
        return {0, Character::None, 0};
    for (const KeyEntry& entry : cSpecialKeys)
        if (entry.usage == usage)
            return entry.keyCodeWithoutNumLock == 0 || isNumLock
                       ? entry.key
                       : KeyMapping{entry.keyCodeWithoutNumLock, Character::None, 0};
    for (const Range& range : cPrintingKeys)
        if (usage >= range.first && usage <= range.last)
            return {static_cast<unsigned short>(range.keyCode + (usage - range.first)), Character::OfLayout, 0};
    return {cUnknownKeyCode, Character::None, 0};
}

int toKeyUsage(unsigned int kernelKeyCode)
{
    for (const Row& row : cKernelKeyCodes)
        if (const auto* const it = std::ranges::find(row.keyCodes, kernelKeyCode);
            it != std::end(row.keyCodes) && kernelKeyCode != 0)
            return row.first + static_cast<int>(it - row.keyCodes);
    return 0;
}

unsigned int toKernelKeyCode(int usage)
{
    for (const Row& row : cKernelKeyCodes)
        if (usage >= row.first && usage < row.first + static_cast<int>(std::size(row.keyCodes)) &&
            row.keyCodes[usage - row.first] != 0)
            return row.keyCodes[usage - row.first];
    return 0;
}

} // namespace gui::gl
