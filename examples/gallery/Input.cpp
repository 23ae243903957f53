// EventLook for: the pointer's trail and a ring for each click; wheel and zoom as bars, modifiers as lamps, keys on a
// keyboard; another pointer over the striped field, the border's colour with the focus, and the last event's record in
// the title.

#include "Keyboard.h"
#include "Scenes.h"
#include "Stage.h"

#include <gui/Cursor.h>
#include <gui/InputDevice.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <deque>

namespace gallery
{

namespace
{

using gui::InputDevice;
using td::ColorID;

constexpr std::size_t cTrail = 150;
constexpr std::size_t cClicks = 12;
constexpr float cBoardMargin = 24;
constexpr float cBoardGap = 16;
constexpr float cSide = 176; // width of the panels at the right

// How each kind is named in the record, and drawn: a ring and how much of it is filled. Those with radius 0 are not.
struct EventLook
{
    const char* name;
    float radius;
    float width;
    ColorID color;
};

constexpr EventLook cLooks[] = {{"entered", 7, 7, ColorID::LimeGreen},
                                {"moved", 0, 0, ColorID::White},
                                {"dragged", 0, 0, ColorID::White},
                                {"exited", 7, 7, ColorID::Crimson},
                                {"pressed", 9, 9, ColorID::DeepSkyBlue},
                                {"released", 18, 3, ColorID::DeepSkyBlue},
                                {"double-clicked", 28, 6, ColorID::Gold},
                                {"secondary pressed", 9, 9, ColorID::Tomato},
                                {"secondary released", 18, 3, ColorID::Tomato},
                                {"scrolled", 0, 0, ColorID::White},
                                {"zoomed", 0, 0, ColorID::White}};
static_assert(std::size(cLooks) == std::size_t(PointerEvent::Zoomed) + 1);

constexpr ColorID cModifiers[] = {ColorID::Gold,      ColorID::Coral,        ColorID::HotPink,
                                  ColorID::Turquoise, ColorID::MediumOrchid, ColorID::SpringGreen};

struct Mark
{
    glm::vec2 place;
    PointerEvent event;
};

void remember(std::deque<Mark>& marks, const Mark& mark, std::size_t n)
{
    marks.push_front(mark);
    marks.resize(std::min(marks.size(), n));
}

bool isIn(const Cell& cell, const glm::vec2& place)
{
    return place.x >= cell.left && place.x < cell.left + cell.width && place.y >= cell.top &&
           place.y < cell.top + cell.height;
}

class Input : public Scene
{
public:
    bool init() override { return _backdrop.init() && _sketch.init(); }

    void enter(Stage& stage) override { _pStage = &stage; }

    void draw(const Frame& frame) override
    {
        layOut(frame);
        const Cell panels[] = {_field, _wheel, _lamps, _keys};
        _backdrop.draw(frame, panels);
        drawFrame(frame);
        drawField();
        drawWheel();
        drawModifiers();
        _keyboard.draw(_sketch, {_keys.left + cBoardGap, _keys.top + cBoardGap}, _unit);
        drawTrail();
        _sketch.draw(frame);
    }

    void onPointer(PointerEvent event, const InputDevice& device) override
    {
        const EventLook& look = cLooks[static_cast<std::size_t>(event)];
        const glm::vec2 place(device.getFramePoint().x, device.getFramePoint().y);
        if (event == PointerEvent::Scrolled)
            _scrolled += place;
        else if (event == PointerEvent::Zoomed)
            _zoom *= device.getScale();
        else if (look.radius > 0)
            remember(_clicks, {place, event}, cClicks);
        else
            remember(_trail, {place, event}, cTrail);
        if (event == PointerEvent::Moved)
            _pStage->setCursor(isIn(_field, place) ? gui::Cursor::Type::Pan : gui::Cursor::Type::Default);
        _modifiers = device.getKeyboardModifiers();
        tell(event, device);
    }

    bool onKey(const gui::Key& key, bool isDown) override
    {
        _keyboard.onKey(key, isDown);
        _modifiers = key.getModifiers();
        char record[128];
        std::snprintf(record, sizeof(record), "key %s: code %u, virtual %d, modifiers %u, count %d",
                      isDown ? "pressed" : "released", key.getCode(), static_cast<int>(key.getVirtual()), _modifiers,
                      key.getCount());
        tell(record);
        return false;
    }

    void onFocus(bool hasFocus) override
    {
        _hasFocus = hasFocus;
        _keyboard.releaseAll();
        tell(hasFocus ? "focus in" : "focus out");
    }

private:
    void tell(const char* record)
    {
        _pStage->setNote(record);
        _pStage->redraw();
    }

    void tell(PointerEvent event, const InputDevice& device)
    {
        const auto frame = device.getFramePoint(), content = device.getContentPoint(), window = device.getWindowPoint();
        char record[256];
        std::snprintf(record, sizeof(record),
                      "%s: type %d, button %d, frame %.1f %.1f, content %.1f %.1f, window %.1f %.1f, modifiers %u, "
                      "events %d, scale %.3f",
                      cLooks[static_cast<std::size_t>(event)].name, static_cast<int>(device.getType()),
                      static_cast<int>(device.getButton()), frame.x, frame.y, content.x, content.y, window.x, window.y,
                      device.getKeyboardModifiers(), device.getNoOfEvents(), device.getScale());
        tell(record);
    }

