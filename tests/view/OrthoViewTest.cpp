#include "native/GLViewFixture.h"

#include <gui/gl/OrthoView.h>

#include <glm/vec4.hpp>

#include <cmath>
#include <functional>
#include <limits>

namespace
{

using gui::gl::ButtonEvent;
using gui::gl::GLView;
using gui::gl::MotionEvent;
using test::Journal;
using Point = td::Point<double>;
using Size = td::Size<double>;

constexpr double cNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double cInfinity = std::numeric_limits<double>::infinity();

class Plane : public gui::gl::OrthoView
{
public:
    explicit Plane(Journal& journal)
        : _journal(journal)
    {
    }

    using OrthoView::onKeyPressed;
    using OrthoView::onResize;
    using OrthoView::onScroll;
    using OrthoView::onZoom;

protected:
    void onZoomChanged() override { _journal.note("zoom"); }
    void onOriginChanged() override { _journal.note("origin"); }

private:
    Journal& _journal;
};

class OrthoViewTest : public test::GLViewFixture
{
protected:
    /// Lets a view enter a fake window of 800 by 600 points.
    GLView* show(Plane& view, bool isYDown)
    {
        // The fake surface takes the place of the one that the view makes for itself.
        if (isYDown)
            view.createContext(true);
        view.release();
        GLView* const pNative =
            GLView::createView(&view, nullptr, cAllEvents, GLViewFixture::context(), window.factory());
        window.size = {800, 600};
        pNative->enteredWindow();
        journal.take();
        return pNative;
    }

