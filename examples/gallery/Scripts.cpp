// Look for: each script in its own order and shapes, wrapped where its readers expect it, and selected by whole
// letters.

#include "Drawing.h"
#include "Scenes.h"
#include "Stage.h"
#include "TextBox.h"

#include <gui/InputDevice.h>
#include <gui/Key.h>

#include <algorithm>
#include <deque>
#include <string>

namespace gallery
{

namespace
{

using gui::draw::TextLayout;

// The first article of the Universal Declaration of Human Rights.
struct Paragraph
{
    const char* name; // of the language, in itself
    const char* english;
    const char* language;
    td::Color color;
    double size;
    const char* text;
};

constexpr Paragraph cParagraphs[] = {
    {"Français", "French", "fr", "#ffd166", 14,
     "Tous les êtres humains naissent libres et égaux en dignité et en droits. Ils sont doués de raison et de "
     "conscience "
     "et doivent agir les uns envers les autres dans un esprit de fraternité."},
    {"Ελληνικά", "Greek", "el", "#87cefa", 14,
     "Όλοι οι άνθρωποι γεννιούνται ελεύθεροι και ίσοι στην αξιοπρέπεια και τα δικαιώματα. Είναι προικισμένοι με λογική "
     "και συνείδηση, και οφείλουν να συμπεριφέρονται μεταξύ τους με πνεύμα αδελφοσύνης."},
    {"Русский", "Russian", "ru", "#ffa07a", 14,
     "Все люди рождаются свободными и равными в своём достоинстве и правах. Они наделены разумом и совестью и должны "
     "поступать в отношении друг друга в духе братства."},
    {"العربية", "Arabic", "ar", "#98fb98", 19,
     "يولد جميع الناس أحرارًا متساوين في الكرامة والحقوق. وقد وهبوا عقلاً وضميرًا وعليهم أن يعامل بعضهم بعضًا بروح "
     "الإخاء."},
    {"עברית", "Hebrew", "he", "#dda0dd", 17,
     "כל בני האדם נולדו בני חורין ושווים בערכם ובזכויותיהם. כולם חוננו בתבונה ובמצפון, לפיכך חובה עליהם לנהוג איש "
     "ברעהו ברוח של אחווה."},
    {"हिन्दी", "Hindi", "hi", "#f4a460", 17,
     "सभी मनुष्यों को गौरव और अधिकारों के मामले में जन्मजात स्वतन्त्रता और समानता प्राप्त है। उन्हें बुद्धि "
     "और अन्तरात्मा की देन प्राप्त है और परस्पर उन्हें भाईचारे के भाव से बर्ताव करना चाहिए।"},
    {"ไทย", "Thai", "th", "#7fffd4", 17,
     "มนุษย์ทั้งหลายเกิดมามีอิสระและเสมอภาคกันในเกียรติศักดิ์และสิทธิ ต่างมีเหตุผลและมโนธรรม "
     "และควรปฏิบัติต่อกันด้วยเจตนารมณ์แห่งภราดรภาพ"},
    {"中文", "Chinese", "zh-Hans", "#f08080", 18,
     "人人生而自由，在尊严和权利上一律平等。他们赋有理性和良心，并应以兄弟关系的精神相对待。"},
    {"☺ Emoji", "emoji", "en", "#add8e6", 18,
     "A family 👨‍👩‍👧‍👦, a flag 🇯🇵, a hand 👍🏾 and a keycap 5️⃣ are one letter each, to select "
     "and "
     "to "
     "delete. 🦊🐙🌵🍉🚀🎻🙂😍🤔"},
};

// Whether the system's faces have all letters of a text.
bool isWhole(const TextLayout& layout)
{
    return std::ranges::all_of(
        layout.getRuns(), [](const TextLayout::Run& run)
        { return std::ranges::all_of(run.glyphs, [](const TextLayout::Glyph& glyph) { return glyph.glyph != 0; }); });
}

/// A paragraph in each of eight languages and one with emoji, to be selected and copied. Those that the system has no
/// face for are named.
class Scripts : public Scene
{
public:
    bool init() override
    {
        const gui::draw::ParagraphStyle lines{.lineHeight = 1.3};
        for (const Paragraph& paragraph : cParagraphs)
        {
            gui::draw::TextStyle style{.size = paragraph.size, .paint = "#dcdcdc"};
            style.language = paragraph.language;
            TextBox& box = _boxes.emplace_back(style, lines);
            box.editor.setText(paragraph.text);
            if (!isWhole(box.editor.getLayout()))
            {
                style.paint = "#8090a8";
                style.size = 14;
                box.editor.setStyle(style);
                box.editor.setText(std::string("This system has no face for ") + paragraph.english + ".");
            }
            box.editor.select({0, 0});
        }
        layOut({{960, 600}, 1, 0});
        return _backdrop.init();
    }