    void layOut(const Frame& frame)
    {
        const auto width = static_cast<float>(frame.size.width), height = static_cast<float>(frame.size.height);
        _unit = std::max(4.0F, (width - 2 * cBoardMargin - 3 * cBoardGap - cSide) / Keyboard::cWidth);
        const float wide = Keyboard::cWidth * _unit + 2 * cBoardGap, low = Keyboard::cHeight * _unit + 2 * cBoardGap;
        const float side = cBoardMargin + wide + cBoardGap, top = height - cBoardMargin - low;
        _keys = {cBoardMargin, top, wide, low};
        _lamps = {side, top, cSide, low};
        _field = {cBoardMargin, cBoardMargin, wide, std::max(0.0F, top - cBoardGap - cBoardMargin)};
        _wheel = {side, cBoardMargin, cSide, _field.height};
    }

    void drawFrame(const Frame& frame)
    {
        constexpr float cWidth = 6;
        const auto width = static_cast<float>(frame.size.width), height = static_cast<float>(frame.size.height);
        const glm::vec4 color = _hasFocus ? colorOf(ColorID::Turquoise) : colorOf(ColorID::DimGray);
        for (const Cell& side : {Cell{0, 0, width, cWidth}, Cell{0, height - cWidth, width, cWidth},
                                 Cell{0, 0, cWidth, height}, Cell{width - cWidth, 0, cWidth, height}})
            _sketch.addCell(side, color);
    }

    // Stripes, where the pointer is a hand.
    void drawField()
    {
        constexpr float cStripe = 28;
        for (float left = _field.left; left + cStripe <= _field.left + _field.width; left += 2 * cStripe)
            _sketch.addCell({left, _field.top, cStripe, _field.height}, colorOf(ColorID::LightSteelBlue, 0.035F));
    }

    // Bars from the middle: how far was scrolled in each direction, and how many times the size was doubled or halved.
    void drawWheel()
    {
        const float values[] = {_scrolled.x / 200, _scrolled.y / 200, static_cast<float>(std::log2(_zoom)) / 2};
        constexpr ColorID cColors[] = {ColorID::Coral, ColorID::Turquoise, ColorID::MediumOrchid};
        const float half = _wheel.height / 2 - cBoardGap, width = (_wheel.width - 4 * cBoardGap) / 3;
        for (int i = 0; i < 3; ++i)
        {
            const float left = _wheel.left + cBoardGap + static_cast<float>(i) * (width + cBoardGap);
            const float length = half * std::clamp(values[i], -1.0F, 1.0F);
            const float middle = _wheel.top + _wheel.height / 2;
            _sketch.addCell({left, middle - half, width, 2 * half}, colorOf(ColorID::SlateGray, 0.2F));
            _sketch.addCell({left, middle, width, -length}, colorOf(cColors[i]));
            _sketch.addCell({left, middle - 1, width, 2}, colorOf(ColorID::White, 0.6F));
        }
    }

    // In the order of their bits, row by row.
    void drawModifiers()
    {
        for (std::size_t i = 0; i < std::size(cModifiers); ++i)
        {
            const auto row = i / 3, column = i % 3;
            const glm::vec2 place(_lamps.left + _lamps.width * (static_cast<float>(column) + 0.5F) / 3,
                                  _lamps.top + _lamps.height * (static_cast<float>(row) + 0.5F) / 2);
            const bool isOn = (_modifiers >> i & 1U) != 0;
            if (isOn)
                _sketch.addDisc(place, 20, colorOf(cModifiers[i]));
            _sketch.addRing(place, 22, 2, colorOf(cModifiers[i], isOn ? 1 : 0.4F));
        }
    }

    void drawTrail()
    {
        for (std::size_t i = 0; i + 1 < _trail.size(); ++i)
        {
            const float age = static_cast<float>(i) / cTrail;
            const bool isDrag = _trail[i].event == PointerEvent::Dragged;
            _sketch.addLine(_trail[i].place, _trail[i + 1].place, isDrag ? 5.0F : 2.0F,
                            colorOf(isDrag ? ColorID::DeepSkyBlue : ColorID::White, 0.9F * (1 - age)));
        }
        for (std::size_t i = _clicks.size(); i-- > 0;)
        {
            const EventLook& look = cLooks[static_cast<std::size_t>(_clicks[i].event)];
            const float age = static_cast<float>(i) / cClicks;
            _sketch.addRing(_clicks[i].place, look.radius, look.width, colorOf(look.color, 1 - 0.7F * age));
        }
    }

    Stage* _pStage = nullptr;
    Backdrop _backdrop;
    Sketch _sketch;
    Keyboard _keyboard;
    Cell _field{}, _wheel{}, _lamps{}, _keys{};
    float _unit = 0;
    std::deque<Mark> _trail; // newest first, as the next
    std::deque<Mark> _clicks;
    glm::vec2 _scrolled{0, 0};
    double _zoom = 1;
    unsigned int _modifiers = 0;
    bool _hasFocus = false;
};

} // namespace

std::unique_ptr<Scene> makeInput() { return std::make_unique<Input>(); }

} // namespace gallery
