#include "GtkInput.h"

#include "Kept.h"

#include <gui/Key.h>
#include <gui/gl/InputTuning.h>
#include <gui/gl/port/KeySymbols.h>
#include <gui/gl/port/Keys.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <iterator>

namespace gui::gtk
{

namespace
{

using gui::gl::ButtonEvent;
using gui::gl::MotionEvent;
using gui::gl::SharedClient;

constexpr unsigned int cFirstAtTheSide = 8;

// By the numbers of X11; the left one and the right one first, which may be held with others. GTK has no bits for those
// at the side.
struct ButtonName
{
    unsigned int number;
    unsigned int bit;
    ButtonEvent::Button button;
};
constexpr std::array<ButtonName, 5> cButtons{{
    {GDK_BUTTON_PRIMARY, GDK_BUTTON1_MASK, ButtonEvent::Button::Left},
    {GDK_BUTTON_SECONDARY, GDK_BUTTON3_MASK, ButtonEvent::Button::Right},
    {GDK_BUTTON_MIDDLE, GDK_BUTTON2_MASK, ButtonEvent::Button::Middle},
    {cFirstAtTheSide, 0, ButtonEvent::Button::Back},
    {cFirstAtTheSide + 1, 0, ButtonEvent::Button::Forward},
}};

unsigned int bitOf(ButtonEvent::Button button) { return 1U << static_cast<unsigned int>(button); }

// The character of a key with Shift alone applied, or with Shift whether it is held or not.
unsigned short characterOf(GdkEvent* pEvent, bool isShifted)
{
    guint symbol = 0;
    const auto state = static_cast<GdkModifierType>(isShifted ? GDK_SHIFT_MASK : 0);
    const auto layout = static_cast<int>(gdk_key_event_get_layout(pEvent));
    if (gdk_display_translate_key(gdk_event_get_display(pEvent), gdk_key_event_get_keycode(pEvent), state, layout,
                                  &symbol, nullptr, nullptr, nullptr) == FALSE)
        return 0;
    return gui::gl::toCharacter(symbol);
}

bool isNumLock(GdkEvent* pEvent)
{
    GdkDevice* const pDevice = gdk_event_get_device(pEvent);
    return pDevice != nullptr && gdk_device_get_num_lock_state(pDevice) != FALSE;
}

gui::gl::ClickCounter::Limits limitsOf(GtkWidget* pWidget)
{
    int time = 0, distance = 0;
    g_object_get(gtk_widget_get_settings(pWidget), "gtk-double-click-time", &time, "gtk-double-click-distance",
                 &distance, nullptr);
    return {std::chrono::milliseconds(time), static_cast<double>(distance)};
}

} // namespace

GtkInput::GtkInput(GtkWidget* pWidget, gui::gl::HostedView& view)
    : _pWidget(pWidget)
    , _view(view)
    , _text(pWidget, view)
{
    GtkEventController* const pEvents = gtk_event_controller_legacy_new();
    g_signal_connect(pEvents, "event", G_CALLBACK(+[](GtkEventController*, GdkEvent* pEvent, void* pThis) -> gboolean {
                         return static_cast<GtkInput*>(pThis)->onEvent(pEvent);
                     }),
                     this);
    GtkEventController* const pMotion = gtk_event_controller_motion_new();
    g_signal_connect(pMotion, "enter",
                     G_CALLBACK(+[](GtkEventController* pController, double x, double y, void* pThis) -> void
                                {
                                    auto& input = *static_cast<GtkInput*>(pThis);
                                    input.onEnter({x, y}, input.modifiersOf(stateOf(pController)));
                                }),
                     this);
    g_signal_connect(pMotion, "leave",
                     G_CALLBACK(+[](GtkEventController* pController, void* pThis) -> void
                                {
                                    auto& input = *static_cast<GtkInput*>(pThis);
                                    input._hasLeft = input._pressed != 0;
                                    if (!input._hasLeft)
                                        input.onLeave(input.modifiersOf(stateOf(pController)));
                                }),
                     this);
    GtkEventController* const pFocus = gtk_event_controller_focus_new();
    g_signal_connect(pFocus, "enter", G_CALLBACK(+[](GtkEventController*, void* pThis) -> void {
                         static_cast<GtkInput*>(pThis)->onFocus(true);
                     }),
                     this);
    g_signal_connect(pFocus, "leave", G_CALLBACK(+[](GtkEventController*, void* pThis) -> void {
                         static_cast<GtkInput*>(pThis)->onFocus(false);
                     }),
                     this);
    for (GtkEventController* const pController : {pEvents, pMotion, pFocus, newDropTarget()})
        gtk_widget_add_controller(pWidget, pController);
}

GtkEventController* GtkInput::newDropTarget()
{
    GtkDropTarget* const pTarget = gtk_drop_target_new(G_TYPE_INVALID, GDK_ACTION_COPY);
    GType types[] = {GDK_TYPE_FILE_LIST, G_TYPE_STRING};
    gtk_drop_target_set_gtypes(pTarget, types, std::size(types));
    g_signal_connect(pTarget, "accept",
                     G_CALLBACK(+[](GtkDropTarget* pDropTarget, GdkDrop* pDrop, void* pThis) -> gboolean
                                {
                                    return static_cast<GtkInput*>(pThis)->_view.acceptsDrops() &&
                                           gdk_content_formats_match(gdk_drop_get_formats(pDrop),
                                                                     gtk_drop_target_get_formats(pDropTarget));
                                }),
                     this);
    g_signal_connect(pTarget, "drop",
                     G_CALLBACK(+[](GtkDropTarget*, const GValue* pValue, double x, double y, void* pThis) -> gboolean {
                         return static_cast<GtkInput*>(pThis)->onDrop(*pValue, {x, y});
                     }),
                     this);
    return GTK_EVENT_CONTROLLER(pTarget);
}

bool GtkInput::onDrop(const GValue& value, const td::Point<double>& point)
{
    gui::gl::DropEvent drop{{}, {}, 0, point};
    if (G_VALUE_HOLDS(&value, GDK_TYPE_FILE_LIST))
    {
        GSList* const pFiles = gdk_file_list_get_files(static_cast<GdkFileList*>(g_value_get_boxed(&value)));
        for (GSList* pItem = pFiles; pItem != nullptr; pItem = pItem->next)
        {
            char* const path = g_file_get_path(G_FILE(pItem->data));
            drop.files.emplace_back(path != nullptr ? path : "");
            g_free(path);
        }
        g_slist_free(pFiles);
    }
    else if (const char* const text = g_value_get_string(&value))
        drop.text = text;
    return _view.tell(
        [&drop](const SharedClient& pClient)
        {
            (*pClient)->onDrop(drop);
            return true;
        });
}

void GtkInput::close() { _text.setFocus(false); }

unsigned int GtkInput::modifiersOf(GdkModifierType state) const
{
    constexpr std::array<std::pair<GdkModifierType, gui::KeyModifier>, 5> cModifiers{{
        {GDK_SHIFT_MASK, gui::KeyModifier::Shift},
        {GDK_LOCK_MASK, gui::KeyModifier::CapsLock},
        {GDK_CONTROL_MASK, gui::KeyModifier::Cmd},
        {GDK_ALT_MASK, gui::KeyModifier::Alt},
        {GDK_SUPER_MASK, gui::KeyModifier::Ctrl},
    }};
    unsigned int mask = _isAltGr ? static_cast<unsigned int>(gui::KeyModifier::Fn) : 0;
    for (const auto& [bit, modifier] : cModifiers)
        if ((state & bit) != 0)
            mask |= static_cast<unsigned int>(modifier);
    return mask;
}

std::optional<td::Point<double>> GtkInput::pointOf(GdkEvent* pEvent) const
{
    double x = 0, y = 0, left = 0, top = 0;
    GtkNative* const pNative = gtk_widget_get_native(_pWidget);
    if (pNative == nullptr || gdk_event_get_position(pEvent, &x, &y) == FALSE)
        return std::nullopt;
    gtk_native_get_surface_transform(pNative, &left, &top);
    const graphene_point_t inNative{static_cast<float>(x - left), static_cast<float>(y - top)};
    graphene_point_t point{};
    if (!gtk_widget_compute_point(GTK_WIDGET(pNative), _pWidget, &inNative, &point))
        return std::nullopt;
    return td::Point<double>(static_cast<double>(point.x), static_cast<double>(point.y));
}

bool GtkInput::onEvent(GdkEvent* pEvent)
{
    const Kept kept(_pWidget);
    switch (gdk_event_get_event_type(pEvent))
    {
    case GDK_BUTTON_PRESS:
    case GDK_BUTTON_RELEASE:
        return onButton(pEvent);
    case GDK_MOTION_NOTIFY:
        return onMotion(pEvent);
    case GDK_SCROLL:
        return onWheel(pEvent);
    case GDK_KEY_PRESS:
    case GDK_KEY_RELEASE:
        return onKey(pEvent);
    case GDK_TOUCH_BEGIN:
    case GDK_TOUCH_UPDATE:
    case GDK_TOUCH_END:
    case GDK_TOUCH_CANCEL:
        return onTouch(pEvent);
    case GDK_TOUCHPAD_PINCH:
        return onPinch(pEvent);
    default:
        return false;
    }
}

bool GtkInput::onButton(GdkEvent* pEvent)
{
    const auto* const pName = std::ranges::find(cButtons, gdk_button_event_get_button(pEvent), &ButtonName::number);
    const std::optional<td::Point<double>> point = pointOf(pEvent);
    if (pName == cButtons.end() || !point)
        return false;
    _point = *point;
    const bool isDown = gdk_event_get_event_type(pEvent) == GDK_BUTTON_PRESS;
    if (isDown)
        gtk_widget_grab_focus(_pWidget);
    const unsigned int bit = bitOf(pName->button);
    _pressed = isDown ? _pressed | bit : _pressed & ~bit;
    const bool isLeftDown = (_pressed & bitOf(ButtonEvent::Button::Left)) != 0;
    const unsigned short nClicks =
        isDown ? _clicks.press(pName->button, _point, std::chrono::milliseconds(gdk_event_get_time(pEvent)),
                               limitsOf(_pWidget))
               : _clicks.release(pName->button);
    const ButtonEvent event{pName->button, isDown, isLeftDown, nClicks, modifiersOf(pEvent), _point};
    _view.tell(
        [&event](const SharedClient& pClient)
        {
            (*pClient)->onButton(event);
            return true;
        });
    if (_pressed == 0 && std::exchange(_hasLeft, false))
        onLeave(event.modifiers);
    return true;
}

bool GtkInput::onMotion(GdkEvent* pEvent)
{
    const std::optional<td::Point<double>> point = pointOf(pEvent);
    if (!point)
        return false;
    _point = *point;
    MotionEvent event{MotionEvent::Kind::Moved, modifiersOf(pEvent), _point};
    // The end of a press may go to somebody else, a menu for instance.
    const unsigned int state = gdk_event_get_modifier_state(pEvent);
    for (const ButtonName& name : cButtons)
        if (name.bit != 0 && (state & name.bit) == 0)
            _pressed &= ~bitOf(name.button);
    const auto* const pName =
        std::ranges::find_if(cButtons, [this](const ButtonName& name) { return (_pressed & bitOf(name.button)) != 0; });
    if (pName != cButtons.end())
    {
        event.kind = pName == cButtons.begin() ? MotionEvent::Kind::Dragged : MotionEvent::Kind::OtherDragged;
        event.button = pName->button;
    }
    return _view.tell(
        [&event](const SharedClient& pClient)
        {
            (*pClient)->onMotion(event);
            return false;
        });
}

void GtkInput::onEnter(const td::Point<double>& point, unsigned int modifiers)
{
    _hasLeft = false;
    if (std::exchange(_isInside, true))
        return;
    _point = point;
    const Kept kept(_pWidget);
    _view.tell(
        [&](const SharedClient& pClient)
        {
            (*pClient)->onMotion({MotionEvent::Kind::Entered, modifiers, _point});
            return true;
        });
}

void GtkInput::onLeave(unsigned int modifiers)
{
    if (!std::exchange(_isInside, false))
        return;
    const Kept kept(_pWidget);
    _view.tell(
        [&](const SharedClient& pClient)
        {
            (*pClient)->onMotion({MotionEvent::Kind::Exited, modifiers, _point});
            return true;
        });
}

void GtkInput::onFocus(bool hasFocus)
{
    if (!hasFocus)
        _isAltGr = false; // where it goes up is not heard
    const Kept kept(_pWidget);
    _text.setFocus(hasFocus);
    _view.tell(
        [hasFocus](const SharedClient& pClient)
        {
            (*pClient)->onFocus(hasFocus);
            return true;
        });
}

bool GtkInput::onWheel(GdkEvent* pEvent)
{
    double right = 0, down = 0; // notches, the way the content goes
    switch (gdk_scroll_event_get_direction(pEvent))
    {
    case GDK_SCROLL_UP:
        down = 1;
        break;
    case GDK_SCROLL_DOWN:
        down = -1;
        break;
    case GDK_SCROLL_LEFT:
        right = 1;
        break;
    case GDK_SCROLL_RIGHT:
        right = -1;
        break;
    case GDK_SCROLL_SMOOTH:
        gdk_scroll_event_get_deltas(pEvent, &right, &down);
        right = 0 - right;
        down = 0 - down;
        if (gdk_scroll_event_get_unit(pEvent) == GDK_SCROLL_UNIT_SURFACE)
        {
            constexpr double cPixelsPerNotch = 10; // of Wayland's compositors
            right /= cPixelsPerNotch;
            down /= cPixelsPerNotch;
        }
        break;
    }
    const double unit = zav::s_wheelUnitsPerNotch;
    return _view.tell(
        [&](const SharedClient& pClient) {
            return (*pClient)->onWheel({right * unit, down * unit, modifiersOf(pEvent), _point});
        });
}

bool GtkInput::onKey(GdkEvent* pEvent)
{
    const bool isDown = gdk_event_get_event_type(pEvent) == GDK_KEY_PRESS;
    if (gdk_key_event_get_keyval(pEvent) == GDK_KEY_ISO_Level3_Shift)
        _isAltGr = isDown;
    // It may call the view for what is composed.
    const GtkText::Filtered filtered = _text.filter(pEvent);
    constexpr unsigned int cFirstOfXKB = 8;
    const unsigned int number = gdk_key_event_get_keycode(pEvent);
    const int usage = gui::gl::toKeyUsage(number > cFirstOfXKB ? number - cFirstOfXKB : 0);
    const gui::gl::KeyMapping mapping = gui::gl::mapKey(usage, isNumLock(pEvent));
    const unsigned int modifiers = modifiersOf(pEvent);
    unsigned short character = mapping.character;
    using Character = gui::gl::KeyMapping::Character;
    if (mapping.kind == Character::OfLayout || mapping.kind == Character::OfShiftedLayout)
    {
        const bool isShift = (gdk_event_get_modifier_state(pEvent) & GDK_SHIFT_MASK) != 0;
        if (const unsigned short ofLayout = characterOf(pEvent, isShift || mapping.kind == Character::OfShiftedLayout))
            character = ofLayout;
    }
    return _view.tell(
               [&](const SharedClient& pClient)
               {
                   bool isUsed = filtered.isTaken;
                   if (!filtered.isTaken && mapping.keyCode != 0)
                       isUsed = (*pClient)->onKey({isDown, mapping.keyCode, character, modifiers});
                   if (filtered.text.empty() || *pClient == nullptr)
                       return isUsed;
                   (*pClient)->onText({filtered.text, filtered.isTaken ? 0 : modifiers});
                   return true;
               }) ||
           filtered.isTaken;
}

bool GtkInput::onTouch(GdkEvent* pEvent)
{
    GdkEventSequence* const pFinger = gdk_event_get_event_sequence(pEvent);
    const GdkEventType type = gdk_event_get_event_type(pEvent);
    const auto known = std::ranges::find(_down, pFinger, &std::pair<GdkEventSequence*, td::Point<double>>::first);
    if (type == GDK_TOUCH_END || type == GDK_TOUCH_CANCEL)
    {
        if (known != _down.end())
            _down.erase(known);
    }
    else if (const std::optional<td::Point<double>> point = pointOf(pEvent))
    {
        if (known == _down.end())
            _down.emplace_back(pFinger, *point);
        else
            known->second = *point;
    }
    if (type == GDK_TOUCH_BEGIN)
        gtk_widget_grab_focus(_pWidget);
    std::vector<td::Point<double>> points;
    for (const auto& finger : _down)
        points.push_back(finger.second);
    return _view.tell(
        [&](const SharedClient& pClient)
        {
            _fingers.change(points, modifiersOf(pEvent), pClient);
            return true;
        });
}

bool GtkInput::onPinch(GdkEvent* pEvent)
{
    if (gdk_touchpad_event_get_gesture_phase(pEvent) != GDK_TOUCHPAD_GESTURE_PHASE_UPDATE)
        return true;
    const double magnification = gdk_touchpad_event_get_pinch_scale(pEvent) - 1;
    return _view.tell(
        [&](const SharedClient& pClient)
        {
            (*pClient)->onMagnification({magnification, modifiersOf(pEvent)});
            return true;
        });
}

} // namespace gui::gtk
