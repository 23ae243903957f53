#include <gui/draw/TextField.h>

#include "DrawingImpl.h"
#include "TextFieldPicture.h"

#include <gui/Clipboard.h>
#include <gui/InputDevice.h>
#include <gui/Key.h>
#include <gui/TextComposition.h>
#include <gui/Timer.h>
#include <gui/gl/OrthoView.h>
#include <gui/gl/ViewLayer.h>

#include <td/GUIThread.h>
#include <vo/Log.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <utility>

namespace gui::draw
{

namespace
{

constexpr double cBlink = 0.5;   // seconds that the caret is seen, and not
constexpr double cFromEdge = 12; // points that it has from the view's edges where something is typed

bool isCommand(const Key& key)
{
    return key.isCmdPressed() || isCtrlPressed(key.getModifiers()) || (key.isAltPressed() && !key.isFnPressed());
}

// Those that do the same whatever has the keyboard.
bool isFunctionKey(Key::Virtual code)
{
    return (code >= Key::Virtual::F1 && code <= Key::Virtual::F12) ||
           (code >= Key::Virtual::VolumeUp && code <= Key::Virtual::Mute);
}

} // namespace

struct TextField::Impl : gl::ViewLayer
{
    Impl(gl::View& view, gl::OrthoView* pPlane_, const TextFieldStyle& style_)
        : ViewLayer(view)
        , pPlane(pPlane_)
        , style(style_)
        , picture(pPlane)
    {
    }
    ~Impl() override { end(); }

    bool canEdit() const;
    void stand(Point at, const TextPlacement& placement, const TextStyle& text);
    void begin(std::string_view string, const TextStyle& text, CommitHandler&& commitHandler,
               CancelHandler&& cancelHandler);
    void end();
    bool isEditing() const { return isOn && getView() != nullptr; }
    /// The same of a text that is still there; one that is not is cancelled.
    bool goesOn();
    /// These may end this object's life.
    void commit();
    void cancel();
    const Drawing::Impl::Item* findSource() const;

    double getScale() const { return getView()->getPixelHiDPIScale(); }
    bool isSelecting() const { return editor.hasSelection() && !editor.isComposing(); }
    Point toLayout(const InputDevice& device) const;
    void show();
    void showTyped();
    void reRender() const;
    void restartTextInput();
    void setOver(bool isOverNow);
    void press(const InputDevice& device, unsigned int nClicks);

    void onDraw(gl::View& view) override;
    bool onPointer(Pointer event, const InputDevice& device) override;
    bool onKeyPressed(const Key& key) override;
    bool onTextInput(std::string_view typed) override;
    bool onTextComposition(const gui::TextComposition& composition) override;
    void onFocusOut() override { commit(); }

    gl::OrthoView* pPlane; // the view, if it is one; as long as there is a view
    TextFieldStyle style;
    TextEditor editor;
    TextFieldPicture picture;
    CommitHandler onCommit{};
    CancelHandler onCancel{};
    bool isOn = false;

    Drawing* pDrawing = nullptr; // that has the text, if one has
    std::weak_ptr<const char> drawingLife{};
    Drawing::ID source = 0;
    bool wasVisible = false;

