// Look for: a caret that blinks where text goes, also in lines that are read from both sides; words by two clicks and
// paragraphs by three, and what an input method composes underlined until it is there.

#include "Drawing.h"
#include "Scenes.h"
#include "Stage.h"
#include "TextBox.h"

#include <gui/InputDevice.h>
#include <gui/Key.h>
#include <gui/TextComposition.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace gallery
{

namespace
{

using gui::draw::TextStyle;

constexpr const char* cText =
    "Click here and type. The mouse selects, and so do Shift and the arrows: two clicks take a word, three a "
    "paragraph. Ctrl-X, Ctrl-C and Ctrl-V cut, copy and paste, from program to program; Ctrl-Z and Ctrl-Y go back and "
    "forth by words.\n\nWhat is read from the right, שלום or مرحبا, is edited as it is read, whatever stands beside "
    "it. "
    "What an input method composes is shown underlined, until it becomes text.\n\nEscape, or a click beside the "
    "fields, "
    "gives the keys back to the gallery.";

/// A field of one line and one of many.
class Editor : public Scene
{
public:
    bool init() override
    {
        _boxes[0].editor.setText("One line, of sixty letters at most");
        _boxes[1].editor.setText(cText);
        layOut({960, 600});
        return _backdrop.init();
    }

    void enter(Stage& stage) override { _pStage = &stage; }

    void draw(const Frame& frame) override
    {
        _backdrop.draw(frame, layOut(frame.size));
        const bool isCaretOn = std::fmod(frame.seconds - _typedAt, 1.0) < 0.5;
        for (TextBox& box : _boxes)
            box.draw(frame, &box == _pFocused && isCaretOn);
        tellCaret();
    }

    bool prepareNextFrame(double) override { return _pFocused != nullptr; }
    void onTime(bool runs) override { _runs = runs; }

    void onPointer(PointerEvent event, const gui::InputDevice& device) override
    {
        const auto found = std::ranges::find_if(_boxes, [&device](const TextBox& box)
                                                { return box.contains(device.getFramePoint()); });
        TextBox* const pBox = found != _boxes.end() ? &*found : nullptr;
        if (event == PointerEvent::Moved)
            _pStage->setCursor(pBox != nullptr ? gui::Cursor::Type::Text : gui::Cursor::Type::Default);
        if (event == PointerEvent::Pressed || event == PointerEvent::DoubleClicked)
        {
            focus(pBox);
            if (pBox != nullptr)
                pBox->press(device, event == PointerEvent::DoubleClicked ? 2 : device.getNoOfEvents());
        }
        else if (event == PointerEvent::Dragged && _pFocused != nullptr)
            _pFocused->drag(device);
        else
            return;
        showCaret();
    }

    bool onKey(const gui::Key& key, bool isDown) override
    {
        if (_pFocused == nullptr)
            return false;
        if (key.getVirtual() == gui::Key::Virtual::Escape)
            focus(nullptr);
        else if (!isDown || !_pFocused->onKey(key))
            return false;
        showCaret();
        return true;
    }

    void onText(std::string_view text) override
    {
        if (_pFocused != nullptr && _pFocused->editor.insert(text))
            showCaret();
    }

    void onComposition(const gui::TextComposition& composition) override
    {
        if (_pFocused == nullptr)
            return;
        _pFocused->editor.compose(composition);
        showCaret();
    }

private:
    // Gives the fields their places. @return the panels behind them
    std::array<Cell, 2> layOut(const td::Size<double>& size)
    {
        constexpr float cBorder = 24, cPadding = 18, cTop = 112;
        const float width = std::max(static_cast<float>(size.width) - 2 * cBorder, 3 * cPadding);
        const float height = std::max(static_cast<float>(size.height) - cTop - cBorder, 3 * cPadding);
        const std::array cells{Cell{cBorder, cBorder, width, 72}, Cell{cBorder, cTop, width, height}};
        for (std::size_t i = 0; i < cells.size(); ++i)
            _boxes[i].setRect({cells[i].left + cPadding, cells[i].top + cPadding,
                               cells[i].left + cells[i].width - cPadding, cells[i].top + cells[i].height - cPadding});
        return cells;
    }

    void focus(TextBox* pBox)
    {
        _pFocused = pBox;
        // For the caret.
        if (_runs != (pBox != nullptr))
            _pStage->toggleTime();
        tellCaret();
    }

    void tellCaret() const
    {
        const TextBox::Rect caret = _pFocused != nullptr ? _pFocused->getCaret() : TextBox::Rect();
        _pStage->setTextInput(_pFocused != nullptr ? &caret : nullptr);
    }

    // From now on for half a second.
    void showCaret()
    {
        _typedAt = _pStage->getSeconds();
        _pStage->redraw();
    }

    Stage* _pStage = nullptr;
    Backdrop _backdrop;
    std::array<TextBox, 2> _boxes{
        TextBox({.size = 26, .paint = "#ffffff"}, {}, {.isSingleLine = true, .maxLength = 60}),
        TextBox({.size = 22, .paint = "#dcdcdc"}, {.lineHeight = 1.5}, {.maxLength = 4000})};
    TextBox* _pFocused = nullptr;
    double _typedAt = 0;
    bool _runs = false;
};

} // namespace

std::unique_ptr<Scene> makeEditor() { return std::make_unique<Editor>(); }

} // namespace gallery
