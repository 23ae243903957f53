#include <gui/gl/KeyCodes.h>

#include <array>

namespace zav
{

namespace
{

using Virtual = gui::Key::Virtual;

constexpr unsigned int cTab = 48;
constexpr unsigned int cDelete = 51;
constexpr unsigned int cKeypadClear = 71;
constexpr unsigned int cForwardDelete = 117;

constexpr std::array<Virtual, 128> makeTable()
{
    std::array<Virtual, 128> table{};
    table[36] = Virtual::Return;
    table[cDelete] = Virtual::Backspace;
    table[53] = Virtual::Escape;
    table[cForwardDelete] = Virtual::Delete;

    table[65] = Virtual::KeypadDecimal;
    table[67] = Virtual::KeypadMultiply;
    table[69] = Virtual::KeypadPlus;
    table[cKeypadClear] = Virtual::KeypadClear;
    table[75] = Virtual::KeypadDivide;
    table[76] = Virtual::KeypadEnter;
    table[78] = Virtual::KeypadMinus;
    table[82] = Virtual::Keypad0;
    table[83] = Virtual::Keypad1;
    table[84] = Virtual::Keypad2;
    table[85] = Virtual::Keypad3;
    table[86] = Virtual::Keypad4;
    table[87] = Virtual::Keypad5;
    table[88] = Virtual::Keypad6;
    table[89] = Virtual::Keypad7;
    table[91] = Virtual::Keypad8;
    table[92] = Virtual::Keypad9;

    table[72] = Virtual::VolumeUp;
    table[73] = Virtual::VolumeDown;
    table[74] = Virtual::Mute;

    table[122] = Virtual::F1;
    table[120] = Virtual::F2;
    table[99] = Virtual::F3;
    table[118] = Virtual::F4;
    table[96] = Virtual::F5;
    table[97] = Virtual::F6;
    table[98] = Virtual::F7;
    table[100] = Virtual::F8;
    table[101] = Virtual::F9;
    table[109] = Virtual::F10;
    table[103] = Virtual::F11;
    table[111] = Virtual::F12;

    table[115] = Virtual::Home;
    table[119] = Virtual::End;
    table[116] = Virtual::PageUp;
    table[121] = Virtual::PageDown;
    table[123] = Virtual::Left;
    table[124] = Virtual::Right;
    table[126] = Virtual::Up;
    table[125] = Virtual::Down;
    return table;
}

constexpr std::array<Virtual, 128> cVirtualKeys = makeTable();

Virtual lookUp(unsigned int code) { return code < cVirtualKeys.size() ? cVirtualKeys[code] : Virtual::None; }

} // namespace

gui::Key::Virtual getVirtualKeyCode(unsigned int code, unsigned char)
{
    return lookUp(code < cVirtualKeys.size() ? code : code >> 8);
}

gui::Key::Virtual getVirtualKeyCode2(unsigned int code, unsigned char)
{
    switch (code)
    {
    case cTab:
        return Virtual::Tab;
    case cDelete:
        return Virtual::Delete;
    case cKeypadClear:
    case cForwardDelete:
        return Virtual::None;
    default:
        return lookUp(code);
    }
}

} // namespace zav
