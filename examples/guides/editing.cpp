// A window with a text to edit: typing, a caret that blinks, selection, clipboard, undo, input methods.
#include <gui/Application.h>
#include <gui/Clipboard.h>
#include <gui/Key.h>
#include <gui/TextComposition.h>
#include <gui/Timer.h>
#include <gui/draw/draw.h>
#include <gui/gl/gl.h>

#include <cctype>

using namespace gui::draw;
using gui::InputDevice;

namespace
{

constexpr double cMargin = 20;

class Page : public gui::gl::View
{
public:
    Page()
    {
        using namespace gui::gl;
        const Context context(Context::Animation::Off, DepthBuffer::Size::None, StencilBuffer::Size::None,
                              Context::Profile::Core41);
        using Event = InputDevice::Event;
        createContext(context, {Event::PrimaryClicks, Event::CursorDrag, Event::OtherClicks, Event::Keyboard});
        setCursor(gui::Cursor::Type::Text, false);
        startTextInput();
        _editor.setText(
            "A text to edit, שלום or مرحبا in it: what is selected from the middle of one such word to that "
            "of another is read in one piece, and seen in several.");
        _editor.select({20, 32});
    }

private:
    void onTextInput(std::string_view text) override
    {
        _editor.insert(text);
        show();
    }
    void onTextComposition(const gui::TextComposition& composition) override
    {
        _editor.compose(composition);
        show();
    }
    bool onKeyPressed(const gui::Key& key) override
    {
        const int letter = key.isCmdPressed() ? std::tolower(key.getChar()) : 0;
        if ((letter == 'c' || letter == 'x') && _editor.hasSelection())
            gui::Clipboard::setText(letter == 'c' ? _editor.getSelectedText() : _editor.cut());
        else if (letter == 'v')
            _editor.paste(gui::Clipboard::getText());
        else if (!_editor.onKey(key))
            return false;
        show();
        return true;
    }

    void onPrimaryButtonPressed(const InputDevice& device) override { press(device, device.getNoOfEvents()); }
    void onPrimaryButtonDblClick(const InputDevice& device) override { press(device, 2); }
    void onCursorDragged(const InputDevice& device) override
    {
        _editor.drag(toText(device));
        show();
    }
    void onPrimaryButtonReleased(const InputDevice&) override
    {
        if (_editor.hasSelection())
            gui::Clipboard::setText(_editor.getSelectedText(), gui::Clipboard::Kind::Selected);
    }
    void onOtherButtonPressed(const InputDevice& device) override
    {
        if (device.getButton() != InputDevice::Button::Middle)
            return;
        _editor.press(toText(device));
        _editor.paste(gui::Clipboard::getText(gui::Clipboard::Kind::Selected));
        show();
    }
    void press(const InputDevice& device, unsigned int nClicks)
    {
        _editor.press(toText(device), nClicks, device.getKey().isShiftPressed());
        show();
    }
    static TextEditor::Point toText(const InputDevice& device)
    {
        return {device.getFramePoint().x - cMargin, device.getFramePoint().y - cMargin};
    }

    void onResize(const td::Size<double>& size) override
    {
        _editor.setWidth(size.width - 2 * cMargin);
        show();
    }
    void onDraw(const td::RectNormalized<double>&) override
    {
        gui::gl::Context::clear(gui::gl::Context::Clear::Color, td::ColorID::White);
        _drawing.clear();
        for (const TextEditor::Rect& rect : _editor.getSelectionRects())
            fill(rect, "#b8d4f0");
        _drawing.text({cMargin, cMargin}, _editor.getLayout(), {.anchor = Anchor::TopLeft});
        for (const TextEditor::Rect& rect : _editor.getCompositionRects())
            fill(rect, "#2050a0");
        if (_isCaretOn)
            fill(_editor.getCaretRect(1.5), "#2050a0");
        _drawing.draw(Affine(), double(getPixelHiDPIScale()));
    }
    void fill(const TextEditor::Rect& rect, const Paint& paint) { _drawing.fill(Path().addRect(toView(rect)), paint); }
    static TextEditor::Rect toView(const TextEditor::Rect& rect)
    {
        return {rect.left + cMargin, rect.top + cMargin, rect.right + cMargin, rect.bottom + cMargin};
    }

    // With the caret on from now, and candidates of an input method beside it.
    void show()
    {
        _isCaretOn = true;
        _blink.start(0.5);
        setTextInputRect(toView(_editor.getCaretRect()));
        reRender();
    }

    TextEditor _editor{{.face = Typeface::named("DejaVu Sans"), .size = 18}, {.lineHeight = 1.5}};
    Drawing _drawing;
    bool _isCaretOn = true;
    gui::Timer _blink{[this]
                      {
                          _isCaretOn = !_isCaretOn;
                          reDraw();
                      }};
};

} // namespace

int main(int argc, char** argv)
{
    gui::Application app(argc, argv);
    Page page;
    return app.run(page, "Editing", {480, 150});
}