    void enter(Stage& stage) override { _pStage = &stage; }

    void draw(const Frame& frame) override
    {
        using gui::draw::Anchor;
        _backdrop.draw(frame, layOut(frame));
        _names.clear();
        for (std::size_t i = 0; i < _boxes.size(); ++i)
        {
            const TextBox::Rect& rect = _boxes[i].getRect();
            const Paragraph& paragraph = cParagraphs[i];
            const TextLayout name(paragraph.name, {.size = 18, .paint = paragraph.color});
            const bool isRightToLeft = name.getLines().front().isRightToLeft;
            if (isWhole(name))
                _names.text({isRightToLeft ? rect.right : rect.left, rect.top - 30}, name,
                            {.anchor = isRightToLeft ? Anchor::TopRight : Anchor::TopLeft});
            _boxes[i].draw(frame, false);
        }
        _names.draw(gui::draw::Affine(), frame.scale);
    }

    void onPointer(PointerEvent event, const gui::InputDevice& device) override
    {
        const auto found = std::ranges::find_if(_boxes, [&device](const TextBox& box)
                                                { return box.contains(device.getFramePoint()); });
        TextBox* const pBox = found != _boxes.end() ? &*found : nullptr;
        if (event == PointerEvent::Moved)
            _pStage->setCursor(pBox != nullptr ? gui::Cursor::Type::Text : gui::Cursor::Type::Default);
        if (event == PointerEvent::Pressed || event == PointerEvent::DoubleClicked)
        {
            if (_pSelected != nullptr && _pSelected != pBox)
                _pSelected->editor.select({0, 0});
            _pSelected = pBox;
            if (pBox != nullptr)
                pBox->press(device, event == PointerEvent::DoubleClicked ? 2 : device.getNoOfEvents());
        }
        else if (event == PointerEvent::Dragged && _pSelected != nullptr)
            _pSelected->drag(device);
        else
            return;
        _pStage->redraw();
    }

    // To copy, not to write.
    bool onKey(const gui::Key& key, bool isDown) override
    {
        const char letter = key.getChar();
        const bool isCopy = key.isCmdPressed() && (letter == 'c' || letter == 'a');
        return isCopy && isDown && _pSelected != nullptr && _pSelected->onKey(key);
    }

private:
    // Gives the paragraphs their places. @return the panels behind them
    std::vector<Cell> layOut(const Frame& frame)
    {
        constexpr double cPadding = 16, cTop = 38;
        std::vector<Cell> cells = makeGrid(frame, 3, 3);
        for (std::size_t i = 0; i < _boxes.size(); ++i)
        {
            const Cell& cell = cells[i];
            _boxes[i].setRect({cell.left + cPadding, cell.top + cTop, cell.left + cell.width - cPadding,
                               double(cell.top + cell.height) - 4});
        }
        return cells;
    }

    Stage* _pStage = nullptr;
    Backdrop _backdrop;
    gui::draw::Drawing _names;
    std::deque<TextBox> _boxes;
    TextBox* _pSelected = nullptr;
};

} // namespace

std::unique_ptr<Scene> makeScripts() { return std::make_unique<Scripts>(); }

} // namespace gallery