    /// Whether the projection is finite and shows at each view point the model point that the view says is there.
    static void expectThatProjectionAgrees(const Plane& view, const char* name)
    {
        for (const Point& point : {Point(0, 0), Point(800, 600), Point(123, 457)})
        {
            const Point model = view.getModelPoint(point);
            const glm::vec4 clip =
                view.getProjection() * glm::vec4(static_cast<float>(model.x), static_cast<float>(model.y), 0, 1);
            EXPECT_NEAR(clip.x, point.x / 400 - 1, 1e-4) << name;
            EXPECT_NEAR(clip.y, 1 - point.y / 300, 1e-4) << name;
        }
    }
};

using Act = std::function<void(GLView&)>;
using Lines = std::vector<std::string>;

void letGo(GLView& native) { native.onButton({ButtonEvent::Button::Left, false, false, 1, 0, {}}); }
Act press(const Point& point, unsigned int modifiers, unsigned short nClicks = 1)
{
    return [=](GLView& v) { v.onButton({ButtonEvent::Button::Left, true, true, nClicks, modifiers, point}); };
}
Act move(MotionEvent::Kind kind, const Point& point, unsigned int modifiers)
{
    return [=](GLView& v) { v.onMotion({kind, modifiers, point}); };
}
Act drag(const Point& from, const Point& to, unsigned int modifiers)
{
    return [=](GLView& v)
    {
        press(from, modifiers)(v);
        move(MotionEvent::Kind::Dragged, to, modifiers)(v);
    };
}
Act wheel(double dx, double dy, unsigned int modifiers, const Point& point = {})
{
    return [=](GLView& v) { v.onWheel({dx, dy, modifiers, point}); };
}
Act key(unsigned short character, unsigned int modifiers, bool isHandled)
{
    return [=](GLView& v) { EXPECT_EQ(v.onKey({true, 24, character, modifiers}), isHandled); };
}
void pinch(GLView& native) { native.onMagnification({5, 0}); }

TEST_F(OrthoViewTest, EventsMoveThePlane)
{
    constexpr double cFactor = 1.024; // of two wheel units
    const Lines nothing;
    const Lines scrolled{"needs display", "origin"};
    const Lines dragged{"cursor 3", "origin", "needs display"};
    const Lines zoomed{"zoom", "origin", "needs display", "zoom", "origin"};
    const struct
    {
        const char* name;
        double zoom;
        Act act;
        double newZoom;
        Point downwards; // the origin when y grows downwards; the point that stays where it is when zoomed
        Point upwards;
        const Lines& lines;
    } cases[] = {
        {"wheel", 1, wheel(3, 0, 0), 1, {-4.5, 0}, {-4.5, 0}, scrolled},
        {"wheel, enlarged", 4, wheel(0, 2, 0), 4, {0, -0.75}, {0, 0.75}, scrolled},
        {"drag with Shift", 2, drag({100, 50}, {140, 70}, 1), 2, {-20, -10}, {-20, 10}, dragged},
        {"drag without Shift", 2, drag({100, 50}, {140, 70}, 0), 2, {}, {}, nothing},
        {"wheel with Command", 1, wheel(0, 2, 16, {400, 150}), cFactor, {400, 150}, {400, 450}, zoomed},
        {"wheel with Command at the limit", 100, wheel(0, 2, 16, {400, 150}), 100, {}, {}, nothing},
        {"gesture", 2, pinch, 2.2, {200, 150}, {200, 150}, zoomed},
        {"Command-plus", 1, key('+', 17, true), 1.1, {400, 300}, {400, 300}, zoomed},
        {"Command-minus", 1.1, key('-', 16, true), 1, {400 / 1.1, 300 / 1.1}, {400 / 1.1, 300 / 1.1}, zoomed},
        {"another key", 1, key('a', 16, false), 1, {}, {}, nothing},
        {"plus alone", 1, key('+', 1, false), 1, {}, {}, nothing},
    };
    for (const bool isYDown : {true, false})
    {
        Plane view(journal);
        GLView* const pNative = show(view, isYDown);
        for (const auto& c : cases)
        {
            letGo(*pNative);
            view.setModelRefPoint({});
            view.setZoom(c.zoom);
            journal.take();
            c.act(*pNative);
            EXPECT_TRUE(journal.said(c.lines)) << c.name;
            EXPECT_NEAR(view.getZoom(), c.newZoom, 1e-12) << c.name;
            const Point& point = isYDown ? c.downwards : c.upwards;
            const double staying = &c.lines == &zoomed ? 1 - c.zoom / c.newZoom : 1;
            EXPECT_NEAR(view.getOrigin().x, point.x * staying, 1e-9) << c.name;
            EXPECT_NEAR(view.getOrigin().y, point.y * staying, 1e-9) << c.name;
            expectThatProjectionAgrees(view, c.name);
        }
        const gui::InputDevice device({1, 1}, {1, 1}, {1, 1}, 0, gui::InputDevice::Type::Mouse,
                                      gui::InputDevice::Button::Wheel);
        EXPECT_TRUE(view.onScroll(device)) << "or what holds the view would scroll as well";
    }
}

TEST_F(OrthoViewTest, ItsOwnContextTakesEveryKindOfEvent)
{
    Plane view(journal);
    view.createContext(false);
    auto& native = dynamic_cast<GLView&>(*view.getHandle());
    EXPECT_TRUE(native.acceptsFirstResponder());
    EXPECT_FALSE(view.isAnimated());
    journal.take();
    wheel(1, 0, 0)(native);
    drag({}, {5, 5}, 1)(native);
    EXPECT_TRUE(journal.said({"origin", "origin"}));
}

TEST_F(OrthoViewTest, TheCursorTellsOfAPan)
{
    const struct
    {
        const char* name;
        Act act;
    } ends[] = {
        {"release", letGo},
        {"double click", press({1, 1}, 0, 2)},
        {"exit", move(MotionEvent::Kind::Exited, {}, 0)},
        {"drag without Shift", drag({200, 200}, {300, 300}, 0)},
    };
    Plane view(journal);
    GLView* const pNative = show(view, true);
    for (const auto& end : ends)
    {
        press({10, 10}, 1)(*pNative);
        press({20, 20}, 1)(*pNative);
        EXPECT_TRUE(journal.said({"cursor 3"})) << end.name;
        end.act(*pNative);
        end.act(*pNative);
        EXPECT_TRUE(journal.said({"cursor 1"})) << end.name;
        EXPECT_EQ(view.getOrigin(), Point()) << end.name;
    }

    // A drag that finds Shift held goes on from the last press with Shift, in whichever view, with the cursor as it is.
    move(MotionEvent::Kind::Dragged, {25, 20}, 1)(*pNative);
    EXPECT_TRUE(journal.said({"origin", "needs display"}));
    EXPECT_EQ(view.getOrigin(), Point(-5, 0));
}

TEST_F(OrthoViewTest, LimitsHold)
{
    Plane view(journal);
    show(view, false);
    const struct
    {
        const char* name;
        std::function<void()> act;
        double zoom;
        Lines lines;
        std::size_t nLogged = 0;
    } steps[] = {
        {"above", [&] { view.setZoom(1000); }, 100, {"zoom", "origin"}},
        {"above again", [&] { view.setZoom(cInfinity); }, 100, {}},
        {"below", [&] { view.setZoom(0.001); }, 0.01, {"zoom", "origin"}},
        {"inverted limits", [&] { view.setZoomLimits(5, 1); }, 0.01, {}},
        {"limits of 0", [&] { view.setZoomLimits(0, 1); }, 0.01, {}, 1},
        {"limits below 0", [&] { view.setZoomLimits(-2, -1); }, 0.01, {}, 1},
        {"no limits", [&] { view.setZoomLimits(cNaN, 1); }, 0.01, {}, 1},
        {"no upper limit", [&] { view.setZoomLimits(1, cInfinity); }, 0.01, {}, 1},
        {"still the old limits", [&] { view.setZoom(-1); }, 0.01, {}},
        {"new limits wait for the next zoom", [&] { view.setZoomLimits(2, 3); }, 0.01, {}},
        {"no zoom", [&] { view.setZoom(cNaN); }, 0.01, {}},
        {"into the new limits", [&] { view.setZoom(0.01); }, 2, {"zoom", "origin"}},
    };
    for (const auto& step : steps)
    {
        step.act();
        EXPECT_EQ(view.getZoom(), step.zoom) << step.name;
        EXPECT_EQ(log.take().size(), step.nLogged) << step.name;
        EXPECT_TRUE(journal.said(step.lines)) << step.name;
        expectThatProjectionAgrees(view, step.name);
    }
}

// One number that is not finite in the matrix, or in the origin, and the picture is gone for good.
TEST_F(OrthoViewTest, NoNumberBreaksTheProjection)
{
    const auto zoomAbout = [](Plane& view, const Point& point, double scale)
    {
        gui::InputDevice device(point, point, point, 0, gui::InputDevice::Type::Gesture,
                                gui::InputDevice::Button::None);
        gui::InputDeviceHelper(&device).setScale(scale);
        EXPECT_TRUE(view.onZoom(device));
    };
    Plane view(journal);
    GLView* const pNative = show(view, false);
    const std::pair<const char*, std::function<void()>> cases[] = {
        {"empty size", [&] { view.onResize(Size(0, 600)); }},
        {"negative size", [&] { view.onResize(Size(800, -1)); }},
        {"no size", [&] { view.onResize(Size(cNaN, cInfinity)); }},
        {"no point", [&] { view.setModelRefPoint(Point(cNaN, 0)); }},
        {"point at infinity", [&] { view.setModelRefPoint(Point(0, -cInfinity)); }},
        {"no scroll", [&] { wheel(cNaN, 1, 0)(*pNative); }},
        {"endless scroll", [&] { wheel(0, 1e308, 8)(*pNative); }},
        {"no drag", [&] { drag({}, Point(1, cNaN), 1)(*pNative); }},
        {"no factor", [&] { zoomAbout(view, Point(1, 2), cNaN); }},
        {"zoom about no point", [&] { zoomAbout(view, Point(cNaN, 2), 2); }},
        {"zoom about infinity", [&] { zoomAbout(view, Point(1, cInfinity), 2); }},
        {"keyboard zoom without a size", [&] { view.onResize(Size(cNaN, cNaN)), key('+', 16, true)(*pNative); }},
    };
    for (const auto& [name, act] : cases)
    {
        const glm::mat4 before = view.getProjection();
        act();
        EXPECT_EQ(view.getProjection(), before) << name;
        EXPECT_EQ(view.getOrigin(), Point()) << name;
        EXPECT_EQ(view.getZoom(), 1) << name;
        view.onResize({800, 600});
        expectThatProjectionAgrees(view, name);
    }

    // Far out, where the view's edges are one float or none, the picture stands still, and the way back is open.
    for (const Point& far : {Point(1e11, 0), Point(0, -1e300)})
    {
        const glm::mat4 before = view.getProjection();
        view.setModelRefPoint(far);
        EXPECT_EQ(view.getOrigin(), far);
        EXPECT_EQ(view.getProjection(), before);
        view.setModelRefPoint({-3, 4});
        expectThatProjectionAgrees(view, "back again");
    }
    view.onResize({0, 0});
    view.setZoom(2);
    view.onResize({800, 600});
    expectThatProjectionAgrees(view, "zoomed without a size");
}

} // namespace
