#include <gui/draw/TextField.h>

#include "support/CapturedLog.h"
#include "support/OffscreenGL.h"

#include "src/native/GLView.h"

#include <gui/Application.h>
#include <gui/Clipboard.h>
#include <gui/Texture.h>
#include <gui/Window.h>
#include <gui/draw/DrawingView.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace
{

using namespace gui::draw;
using Point = td::Point<double>;

// Of the table of key codes.
constexpr unsigned short cReturnKey = 36, cTabKey = 48, cBackspaceKey = 51, cEscapeKey = 53, cDeleteKey = 117,
                         cLeftKey = 123, cUpKey = 126, cF5Key = 96;
constexpr unsigned int cShift = 1, cCmd = 16;
constexpr double cFieldView = 300;
constexpr const char* cTitle = "Noise";

/// A plane with one text, told as a window system tells.
class NodeView : public DrawingView
{
public:
    explicit NodeView(bool yDown = true, const Affine& group = {}, const TextStyle& style = {.size = 20},
                      const TextPlacement& placement = {.anchor = Anchor::Center})
        : DrawingView(yDown)
    {
        onResize({cFieldView, cFieldView});
        setHome({0, 0, cFieldView, cFieldView});
        show(group, style, placement);
    }
    void show(const Affine& group, const TextStyle& style, const TextPlacement& placement)
    {
        drawing().clear();
        ground = drawing().fill(Path().addRect({20, 100, 280, 200}), "#465064");
        drawing().beginGroup(group);
        text = drawing().text({150, 150}, cTitle, style, placement);
        drawing().endGroup();
    }
    NodeView(const NodeView&) = delete;
    NodeView& operator=(const NodeView&) = delete;

    gui::gl::GLView& native() { return *dynamic_cast<gui::gl::GLView*>(getHandle()); }
    void press(Point at, unsigned short nClicks = 1, unsigned int modifiers = 0)
    {
        native().onButton({gui::gl::ButtonEvent::Button::Left, true, true, nClicks, modifiers, at});
    }
    void release(Point at) { native().onButton({gui::gl::ButtonEvent::Button::Left, false, false, 1, 0, at}); }
    void move(gui::gl::MotionEvent::Kind kind, Point to) { native().onMotion({kind, 0, to}); }
    bool key(unsigned short code, unsigned int modifiers = 0) { return native().onKey({true, code, 0, modifiers}); }
    bool key(char letter, unsigned int modifiers)
    {
        return native().onKey({true, 200, static_cast<unsigned char>(letter), modifiers});
    }
    void type(std::string_view typed) { native().onText({typed}); }
    void compose(std::string_view composed) { native().onComposition({composed, 9, 0}); }
    gui::Texture frame()
    {
        gui::Texture picture;
        EXPECT_TRUE(native().drawInto(picture));
        return picture;
    }
    bool edit(std::string string = cTitle)
    {
        return field->edit(
            drawing(), text, string,
            [this](const std::string& result)
            {
                told += "commit " + result;
                drawing().setText(text, result);
                if (const auto act = std::exchange(after, {}))
                    act();
            },
            [this]
            {
                told += "cancel";
                if (const auto act = std::exchange(after, {}))
                    act();
            });
    }
    std::string take() { return std::exchange(told, {}); }

    Drawing::ID ground = 0, text = 0;
    std::unique_ptr<TextField> field = std::make_unique<TextField>(*this);
    std::string told;
    std::function<void()> after;
    int nDraws = 0;

private:
    void onDraw(const td::RectNormalized<double>& rect) override
    {
        ++nDraws;
        DrawingView::onDraw(rect);
    }
    bool onKeyPressed(const gui::Key&) override
    {
        told += "key ";
        return true;
    }
    void onTextInput(std::string_view typed) override { told += "text " + std::string(typed); }
    void onPrimaryButtonPressed(const gui::InputDevice&) override { told += " press"; }
    void onPrimaryButtonReleased(const gui::InputDevice&) override { told += " release"; }
};

constexpr Point cIn(150, 150), cBeside(30, 30);

// What is the view's while a text is edited, or the field's when it is over; an end that is told twice, or as the wrong
// one; what is composed and lost; text that goes on coming.
TEST(TextFieldTest, EndsOnceAndLosesNothing)
{
    const struct
    {
        std::function<void(NodeView&)> act;
        const char* told;
        const char* composing; // the same, after what was composed; null where that is no end
    } cases[] = {
        {[](NodeView& v) { EXPECT_TRUE(v.key(cReturnKey)); }, "commit ab", "commit abc"},
        {[](NodeView& v) { v.key(cReturnKey, cCmd); }, "commit ab", "commit abc"},
        {[](NodeView& v) { v.key(cTabKey); }, "commit abkey ", "commit abckey "},
        {[](NodeView& v) { v.press(cBeside); }, "commit ab press", "commit abc press"},
        {[](NodeView& v) {
             v.native().onButton({gui::gl::ButtonEvent::Button::Right, true, false, 1, 0, cBeside});
         },
         "commit ab", "commit abc"},
        {[](NodeView& v) { v.native().onFocus(false); }, "commit ab", "commit abc"},
        {[](NodeView& v) { v.field->commit(); }, "commit ab", "commit abc"},
        {[](NodeView& v) { v.edit("again"); }, "commit ab", "commit abc"},
        {[](NodeView& v) { v.key(cEscapeKey); }, "cancel", nullptr},
        {[](NodeView& v) { v.field->cancel(); }, "cancel", "cancel"},
        {[](NodeView& v)
         {
             v.drawing().remove(v.text);
             v.frame();
         },
         "cancel", "cancel"},
        {[](NodeView& v)
         {
             v.drawing().clear();
             v.key(cReturnKey);
         },
         "cancelkey ", "cancelkey "},
        {[](NodeView& v)
         {
             v.drawing().remove(v.text);
             v.press(cIn);
         },
         "cancel press", "cancel press"},
    };
    for (std::size_t i = 0; i < std::size(cases); ++i)
        for (const bool isComposing : {false, true})
        {
            SCOPED_TRACE(std::to_string(i) + (isComposing ? " composing" : ""));
            NodeView view;
            ASSERT_TRUE(view.edit());
            EXPECT_TRUE(view.takesTextInput());
            view.type("ab");
            if (isComposing)
                view.compose("c");
            EXPECT_TRUE(view.key(cUpKey));
            EXPECT_TRUE(view.key('q', 0));
            if (isComposing)
                view.compose("c");
            EXPECT_EQ(view.take(), "");
            cases[i].act(view);
            if (isComposing && cases[i].composing == nullptr)
            {
                EXPECT_EQ(view.take(), "");
                EXPECT_TRUE(view.field->isEditing());
                cases[i].act(view);
            }
            EXPECT_EQ(view.take(), isComposing && cases[i].composing != nullptr ? cases[i].composing : cases[i].told);
            if (view.field->isEditing())
            {
                EXPECT_EQ(view.field->editor().getText(), "again");
                continue;
            }
            EXPECT_FALSE(view.takesTextInput());
            view.startTextInput();
            view.type("d");
            view.key(cBackspaceKey);
            view.press(cIn);
            view.release(cIn);
            EXPECT_EQ(view.take(), "text dkey  press release");
            const bool isRemoved = !view.drawing().setTag(view.text, 1);
            EXPECT_TRUE(isRemoved || view.drawing().pick({150, 150}) == view.text) << "it is still hidden";
        }
}

// A handler, or whoever is over when it is called, after which something is touched that is no more.
TEST(TextFieldTest, MayGoWhenItIsTold)
{
    for (const bool isCommitted : {false, true})
        for (int whatGoes = 0; whatGoes < 4; ++whatGoes)
        {
            SCOPED_TRACE(whatGoes);
            auto pView = std::make_unique<NodeView>();
            NodeView& view = *pView;
            ASSERT_TRUE(view.edit());
            std::unique_ptr<TextField> pField;
            view.after = [&]
            {
                if (whatGoes == 0)
                    view.field.reset();
                else if (whatGoes == 1)
                    EXPECT_TRUE(view.edit("next"));
                else if (whatGoes == 2)
                    pView.reset();
                else
                {
                    pField = std::move(view.field);
                    pView.reset();
                }
            };
            isCommitted ? view.press(cBeside) : void(view.key(cEscapeKey));
            if (whatGoes == 1)
            {
                EXPECT_TRUE(view.field->isEditing());
                EXPECT_EQ(view.field->editor().getText(), "next");
                EXPECT_TRUE(view.takesTextInput());
            }
            EXPECT_EQ(pView == nullptr, whatGoes > 1);
            EXPECT_FALSE(pField && pField->isEditing());
        }

    // Something goes in the midst.
    test::CapturedLog log;
    auto pView = std::make_unique<NodeView>();
    ASSERT_TRUE(pView->edit());
    pView->field.reset();
    EXPECT_FALSE(pView->takesTextInput());
    EXPECT_EQ(pView->drawing().pick({150, 150}), pView->text) << "hidden for ever";
    auto pDrawing = std::make_unique<Drawing>();
    TextField field(*pView);
    std::string told;
    const auto edit = [&]
    {
        const Drawing::ID id = pDrawing ? pDrawing->text({10, 10}, "a") : 0;
        return pDrawing ? field.edit(*pDrawing, id, "a", {}, [&told] { told += "cancel"; })
                        : field.editAt({10, 10}, "a", {}, {}, {});
    };
    ASSERT_TRUE(edit());
    pDrawing.reset();
    pView->frame();
    EXPECT_EQ(told, "cancel");
    ASSERT_TRUE(edit());
    pView.reset();
    EXPECT_FALSE(field.isEditing());
    field.commit();
    EXPECT_FALSE(edit());
    EXPECT_TRUE(log.said("Error! TextField::edit: its view has gone, or has no context yet!"));
}

TEST(TextFieldTest, BadInputChangesNothing)
{
    test::CapturedLog log;
    NodeView view;
    Drawing& drawing = view.drawing();
    const Drawing::ID others[] = {0,
                                  77,
                                  drawing.fill(Path().addRect({0, 0, 1, 1}), "#000000"),
                                  drawing.textOn(Path().addCircle({0, 0}, 50), "round"),
                                  drawing.symbol({0, 0}, Path().addCircle({0, 0}, 3), "#000000"),
                                  drawing.beginGroup()};
    drawing.endGroup();
    ASSERT_TRUE(view.edit("first"));
    for (const Drawing::ID other : others)
    {
        EXPECT_FALSE(view.field->edit(drawing, other, "b", {}));
        EXPECT_TRUE(log.said("Error! TextField::edit: no text at a point has this ID!")) << other;
    }
    for (const Point at : {Point(NAN, 0), Point(0, INFINITY)})
    {
        EXPECT_FALSE(view.field->editAt(at, "b", {}, {}, {}));
        EXPECT_TRUE(log.said("Error! TextField::edit: the place is not finite!"));
    }
    EXPECT_EQ(view.field->editor().getText(), "first");
    EXPECT_EQ(view.take(), "");
    EXPECT_EQ(view.drawing().pick({150, 150}), view.ground) << "the text is still hidden";

    gui::gl::View plain;
    TextField field(plain);
    EXPECT_FALSE(field.editAt({0, 0}, "", {}, {}, {}));
    EXPECT_TRUE(log.said("Error! TextField::edit: its view has gone, or has no context yet!"));
    ASSERT_TRUE(view.field->editAt({1e300, -1e300}, "\xFF", {.size = NAN}, {.angle = NAN, .frame = TextFrame()}, {}));
    view.type("a");
    view.press(cIn);
    view.frame();
}

// A caret that is elsewhere than the pointer at a zoom, in a turned or mirrored text; a word, a drag, Shift; what comes
// and goes by the clipboard; the view's own keys, wheel and middle button.
TEST(TextFieldTest, TakesPointerAndKeys)
{
    const auto turned = TextPlacement{.anchor = Anchor::Center, .angle = 90};
    for (const bool yDown : {true, false})
        for (const Unit unit : {Unit::Points, Unit::Model})
            for (const TextPlacement& placement : {TextPlacement{.anchor = Anchor::Center}, turned})
            {
                const Affine group{2, 0, 0, -2, -150, 450}; // about the same point
                NodeView view(yDown, group, {.size = 20, .unit = unit}, placement);
                view.setHome({75, 75, 225, 225});
                ASSERT_TRUE(view.edit("one two three"));
                view.frame();
                view.native().onWheel({0, 10, cCmd, cIn});
                EXPECT_TRUE(view.field->isEditing());
                // In the middle of the text is its second word.
                const TextLayout& layout = view.field->editor().getLayout();
                const double stretch = unit == Unit::Points ? 1 : view.getZoom() * 2;
                const double way = (layout.getCaret({1}).top.x - layout.getSize().width / 2) * stretch;
                const Point first = placement.angle == 0 ? Point(150 + way, 150) : Point(150, 150 - way);
                view.press(first);
                EXPECT_EQ(view.field->editor().getCaret().offset, 1u) << yDown << int(unit) << placement.angle;
                view.release(first);
                view.press(cIn, 2);
                EXPECT_EQ(view.field->editor().getSelectedText(), "two");
                view.move(gui::gl::MotionEvent::Kind::Dragged, first);
                EXPECT_EQ(view.field->editor().getSelectedText(), "one two");
                view.release(first);
                view.press(first);
                view.press(cIn, 1, cShift);
                EXPECT_EQ(view.field->editor().getSelection().begin, 1u);
                view.release(cIn);
                EXPECT_EQ(view.take(), "");
                view.press(placement.angle == 0 ? Point(150, 10) : Point(10, 150));
                EXPECT_EQ(view.take(), "commit one two three press");
            }

    NodeView view;
    gui::Clipboard::setText("other");
    ASSERT_TRUE(view.edit("name"));
    view.key('c', cCmd);
    EXPECT_EQ(gui::Clipboard::getText(), "name");
    view.key(cLeftKey);
    view.key('c', cCmd);
    view.key('v', cCmd);
    EXPECT_EQ(view.field->editor().getText(), "namename");
    view.key('a', cCmd);
    view.key('X', cCmd);
    EXPECT_EQ(gui::Clipboard::getText(), "namename");
    EXPECT_EQ(view.field->editor().getText(), "");
    view.key('z', cCmd);
    view.key(cDeleteKey);
    view.key('Z', cCmd | cShift);
    EXPECT_EQ(view.take(), "");
    view.key(cF5Key);
    view.key('s', cCmd);
    EXPECT_EQ(view.take(), "key key ");
    // What is typed is seen, whatever was pushed out of sight before.
    const Point before = view.getCenter();
    view.native().onWheel({0, -50, cShift, cIn});
    view.native().onWheel({50, 0, cShift, cIn});
    const Point away = view.getCenter();
    view.frame();
    EXPECT_TRUE(view.field->isEditing() && view.getCenter() == away && !(away == before));
    view.type("an end beyond the view's right edge, as far as ever");
    const double right = view.field->editor().getLayout().getSize().width / 2 + 150;
    EXPECT_NEAR(view.getViewPoint({right, 150}).x, cFieldView - 12, 1);
    view.setCenter(before);
    view.key('z', cCmd);
    EXPECT_EQ(view.getCenter(), before);
    using Button = gui::gl::ButtonEvent::Button;
    view.native().onButton({Button::Middle, true, false, 1, 0, cBeside});
    view.native().onButton({Button::Middle, false, false, 1, 0, cBeside});
    EXPECT_TRUE(view.field->isEditing());
    gui::Clipboard::setText("y\nz", gui::Clipboard::Kind::Selected);
    view.field->editor().setText("x");
    view.native().onButton({Button::Middle, true, false, 1, 0, {158, 150}});
    EXPECT_EQ(view.field->editor().getText(), "xy z");

    // A press in it has its release, whatever comes between; a view that takes text gets it again.
    view.press(cIn);
    view.key(cReturnKey);
    view.move(gui::gl::MotionEvent::Kind::Dragged, cBeside);
    view.release(cBeside);
    EXPECT_EQ(view.take(), "commit xy z");
    view.startTextInput();
    ASSERT_TRUE(view.edit());
    view.type("a");
    view.compose("b");
    view.field->cancel();
    view.type("c");
    EXPECT_EQ(view.take(), "canceltext c");
    view.drawing().setVisible(view.text, false);
    ASSERT_TRUE(view.edit());
    view.field->cancel();
    EXPECT_EQ(view.drawing().pick({150, 150}), view.ground) << "it was hidden before";
}

/// The largest difference of two pictures' channels.
int differenceOf(const gui::Texture& a, const gui::Texture& b)
{
    EXPECT_EQ(a.getWidth(), b.getWidth());
    const auto n = static_cast<std::size_t>(a.getWidth() * a.getHeight()) * a.getBytesPerPixel();
    int largest = 0;
    for (std::size_t i = 0; i < n; ++i)
        largest = std::max(largest, std::abs(int(a.getBytes()[i]) - int(b.getBytes()[i])));
    return largest;
}

// Letters that jump when editing begins or ends: by a row of pixels, for a plane far away or mirrored, a group that is
// scaled, an angle, a halo or frame; and what stays when it is over.
TEST(TextFieldTest, StandsWhereTheTextStood)
{
    const TextPlacement placements[] = {{.anchor = Anchor::Center},
                                        {.anchor = Anchor::Baseline, .offset = {3.3, -7.7}},
                                        {.anchor = Anchor::TopRight, .angle = 33},
                                        {.anchor = Anchor::Center, .frame = TextFrame{.width = 1}}};
    const TextStyle styles[] = {{.size = 13, .paint = "#ffffff"},
                                {.size = 31, .paint = "#ffd24a", .halo = {2, "#203040"}},
                                {.size = 11, .unit = Unit::Model, .paint = "#ffffff", .isUnderlined = true}};
    NodeView views[] = {NodeView(true), NodeView(false)};
    int nCases = 0;
    for (const TextPlacement& placement : placements)
        for (const TextStyle& style : styles)
        {
            NodeView& view = views[++nCases % 2];
            const double far = nCases % 3 == 0 ? 1e6 : 0;
            view.show(Affine::translation(far + 30, 20) * Affine::scaling(.8), style, placement);
            view.field->setStyle({.selectsAll = false, .caret = Paint()});
            for (const double zoom : {1.0, 1.37, 2.9})
            {
                view.setCenter({far + 151.3, 149.7}, zoom);
                const gui::Texture before = view.frame();
                ASSERT_TRUE(view.edit());
                // What translucent edges lose in a layer of their own.
                EXPECT_LE(differenceOf(before, view.frame()), 2) << nCases << ' ' << zoom;
                view.field->cancel();
                EXPECT_EQ(differenceOf(before, view.frame()), 0) << nCases << ' ' << zoom;
            }
        }
}

// A caret between two columns of pixels, or none at all; one that blinks for nobody, or asks for frames.
TEST(TextFieldTest, ACaretOfWholePixelsBlinks)
{
    char name[] = "test";
    char* arguments[] = {name};
    gui::Application app(1, arguments);
    NodeView view(true, {}, {.size = 20, .unit = Unit::Model, .paint = "#ffffff"});
    view.field->setStyle({.selectsAll = false, .selection = "#00ff00", .caret = "#ff0000"});
    ASSERT_TRUE(view.edit());
    for (const double zoom : {0.9, 1.0, 1.63})
    {
        view.setCenter({150.2, 150.1}, zoom);
        const gui::Texture picture = view.frame();
        std::vector<int> nRed(3);
        for (int i = 0; i < picture.getWidth() * picture.getHeight(); ++i)
        {
            const td::BYTE* const p = picture.getBytes() + picture.getBytesPerPixel() * static_cast<unsigned int>(i);
            if (p[0] > p[1] + 60)
                ++nRed[p[0] == 255 && p[1] == 0 ? 0 : 1];
        }
        EXPECT_GT(nRed[0], 15) << zoom;
        EXPECT_EQ(nRed[1], 0) << zoom;
    }
    const auto drawn = [&](double seconds)
    {
        app.step(0);
        const int before = view.nDraws;
        for (double now = 0; now < seconds; now += 0.1)
            app.step(0.1);
        return view.nDraws - before;
    };
    gui::Window window("Field", {cFieldView, cFieldView});
    window.show(view);
    view.field->editor().selectAll();
    view.key(cLeftKey);
    const int nBlinks = drawn(1.2);
    EXPECT_GE(nBlinks, 1);
    EXPECT_LE(nBlinks, 3);
    view.key('a', cCmd);
    EXPECT_LE(drawn(1.2), 1) << "nothing blinks in a selection";
}

} // namespace
