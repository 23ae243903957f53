#include "QtInput.h"

#include "X11Symbols.h"

#include <gui/Key.h>
#include <gui/gl/InputTuning.h>
#include <gui/gl/port/KeySymbols.h>
#include <gui/gl/port/Keys.h>

#include <QDropEvent>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QStyleHints>
#include <QTouchEvent>
#include <QUrl>
#include <QWheelEvent>
#include <xkbcommon/xkbcommon-keysyms.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>
#include <vector>

namespace gui::qt
{

namespace
{

using gui::gl::ButtonEvent;
using gui::gl::MotionEvent;

// The left one and the right one first, which may be held with others.
constexpr std::array<std::pair<Qt::MouseButton, ButtonEvent::Button>, 5> cButtons{{
    {Qt::LeftButton, ButtonEvent::Button::Left},
    {Qt::RightButton, ButtonEvent::Button::Right},
    {Qt::MiddleButton, ButtonEvent::Button::Middle},
    {Qt::BackButton, ButtonEvent::Button::Back},
    {Qt::ForwardButton, ButtonEvent::Button::Forward},
}};

// Usages of the keys of events that a program makes up, which have no number of the kernel's: the first of a row.
struct UsageRow
{
    int first, last; // Qt's
    int usage;
};
constexpr UsageRow cUsages[] = {
    {Qt::Key_A, Qt::Key_Z, 4},
    {Qt::Key_1, Qt::Key_9, 30},
    {Qt::Key_0, Qt::Key_0, 39},
    {Qt::Key_F1, Qt::Key_F12, 58},
    {Qt::Key_Return, Qt::Key_Return, 40},
    {Qt::Key_Escape, Qt::Key_Escape, 41},
    {Qt::Key_Backspace, Qt::Key_Backspace, 42},
    {Qt::Key_Tab, Qt::Key_Tab, 43},
    {Qt::Key_Space, Qt::Key_Space, 44},
    {Qt::Key_Insert, Qt::Key_Insert, 73},
    {Qt::Key_Home, Qt::Key_Home, 74},
    {Qt::Key_PageUp, Qt::Key_PageUp, 75},
    {Qt::Key_Delete, Qt::Key_Delete, 76},
    {Qt::Key_End, Qt::Key_End, 77},
    {Qt::Key_PageDown, Qt::Key_PageDown, 78},
    {Qt::Key_Right, Qt::Key_Right, 79},
    {Qt::Key_Left, Qt::Key_Left, 80},
    {Qt::Key_Down, Qt::Key_Down, 81},
    {Qt::Key_Up, Qt::Key_Up, 82},
    {Qt::Key_Enter, Qt::Key_Enter, 88},
    {Qt::Key_Control, Qt::Key_Control, 224},
    {Qt::Key_Shift, Qt::Key_Shift, 225},
    {Qt::Key_Alt, Qt::Key_Alt, 226},
    {Qt::Key_Meta, Qt::Key_Meta, 227},
};

int usageOf(const QKeyEvent& event)
{
    constexpr unsigned int cFirstOfXKB = 8;
    if (event.nativeScanCode() > cFirstOfXKB)
        return gui::gl::toKeyUsage(event.nativeScanCode() - cFirstOfXKB);
    for (const UsageRow& row : cUsages)
        if (event.key() >= row.first && event.key() <= row.last)
            return row.usage + event.key() - row.first;
    return 0;
}

// Qt 6.8 leaves AltGr out on X11, where Mod5 stands for it, as among XKB's real modifiers.
Qt::KeyboardModifiers qtModifiersOf(const QKeyEvent& event)
{
    constexpr quint32 cMod5Mask = 128;
    if (event.nativeScanCode() != 0 && (event.nativeModifiers() & cMod5Mask) != 0)
        return event.modifiers() | Qt::GroupSwitchModifier;
    return event.modifiers();
}

// The character of a key with Shift alone applied, of the symbol or the text that it has with all modifiers.
unsigned short characterOf(const QKeyEvent& event)
{
    const bool isAltGr = (qtModifiersOf(event) & Qt::GroupSwitchModifier) != 0;
    const quint32 ofLayout = isAltGr ? getX11Symbol(event) : 0;
    unsigned short character = gui::gl::toCharacter(ofLayout != 0 ? ofLayout : event.nativeVirtualKey());
    if (character == 0 && event.nativeScanCode() == 0 && event.key() >= Qt::Key_Space && event.key() < Qt::Key_Escape)
        character = static_cast<unsigned short>(event.key());
    const QChar letter(character);
    const bool isShifted = (event.modifiers() & Qt::ShiftModifier) != 0;
    return (isShifted ? letter.toUpper() : letter.toLower()).unicode();
}

bool isNumLock(const QKeyEvent& event)
{
    const quint32 symbol = event.nativeVirtualKey();
    return event.nativeScanCode() == 0 || (symbol >= XKB_KEY_KP_Multiply && symbol <= XKB_KEY_KP_9);
}

td::Point<double> toPoint(const QPointF& point) { return {point.x(), point.y()}; }

std::size_t countCharacters(QStringView text) { return static_cast<std::size_t>(text.toUcs4().size()); }

} // namespace

unsigned int QtInput::modifiersOf(Qt::KeyboardModifiers modifiers) const
{
    constexpr std::array<std::pair<Qt::KeyboardModifier, gui::KeyModifier>, 5> cModifiers{{
        {Qt::ShiftModifier, gui::KeyModifier::Shift},
        {Qt::MetaModifier, gui::KeyModifier::Ctrl},
        {Qt::AltModifier, gui::KeyModifier::Alt},
        {Qt::ControlModifier, gui::KeyModifier::Cmd},
        {Qt::GroupSwitchModifier, gui::KeyModifier::Fn},
    }};
    unsigned int mask = _isCapsLock ? static_cast<unsigned int>(gui::KeyModifier::CapsLock) : 0;
    for (const auto& [qtModifier, modifier] : cModifiers)
        if ((modifiers & qtModifier) != 0)
            mask |= static_cast<unsigned int>(modifier);
    return mask;
}

bool QtInput::isInput(const QEvent& event)
{
    switch (event.type())
    {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseMove:
    case QEvent::Enter:
    case QEvent::Leave:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::InputMethod:
    case QEvent::FocusIn:
    case QEvent::FocusOut:
    case QEvent::NativeGesture:
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TouchCancel:
        return true;
    default:
        return false;
    }
}

bool QtInput::isTyping(const QEvent& event)
{
    if (event.type() != QEvent::ShortcutOverride)
        return false;
    const auto& key = static_cast<const QKeyEvent&>(event);
    if ((key.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) != 0)
        return false;
    constexpr std::array cWithoutText{Qt::Key_Return, Qt::Key_Enter, Qt::Key_Backspace, Qt::Key_Delete, Qt::Key_Home,
                                      Qt::Key_End,    Qt::Key_Left,  Qt::Key_Right,     Qt::Key_Up,     Qt::Key_Down};
    const QString text = key.text();
    return std::ranges::find(cWithoutText, key.key()) != cWithoutText.end() ||
           (!text.isEmpty() && text.front().isPrint());
}

bool QtInput::handle(QEvent& event, const gui::gl::SharedClient& pClient, bool takesText)
{
    switch (event.type())
    {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseButtonRelease:
        return onButton(static_cast<const QMouseEvent&>(event), pClient);
    case QEvent::MouseMove:
        return onMotion(static_cast<const QMouseEvent&>(event), pClient);
    case QEvent::Enter:
        _point = static_cast<const QEnterEvent&>(event).position();
        (*pClient)->onMotion(
            {MotionEvent::Kind::Entered, modifiersOf(QGuiApplication::queryKeyboardModifiers()), toPoint(_point)});
        return false;
    case QEvent::Leave:
        (*pClient)->onMotion(
            {MotionEvent::Kind::Exited, modifiersOf(QGuiApplication::queryKeyboardModifiers()), toPoint(_point)});
        return false;
    case QEvent::Wheel:
        return onWheel(static_cast<const QWheelEvent&>(event), pClient);
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
        return onKey(static_cast<const QKeyEvent&>(event), pClient, takesText);
    case QEvent::InputMethod:
        return onInputMethod(static_cast<const QInputMethodEvent&>(event), pClient);
    case QEvent::FocusIn:
    case QEvent::FocusOut:
        (*pClient)->onFocus(event.type() == QEvent::FocusIn);
        return false;
    case QEvent::NativeGesture:
        return onGesture(static_cast<const QNativeGestureEvent&>(event), pClient);
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
        return onDrop(static_cast<QDropEvent&>(event), pClient);
    default:
        return onTouch(static_cast<const QTouchEvent&>(event), pClient);
    }
}

bool QtInput::onButton(const QMouseEvent& event, const gui::gl::SharedClient& pClient)
{
    const auto* const pName =
        std::ranges::find(cButtons, event.button(), &std::pair<Qt::MouseButton, ButtonEvent::Button>::first);
    if (pName == cButtons.end())
        return false;
    _point = event.position();
    const bool isDown = event.type() != QEvent::MouseButtonRelease;
    const QStyleHints& hints = *QGuiApplication::styleHints();
    const std::chrono::milliseconds time(event.timestamp()), interval(hints.mouseDoubleClickInterval());
    const unsigned short nClicks =
        isDown ? _clicks.press(pName->second, toPoint(_point), time,
                               {interval, static_cast<double>(hints.mouseDoubleClickDistance())})
               : _clicks.release(pName->second);
    (*pClient)->onButton({pName->second, isDown, (event.buttons() & Qt::LeftButton) != 0, nClicks,
                          modifiersOf(event.modifiers()), toPoint(_point)});
    return true;
}

bool QtInput::onMotion(const QMouseEvent& event, const gui::gl::SharedClient& pClient)
{
    _point = event.position();
    const unsigned int modifiers = modifiersOf(event.modifiers());
    if ((event.buttons() & Qt::LeftButton) != 0)
        (*pClient)->onMotion({MotionEvent::Kind::Dragged, modifiers, toPoint(_point)});
    else if (event.buttons() == Qt::NoButton)
        (*pClient)->onMotion({MotionEvent::Kind::Moved, modifiers, toPoint(_point)});
    else
        for (const auto& [qtButton, button] : cButtons)
            if ((event.buttons() & qtButton) != 0)
            {
                (*pClient)->onMotion({MotionEvent::Kind::OtherDragged, modifiers, toPoint(_point), button});
                break;
            }
    return true;
}

bool QtInput::onWheel(const QWheelEvent& event, const gui::gl::SharedClient& pClient)
{
    constexpr double cAnglePerNotch = 120;
    QPoint angle = event.angleDelta();
    // With Alt Qt turns a wheel around.
    if ((event.modifiers() & Qt::AltModifier) != 0 && angle.y() == 0)
        angle = angle.transposed();
    _point = event.position();
    const double unit = zav::s_wheelUnitsPerNotch / cAnglePerNotch;
    return (*pClient)->onWheel({angle.x() * unit, angle.y() * unit, modifiersOf(event.modifiers()), toPoint(_point)});
}

bool QtInput::onKey(const QKeyEvent& event, const gui::gl::SharedClient& pClient, bool takesText)
{
    const bool isDown = event.type() == QEvent::KeyPress;
    // Between two presses of a key that repeats Qt lets it go.
    if (!isDown && event.isAutoRepeat())
        return true;
    constexpr quint32 cLockMask = 2; // of X11 and of XKB's real modifiers
    if (event.nativeScanCode() != 0)
        _isCapsLock = (event.nativeModifiers() & cLockMask) != 0;
    const gui::gl::KeyMapping mapping = gui::gl::mapKey(usageOf(event), isNumLock(event));
    if (mapping.keyCode == 0)
        return false;
    unsigned short character = mapping.character;
    using Character = gui::gl::KeyMapping::Character;
    if (mapping.kind == Character::OfLayout || mapping.kind == Character::OfShiftedLayout)
        if (const unsigned short ofLayout = characterOf(event))
            character = ofLayout;
    const unsigned int modifiers = modifiersOf(qtModifiersOf(event));
    const QString text = isDown && takesText ? event.text() : QString();
    const bool isUsed = (*pClient)->onKey({isDown, mapping.keyCode, character, modifiers});
    if (text.isEmpty() || !text.front().isPrint())
        return isUsed;
    if (*pClient != nullptr)
        (*pClient)->onText({text.toStdString(), modifiers});
    return true;
}

bool QtInput::onInputMethod(const QInputMethodEvent& event, const gui::gl::SharedClient& pClient)
{
    const std::string preedit = event.preeditString().toStdString();
    const std::string committed = event.commitString().toStdString();
    gui::gl::CompositionEvent composition{preedit, countCharacters(event.preeditString())};
    for (const QInputMethodEvent::Attribute& attribute : event.attributes())
        if (attribute.type == QInputMethodEvent::Cursor)
            composition.start = countCharacters(QStringView(event.preeditString()).left(std::max(attribute.start, 0)));
    const bool wasComposing = std::exchange(_isComposing, !preedit.empty());
    // What was composed goes before what has become of it comes.
    if (wasComposing && !committed.empty())
        (*pClient)->onComposition({{}});
    if (!committed.empty() && *pClient != nullptr)
        (*pClient)->onText({committed});
    if (*pClient != nullptr && (!preedit.empty() || (wasComposing && committed.empty())))
        (*pClient)->onComposition(composition);
    return true;
}

bool QtInput::onGesture(const QNativeGestureEvent& event, const gui::gl::SharedClient& pClient)
{
    if (event.gestureType() == Qt::BeginNativeGesture)
        _pinch = 1;
    if (event.gestureType() != Qt::ZoomNativeGesture)
        return false;
    _pinch *= 1 + event.value();
    (*pClient)->onMagnification({_pinch - 1, modifiersOf(event.modifiers())});
    return true;
}

// On its way it is only accepted. A copy is what the view takes, whatever the other program would rather give away.
bool QtInput::onDrop(QDropEvent& event, const gui::gl::SharedClient& pClient) const
{
    const QMimeData& data = *event.mimeData();
    if (!(*pClient)->acceptsDrops() || (!data.hasUrls() && !data.hasText()))
        return false;
    event.setDropAction(Qt::CopyAction);
    event.accept();
    if (event.type() != QEvent::Drop)
        return true;
    gui::gl::DropEvent drop{{}, {}, modifiersOf(event.modifiers()), toPoint(event.position())};
    for (const QUrl& url : data.urls())
        drop.files.push_back(url.toLocalFile().toStdString());
    if (data.hasText())
        drop.text = data.text().toStdString();
    (*pClient)->onDrop(drop);
    return true;
}

bool QtInput::onTouch(const QTouchEvent& event, const gui::gl::SharedClient& pClient)
{
    std::vector<td::Point<double>> down;
    for (const QEventPoint& point : event.points())
        if (point.state() != QEventPoint::Released && event.type() != QEvent::TouchCancel)
            down.push_back(toPoint(point.position()));
    _fingers.change(down, modifiersOf(event.modifiers()), pClient);
    return true;
}

} // namespace gui::qt
