#include "TextBox.h"

#include <gui/Clipboard.h>
#include <gui/InputDevice.h>
#include <gui/Key.h>
#include <gui/gl/Context.h>

#include <cctype>
#include <cmath>

namespace gallery
{

namespace
{

constexpr td::Color cSelection = "#31588f", cCaret = "#ffd166";

} // namespace

void TextBox::setRect(const Rect& rect)
{
    _rect = rect;
    editor.setWidth(rect.right - rect.left);
    editor.setPage(rect.bottom - rect.top);
}

bool TextBox::contains(Point point) const
{
    constexpr double cAround = 14;
    return point.x >= _rect.left - cAround && point.x < _rect.right + cAround && point.y >= _rect.top - cAround &&
           point.y < _rect.bottom + cAround;
}

TextBox::Point TextBox::toText(const gui::InputDevice& device) const
{
    return {device.getFramePoint().x - corner().x, device.getFramePoint().y - corner().y};
}

void TextBox::press(const gui::InputDevice& device, unsigned int nClicks)
{
    editor.press(toText(device), nClicks, nClicks == 1 && device.getKey().isShiftPressed());
}

void TextBox::drag(const gui::InputDevice& device) { editor.drag(toText(device)); }

bool TextBox::onKey(const gui::Key& key)
{
    const int letter = key.isCmdPressed() ? std::tolower(key.getChar()) : 0;
    if ((letter == 'c' || letter == 'x') && editor.hasSelection())
        gui::Clipboard::setText(letter == 'c' ? editor.getSelectedText() : editor.cut());
    else if (letter == 'v')
        editor.paste(gui::Clipboard::getText());
    else
        return editor.onKey(key);
    return true;
}

TextBox::Rect TextBox::getCaret() const
{
    const Rect caret = editor.getCaretRect();
    return {corner().x + caret.left, corner().y + caret.top, corner().x + caret.right, corner().y + caret.bottom};
}

void TextBox::draw(const Frame& frame, bool hasCaret)
{
    using namespace gui::gl;
    _scroll = editor.scrollToCaret(_scroll, {_rect.right - _rect.left, _rect.bottom - _rect.top});
    const Point at = corner();
    const auto add = [&](const Rect& r, td::Color color) {
        _drawing.fill(gui::draw::Path().addRect({at.x + r.left, at.y + r.top, at.x + r.right, at.y + r.bottom}), color);
    };
    _drawing.clear();
    for (const Rect& r : editor.getSelectionRects())
        add(r, cSelection);
    _drawing.text(at, editor.getLayout(), {.anchor = gui::draw::Anchor::TopLeft});
    for (const Rect& r : editor.getCompositionRects())
        add(r, cCaret);
    if (hasCaret)
        add(editor.getCaretRect(1.5), cCaret);

    // Room for the caret and for letters that stand out.
    constexpr double cAround = 3;
    const auto toPixels = [&frame](double points) { return static_cast<int>(std::lround(points * frame.scale)); };
    const int left = toPixels(_rect.left - cAround), bottom = toPixels(frame.size.height - _rect.bottom);
    Context::setScissor(left, bottom, toPixels(_rect.right + cAround) - left,
                        toPixels(frame.size.height - _rect.top) - bottom);
    Context::enable(Context::Flag::ScissorTest);
    _drawing.draw(gui::draw::Affine(), frame.scale);
    Context::disable(Context::Flag::ScissorTest);
}

} // namespace gallery