    std::string composed{}; // by an input method, so far
    bool tookText = false;  // the view, before
    bool isPressed = false;
    bool isOver = false; // the pointer
    bool isCaretOn = true;
    td::RectNormalized<double> caret; // as the view was told
    Timer blink{[this]
                {
                    isCaretOn = !isCaretOn;
                    reRender();
                }};
};

// Beginning and end.

bool TextField::Impl::canEdit() const
{
    const gl::View* const pView = getView();
    const bool can = pView != nullptr && pView->getHandle() != nullptr;
    if (!can)
        vo::dbgLog("Error! TextField::edit: its view has gone, or has no context yet!");
    return can;
}

void TextField::Impl::stand(Point at, const TextPlacement& placement, const TextStyle& text)
{
    TextFieldStyle look = style;
    if (!look.caret)
        look.caret = Drawing::Impl::foregroundOf(text.paint);
    picture.begin(at, placement, text, look);
}

void TextField::Impl::begin(std::string_view string, const TextStyle& text, CommitHandler&& commitHandler,
                            CancelHandler&& cancelHandler)
{
    editor = TextEditor(text, style.paragraph, {style.isSingleLine, style.maxLength});
    editor.setText(string);
    if (style.selectsAll)
        editor.selectAll();
    onCommit = std::move(commitHandler);
    onCancel = std::move(cancelHandler);
    composed.clear();
    caret = {};
    isOn = true;
    gl::View& view = *getView();
    tookText = view.takesTextInput();
    view.startTextInput();
    show();
}

void TextField::Impl::end()
{
    if (!std::exchange(isOn, false))
        return;
    blink.stop();
    if (wasVisible && findSource() != nullptr)
        pDrawing->setVisible(source, true);
    pDrawing = nullptr;
    picture.end();
    setOver(false);
    if (getView() == nullptr)
        return;
    if (!tookText)
        getView()->stopTextInput();
    else if (!composed.empty())
        restartTextInput();
    reRender();
}

const Drawing::Impl::Item* TextField::Impl::findSource() const
{
    return pDrawing == nullptr || drawingLife.expired() ? nullptr : pDrawing->_pImpl->findText(source);
}

bool TextField::Impl::goesOn()
{
    if (!isEditing())
        return false;
    if (pDrawing == nullptr)
        return true;
    if (const Drawing::Impl::Item* const pText = findSource())
    {
        picture.setWhole(pDrawing->_pImpl->wholeOf(*pText));
        return true;
    }
    cancel();
    return false;
}

void TextField::Impl::commit()
{
    if (!goesOn())
        return;
    if (editor.isComposing())
        editor.insert(composed);
    const std::string text = editor.getText();
    const CommitHandler handler = std::exchange(onCommit, {});
    onCancel = {};
    end();
    if (handler)
        handler(text);
}

void TextField::Impl::cancel()
{
    if (!isEditing())
        return;
    const CancelHandler handler = std::exchange(onCancel, {});
    onCommit = {};
    end();
    if (handler)
        handler();
}

// What comes in.

TextField::Point TextField::Impl::toLayout(const InputDevice& device) const
{
    const std::optional<Affine> map = picture.getMap(editor, getScale());
    return map ? map->inverse()->map(device.getPlace()) : Point();
}

void TextField::Impl::reRender() const
{
    if (const gl::View* const pView = getView())
        pView->reRender();
}

// With the caret on from now, if there is one.
void TextField::Impl::show()
{
    isCaretOn = true;
    if (isSelecting())
        blink.stop();
    else
        blink.start(cBlink);
    reRender();
}

// As a text scrolls: with the caret in sight.
void TextField::Impl::showTyped()
{
    show();
    const auto place = picture.getCaret(editor, getScale());
    if (pPlane == nullptr || !place)
        return;
    const auto beyond = [](double from, double to, double length)
    {
        if (to - from > length - 2 * cFromEdge)
            return 0.0;
        return from < cFromEdge ? from - cFromEdge : std::max(to + cFromEdge - length, 0.0);
    };
    const td::Size<double> size = pPlane->getSize();
    const Point way(beyond(place->left, place->right, size.width), beyond(place->top, place->bottom, size.height));
    if (way.x != 0 || way.y != 0)
        pPlane->setCenter(pPlane->getModelPoint({size.width / 2 + way.x, size.height / 2 + way.y}));
}

// An input method that composes begins anew.
void TextField::Impl::restartTextInput()
{
    composed.clear();
    getView()->stopTextInput();
    getView()->startTextInput();
}

void TextField::Impl::setOver(bool isOverNow)
{
    const gl::View* const pView = getView();
    if (std::exchange(isOver, isOverNow) != isOverNow && pView != nullptr)
        pView->setCursor(isOverNow ? Cursor::Type::Text : Cursor::Type::Default, true);
}

void TextField::Impl::press(const InputDevice& device, unsigned int nClicks)
{
    // What is composed becomes text where it is.
    if (editor.isComposing())
    {
        editor.insert(composed);
        restartTextInput();
    }
    editor.press(toLayout(device), nClicks, nClicks == 1 && device.getKey().isShiftPressed());
    show();
}

bool TextField::Impl::onPointer(Pointer event, const InputDevice& device)
{
    // These belong to a press, whatever became of the field since.
    if (event == Pointer::PrimaryReleased && std::exchange(isPressed, false))
    {
        if (isEditing() && editor.hasSelection())
            Clipboard::setText(editor.getSelectedText(), Clipboard::Kind::Selected);
        return true;
    }
    if (event == Pointer::Dragged && isPressed)
    {
        if (goesOn())
        {
            editor.drag(toLayout(device));
            show();
        }
        return true;
    }
    if (!goesOn())
        return false;
    const bool isIn = picture.isInside(editor, device.getPlace(), getScale());
    switch (event)
    {
    case Pointer::PrimaryPressed:
    case Pointer::PrimaryDblClick:
        isPressed = isIn;
        if (isIn)
            press(device, event == Pointer::PrimaryDblClick ? 2U : device.getNoOfEvents());
        else
            commit();
        return isIn;
    case Pointer::SecondaryPressed:
        if (!isIn)
            commit();
        return isIn;
    case Pointer::OtherPressed:
        if (isIn && device.getButton() == InputDevice::Button::Middle)
        {
            press(device, 1);
            editor.paste(Clipboard::getText(Clipboard::Kind::Selected));
            show();
        }
        return isIn;
    case Pointer::Moved:
        setOver(isIn);
        return isIn;
    case Pointer::Exited:
        setOver(false);
        return false;
    default:
        return false;
    }
}

bool TextField::Impl::onKeyPressed(const Key& key)
{
    using Virtual = Key::Virtual;
    if (!goesOn())
        return false;
    const Virtual code = key.getVirtual();
    const int letter = key.isCmdPressed() ? std::tolower(key.getChar()) : 0;
    if (code == Virtual::Escape && editor.isComposing())
    {
        editor.compose({});
        restartTextInput();
    }
    else if (code == Virtual::Escape)
    {
        cancel();
        return true;
    }
    else if (code == Virtual::Tab)
    {
        commit();
        return false;
    }
    else if (letter == 'c' || letter == 'x')
    {
        if (editor.hasSelection())
            Clipboard::setText(letter == 'c' ? editor.getSelectedText() : editor.cut());
    }
    else if (letter == 'v')
        editor.paste(Clipboard::getText());
    else if (!editor.onKey(key))
    {
        if (code == Virtual::Return || code == Virtual::KeypadEnter)
        {
            commit();
            return true;
        }
        // What is left would move the plane, or remove a shape.
        return !isCommand(key) && !isFunctionKey(code);
    }
    showTyped();
    return true;
}

bool TextField::Impl::onTextInput(std::string_view typed)
{
    if (!goesOn())
        return false;
    composed.clear();
    editor.insert(typed);
    showTyped();
    return true;
}

bool TextField::Impl::onTextComposition(const gui::TextComposition& composition)
{
    if (!goesOn())
        return false;
    composed = composition.text;
    editor.compose(composition);
    showTyped();
    return true;
}

void TextField::Impl::onDraw(gl::View& view)
{
    if (!goesOn())
        return;
    picture.draw(editor, isCaretOn && !isSelecting(), getScale());
    const auto place = picture.getCaret(editor, getScale());
    if (!place || (place->left == caret.left && place->top == caret.top && place->right == caret.right &&
                   place->bottom == caret.bottom))
        return;
    caret = *place;
    view.setTextInputRect(caret);
}

// The field.

TextField::TextField(gl::OrthoView& view, const TextFieldStyle& style)
    : _pImpl(std::make_unique<Impl>(view, &view, style))
{
}

TextField::TextField(gl::View& view, const TextFieldStyle& style)
    : _pImpl(std::make_unique<Impl>(view, nullptr, style))
{
}

TextField::~TextField() = default;

void TextField::setStyle(const TextFieldStyle& style) { _pImpl->style = style; }

bool TextField::edit(Drawing& drawing, Drawing::ID text, std::string_view string, CommitHandler onCommit,
                     CancelHandler onCancel)
{
    TD_ASSERT_GUI_THREAD(false);
    const auto find = [&]() -> const Drawing::Impl::Item*
    {
        const Drawing::Impl::Item* const pText = drawing._pImpl->findText(text);
        if (pText != nullptr && !pText->pLetters->pRoute)
            return pText;
        vo::dbgLog("Error! TextField::edit: no text at a point has this ID!");
        return nullptr;
    };
    if (!_pImpl->canEdit() || find() == nullptr)
        return false;
    const std::string begin(string); // a handler may change what that is from
    commit();
    _pImpl->end();
    const Drawing::Impl::Item* const pText = _pImpl->canEdit() ? find() : nullptr;
    if (pText == nullptr)
        return false;
    const Drawing::Impl::Letters& letters = *pText->pLetters;
    const TextStyle style = letters.text;
    _pImpl->stand(pText->origin, letters.placement, style);
    _pImpl->pDrawing = &drawing;
    _pImpl->drawingLife = drawing._pImpl->pLife;
    _pImpl->source = text;
    _pImpl->wasVisible = pText->isVisible;
    drawing.setVisible(text, false);
    _pImpl->begin(begin, style, std::move(onCommit), std::move(onCancel));
    return true;
}

bool TextField::editAt(Point at, std::string_view string, const TextStyle& style, const TextPlacement& placement,
                       CommitHandler onCommit, CancelHandler onCancel)
{
    TD_ASSERT_GUI_THREAD(false);
    if (!std::isfinite(at.x) || !std::isfinite(at.y))
    {
        vo::dbgLog("Error! TextField::edit: the place is not finite!");
        return false;
    }
    if (!_pImpl->canEdit())
        return false;
    // A handler may change what these are from.
    const std::string begin(string);
    const TextStyle text = style;          // NOLINT(performance-unnecessary-copy-initialization)
    const TextPlacement where = placement; // NOLINT(performance-unnecessary-copy-initialization)
    commit();
    _pImpl->end();
    if (!_pImpl->canEdit())
        return false;
    _pImpl->stand(at, where, text);
    _pImpl->begin(begin, text, std::move(onCommit), std::move(onCancel));
    return true;
}

bool TextField::isEditing() const { return _pImpl->isEditing(); }

void TextField::commit() { _pImpl->commit(); }

void TextField::cancel() { _pImpl->cancel(); }

TextEditor& TextField::editor() { return _pImpl->editor; }

const TextEditor& TextField::editor() const { return _pImpl->editor; }

} // namespace gui::draw
