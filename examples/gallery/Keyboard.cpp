#include "Keyboard.h"

#include <algorithm>
#include <cctype>
#include <string_view>

namespace gallery
{

namespace
{

using td::ColorID;
using Virtual = gui::Key::Virtual;

constexpr std::size_t cKeysRemembered = 6;
constexpr float cKeyGap = 0.12F; // between keys

struct CharacterRow
{
    float left;
    std::string_view characters;
};

constexpr CharacterRow cCharacterRows[] = {
    {0, "`1234567890-="}, {1.5F, "qwertyuiop[]\\"}, {1.75F, "asdfghjkl;'"}, {2.25F, "zxcvbnm,./"}};

struct VirtualPlace
{
    Virtual key;
    float left;
    float top;
    float width = 1;
};

constexpr VirtualPlace cVirtualKeys[] = {{Virtual::Escape, 0, 0},
                                         {Virtual::F1, 2, 0},
                                         {Virtual::F2, 3, 0},
                                         {Virtual::F3, 4, 0},
                                         {Virtual::F4, 5, 0},
                                         {Virtual::F5, 6.5F, 0},
                                         {Virtual::F6, 7.5F, 0},
                                         {Virtual::F7, 8.5F, 0},
                                         {Virtual::F8, 9.5F, 0},
                                         {Virtual::F9, 11, 0},
                                         {Virtual::F10, 12, 0},
                                         {Virtual::F11, 13, 0},
                                         {Virtual::F12, 14, 0},
                                         {Virtual::Backspace, 13, 1, 2},
                                         {Virtual::Tab, 0, 2, 1.5F},
                                         {Virtual::Return, 12.75F, 3, 2.25F},
                                         {Virtual::Mute, 15.5F, 0},
                                         {Virtual::VolumeDown, 16.5F, 0},
                                         {Virtual::VolumeUp, 17.5F, 0},
                                         {Virtual::Home, 16.5F, 1},
                                         {Virtual::PageUp, 17.5F, 1},
                                         {Virtual::Delete, 15.5F, 2},
                                         {Virtual::End, 16.5F, 2},
                                         {Virtual::PageDown, 17.5F, 2},
                                         {Virtual::Up, 16.5F, 4},
                                         {Virtual::Left, 15.5F, 5},
                                         {Virtual::Down, 16.5F, 5},
                                         {Virtual::Right, 17.5F, 5},
                                         {Virtual::KeypadClear, 19, 1},
                                         {Virtual::KeypadDivide, 20, 1},
                                         {Virtual::KeypadMultiply, 21, 1},
                                         {Virtual::KeypadMinus, 22, 1},
                                         {Virtual::Keypad7, 19, 2},
                                         {Virtual::Keypad8, 20, 2},
                                         {Virtual::Keypad9, 21, 2},
                                         {Virtual::KeypadPlus, 22, 2},
                                         {Virtual::Keypad4, 19, 3},
                                         {Virtual::Keypad5, 20, 3},
                                         {Virtual::Keypad6, 21, 3},
                                         {Virtual::Keypad1, 19, 4},
                                         {Virtual::Keypad2, 20, 4},
                                         {Virtual::Keypad3, 21, 4},
                                         {Virtual::KeypadEnter, 22, 4},
                                         {Virtual::Keypad0, 19, 5, 2},
                                         {Virtual::KeypadDecimal, 21, 5}};

unsigned int toLower(const gui::Key& key)
{
    return key.isASCII() ? static_cast<unsigned int>(std::tolower(static_cast<int>(key.getCode()))) : key.getCode();
}

} // namespace

Keyboard::Keyboard()
{
    float top = 1;
    for (const auto& [left, characters] : cCharacterRows)
    {
        float place = left;
        for (const char character : characters)
        {
            const float width = character == '\\' ? 1.5F : 1;
            _places.push_back({static_cast<unsigned char>(character), Virtual::None, {place, top, width, 1}});
            place += width;
        }
        ++top;
    }
    _places.push_back({' ', Virtual::None, {3.75F, top, 6.25F, 1}});
    for (const VirtualPlace& place : cVirtualKeys)
        _places.push_back({0, place.key, {place.left, place.top, place.width, 1}});
}

bool Keyboard::isSame(const gui::Key& a, const gui::Key& b)
{
    return a.getVirtual() == b.getVirtual() && toLower(a) == toLower(b);
}

bool Keyboard::isAt(const Place& place, const gui::Key& key) const
{
    return key.isVirtual() ? place.virtualKey == key.getVirtual()
                           : place.virtualKey == Virtual::None && place.code == toLower(key);
}

void Keyboard::onKey(const gui::Key& key, bool isDown)
{
    if (isDown)
    {
        std::erase_if(_down, [&key](const gui::Key& other) { return isSame(key, other); });
        _down.push_back(key);
        std::erase_if(_last, [&key](const gui::Key& other) { return isSame(key, other); });
        _last.push_front(key);
        _last.resize(std::min(_last.size(), cKeysRemembered));
        return;
    }
    // A virtual key comes up as its code moved up a byte. Others may come up as another than they went down (Return, or
    // a digit whose Shift was let go first): then none is taken to be down any more.
    const auto wentUp = [&key](const gui::Key& down)
    { return isSame(key, down) || (down.isVirtual() && key.getCode() == down.getCode() << 8); };
    if (std::erase_if(_down, wentUp) == 0)
        _down.clear();
}

void Keyboard::draw(Sketch& sketch, const glm::vec2& corner, float unit) const
{
    for (const Place& place : _places)
    {
        const auto isHere = [this, &place](const gui::Key& key) { return isAt(place, key); };
        glm::vec4 color = colorOf(ColorID::SlateGray, 0.35F);
        if (std::any_of(_down.begin(), _down.end(), isHere))
            color = colorOf(ColorID::Gold);
        else if (const auto it = std::find_if(_last.begin(), _last.end(), isHere); it != _last.end())
            color = colorOf(ColorID::DodgerBlue, 0.9F - 0.1F * static_cast<float>(it - _last.begin()));
        sketch.addCell({corner.x + unit * (place.cell.left + cKeyGap / 2),
                        corner.y + unit * (place.cell.top + cKeyGap / 2), unit * (place.cell.width - cKeyGap),
                        unit * (place.cell.height - cKeyGap)},
                       color);
    }
}

} // namespace gallery
