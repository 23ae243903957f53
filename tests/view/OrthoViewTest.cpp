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

Act middle(bool isDown, const Point& point)
{
    return [=](GLView& v) { v.onButton({ButtonEvent::Button::Middle, isDown, false, 1, 0, point}); };
}
Act middleDrag(const Point& point)
{
    return [=](GLView& v) { v.onMotion({MotionEvent::Kind::OtherDragged, 0, point, ButtonEvent::Button::Middle}); };
}

TEST_F(OrthoViewTest, PlainBindingsNeedNoModifier)
{
    Plane view(journal);
    GLView* const pNative = show(view, true);
    const Lines panned{"origin", "needs display"};
    const Lines zoomed{"zoom", "origin", "needs display", "zoom", "origin"};
    // Without them the middle button does nothing, and with them nothing is left of a drag that began before.
    const auto dragsByMiddle = [&]
    {
        middle(true, {10, 10})(*pNative);
        middleDrag({30, 20})(*pNative);
        middle(false, {30, 20})(*pNative);
    };
    dragsByMiddle();
    EXPECT_TRUE(journal.said({}));
    view.setBindings(Plane::Bindings::Plain);
    move(MotionEvent::Kind::Dragged, {5, 5}, 0)(*pNative);
    EXPECT_TRUE(journal.said({}));

    const struct
    {
        const char* name;
        Act act;
        Point origin;
        Lines lines;
    } steps[] = {
        {"press", press({100, 50}, 0), {}, {}},
        {"drag", move(MotionEvent::Kind::Dragged, {140, 70}, 0), {-40, -20}, {"cursor 3", "origin", "needs display"}},
        {"on", move(MotionEvent::Kind::Dragged, {90, 70}, 0), {10, -20}, panned},
        {"release", letGo, {10, -20}, {"cursor 1"}},
        {"no drag", move(MotionEvent::Kind::Dragged, {1, 1}, 0), {10, -20}, {}},
        {"double click", press({0, 0}, 0, 2), {10, -20}, {}},
        {"and drag", move(MotionEvent::Kind::Dragged, {10, 0}, 0), {0, -20}, {"cursor 3", "origin", "needs display"}},
        {"out", move(MotionEvent::Kind::Exited, {}, 0), {0, -20}, {"cursor 1"}},
        {"middle", middle(true, {0, 0}), {0, -20}, {}},
        {"middle drag", middleDrag({0, -20}), {0, 0}, {"cursor 3", "origin", "needs display"}},
        {"goes on outside", move(MotionEvent::Kind::Exited, {}, 0), {0, 0}, {}},
        {"there", middleDrag({-5, -20}), {5, 0}, panned},
        {"middle release", middle(false, {}), {5, 0}, {"cursor 1"}},
        {"wheel with Shift", wheel(0, 2, 1, {7, 7}), {5, -3}, {"needs display", "origin"}},
        {"wheel to the side", wheel(2, 0, 0, {7, 7}), {2, -3}, {"needs display", "origin"}},
        {"no wheel", wheel(0, cNaN, 0, {7, 7}), {2, -3}, {}},
    };
    for (const auto& step : steps)
    {
        step.act(*pNative);
        EXPECT_TRUE(journal.said(step.lines)) << step.name;
        EXPECT_EQ(view.getOrigin(), step.origin) << step.name;
    }
    // In the midst of a drag too, and the plane stays under the pointer.
    press({100, 100}, 0)(*pNative);
    const Point held = view.getModelPoint({100, 100});
    move(MotionEvent::Kind::Dragged, {200, 100}, 0)(*pNative);
    wheel(0, 20, 0, {200, 100})(*pNative);
    move(MotionEvent::Kind::Dragged, {200, 150}, 0)(*pNative);
    EXPECT_NEAR(view.getViewPoint(held).x, 200, 1e-9);
    EXPECT_NEAR(view.getViewPoint(held).y, 150, 1e-9);
    const Point staying = view.getModelPoint({400, 150});
    for (const auto& [modifiers, factor] : {std::pair(0U, 1.024), {16U, 1.024}, {8U, 1.12}})
    {
        view.setZoom(1);
        journal.take();
        wheel(0, 2, modifiers, view.getViewPoint(staying))(*pNative);
        EXPECT_TRUE(journal.said(zoomed));
        EXPECT_NEAR(view.getZoom(), factor, 1e-12);
        EXPECT_NEAR(view.getModelPoint(view.getViewPoint(staying)).x, staying.x, 1e-9);
        expectThatProjectionAgrees(view, "wheel");
    }
}

// Far from the model's origin and at both ends of the zoom, where float has long given up.
TEST_F(OrthoViewTest, PointsAndDistancesHoldFarOut)
{
    for (const bool isYDown : {true, false})
    {
        Plane view(journal);
        GLView* const pNative = show(view, isYDown);
        view.setZoomLimits(1e-6, 1e6);
        view.setBindings(Plane::Bindings::Plain);
        for (const double zoom : {1e-6, 1.0, 1e6})
        {
            const Point base(1e7, -1e7);
            view.setModelRefPoint(base);
            view.setZoom(zoom);
            for (const Point& point : {Point(0, 0), Point(800, 600), Point(123, 457)})
            {
                const Point model = view.getModelPoint(point);
                const Point back = view.getViewPoint(model);
                EXPECT_NEAR(back.x, point.x, 0.01);
                EXPECT_NEAR(back.y, point.y, 0.01);
                const glm::vec4 clip = view.getProjection(base) * glm::vec4(static_cast<float>(model.x - base.x),
                                                                            static_cast<float>(model.y - base.y), 0, 1);
                EXPECT_NEAR(clip.x, point.x / 400 - 1, 1e-4) << zoom;
                EXPECT_NEAR(clip.y, 1 - point.y / 300, 1e-4) << zoom;
            }
            // What is dragged stays under the pointer.
            const Point grabbed = view.getModelPoint({100, 100});
            drag({100, 100}, {300, 200}, 0)(*pNative);
            letGo(*pNative);
            EXPECT_NEAR(view.getViewPoint(grabbed).x, 300, 0.01) << zoom;
            EXPECT_NEAR(view.getViewPoint(grabbed).y, 200, 0.01) << zoom;
        }
    }
}

TEST_F(OrthoViewTest, FitShowsTheWholeInTheMiddle)
{
    const td::RectNormalized<double> model(100, 40, 300, 80);
    const struct
    {
        const char* name;
        td::RectNormalized<double> model;
        double margin;
        double zoom;   // 0 when it is refused
        Point topLeft; // where the rectangle's low corner comes to be, from the view's upper or lower left corner
    } cases[] = {
        {"wide", model, 0, 4, {0, 220}},
        {"margin", model, 100, 3, {100, 240}},
        {"tall", {0, 0, 1, 60}, 0, 10, {395, 0}},
        {"beyond the limits", {0, 0, 1, 1}, 0, 100, {350, 250}},
        {"a line", {5, 5, 5, 65}, 0, 10, {400, 0}},
        {"a point", {5, 6, 5, 6}, 0, 2, {400, 300}},
        {"no room", model, 300, 0, {}},
        {"no rectangle", {0, cNaN, 1, 1}, 0, 0, {}},
        {"no margin", model, cInfinity, 0, {}},
        {"endless", {-1e308, -1e308, 1e308, 1e308}, 0, 0.01, {}},
    };
    for (const bool isYDown : {true, false})
    {
        Plane view(journal);
        show(view, isYDown);
        for (const auto& c : cases)
        {
            view.setZoom(2);
            view.setModelRefPoint({1, 2});
            journal.take();
            EXPECT_EQ(view.fit(c.model, c.margin), c.zoom != 0) << c.name;
            EXPECT_EQ(view.getZoom(), c.zoom == 0 ? 2 : c.zoom) << c.name;
            const Lines lines = journal.take();
            EXPECT_EQ(lines.size(), c.zoom == 0 ? 0u : c.zoom == 2 ? 2u : 3u) << c.name;
            if (c.zoom == 0 || c.zoom < 1)
                continue;
            const Point corner = view.getViewPoint({c.model.left, c.model.top});
            EXPECT_NEAR(corner.x, c.topLeft.x, 1e-9) << c.name;
            EXPECT_NEAR(isYDown ? corner.y : 600 - corner.y, c.topLeft.y, 1e-9) << c.name;
            expectThatProjectionAgrees(view, c.name);
        }
        // Without a size it waits for one.
        view.onResize({0, 0});
        EXPECT_TRUE(view.fit({0, 0, 7, 7}) && view.fit(model));
        view.onResize({400, 400});
        EXPECT_EQ(view.getZoom(), 2);
        view.setZoom(3);
        view.onResize({800, 600});
        EXPECT_EQ(view.getZoom(), 3);
    }
}

// Over a long way it goes out first, and it ends where fit does.
TEST_F(OrthoViewTest, FlightsEndWhereFitDoes)
{
    Plane view(journal);
    GLView* const pNative = show(view, true);
    const td::RectNormalized<double> here(0, 0, 80, 60), there(5000, 3000, 5080, 3060);
    ASSERT_TRUE(view.fit(here) && view.flyTo(there, 20, 0.5));
    double leastZoom = view.getZoom();
    double x = view.getCenter().x;
    for (; view.isFlying(); pNative->onFrameTick())
    {
        leastZoom = std::min(leastZoom, view.getZoom());
        EXPECT_GE(view.getCenter().x, x);
        x = view.getCenter().x;
    }
    EXPECT_LT(leastZoom, 1);
    EXPECT_FALSE(view.isAnimated());
    const Point origin = view.getOrigin();
    const double zoom = view.getZoom();
    ASSERT_TRUE(view.fit(there, 20));
    EXPECT_EQ(view.getOrigin(), origin);
    EXPECT_EQ(view.getZoom(), zoom);

    // Whoever moves the plane ends it.
    ASSERT_TRUE(view.flyTo(here));
    pNative->onFrameTick();
    view.setZoom(3);
    pNative->onFrameTick();
    EXPECT_FALSE(view.isFlying());
    EXPECT_EQ(view.getZoom(), 3);
    EXPECT_FALSE(view.flyTo(here, 500)) << "no room";
    EXPECT_FALSE(view.flyTo({0, 0, cNaN, 1}));
}

TEST_F(OrthoViewTest, HomeIsFittedUntilSomebodyMoves)
{
    using Virtual = gui::Key::Virtual;
    const auto virtualKey = [](Virtual code) { return gui::Key(0, 0, 1, static_cast<unsigned char>(code)); };
    Plane view(journal);
    show(view, false);
    EXPECT_FALSE(view.goHome() || view.isAtHome());
    EXPECT_FALSE(view.moveByKey(gui::Key('0', 0, 1, 0)));
    EXPECT_TRUE(view.setHome({0, 0, 80, 60}, 50));
    EXPECT_FALSE(view.setHome({0, cNaN, 80, 60}) || view.setHome({0, 0, 80, 60}, 400));
    view.onResize({500, 500});
    EXPECT_EQ(view.getZoom(), 5);
    EXPECT_EQ(view.getCenter(), Point(40, 30));
    view.onResize({0, 0});
    view.onResize({900, 900});
    EXPECT_EQ(view.getZoom(), 10);

    const struct
    {
        gui::Key key;
        double zoom;
        Point center;
    } keys[] = {
        {gui::Key('=', 0, 1, 0), 11, {40, 30}},    {virtualKey(Virtual::KeypadMinus), 10, {40, 30}},
        {virtualKey(Virtual::Left), 10, {34, 30}}, {virtualKey(Virtual::Up), 10, {34, 36}},
        {virtualKey(Virtual::Home), 10, {40, 30}}, {virtualKey(Virtual::Right), 10, {46, 30}},
        {virtualKey(Virtual::Down), 10, {46, 24}},
    };
    for (const auto& c : keys)
    {
        EXPECT_TRUE(view.moveByKey(c.key));
        EXPECT_NEAR(view.getZoom(), c.zoom, 1e-9);
        EXPECT_NEAR(view.getCenter().x, c.center.x, 1e-9);
        EXPECT_NEAR(view.getCenter().y, c.center.y, 1e-9);
    }
    EXPECT_FALSE(view.isAtHome() || view.moveByKey(gui::Key('x', 0, 1, 0)));
    view.onResize({500, 500});
    EXPECT_EQ(view.getZoom(), 10) << "moved, so no longer at home";

    Plane yDown(journal);
    show(yDown, true);
    yDown.setCenter({0, 0});
    yDown.moveByKey(virtualKey(Virtual::Up));
    EXPECT_EQ(yDown.getCenter().y, -60);
}

TEST_F(OrthoViewTest, NothingGoesBeyondThePlanesLimits)
{
    Plane view(journal);
    GLView* const pNative = show(view, true);
    view.setModelRefPoint({-50, 10});
    journal.take();
    view.setPlaneLimits({0, 0, 1000, cInfinity});
    EXPECT_FALSE(view.getPlaneLimits());
    view.setPlaneLimits({0, 0, 1000, 500}); // less high than the view
    EXPECT_TRUE(journal.said({"origin", "needs display"}));
    const std::pair<Act, Point> steps[] = {
        {[](GLView&) {}, {0, -50}},
        {drag({100, 50}, {140, 70}, 1), {0, -50}},
        {drag({100, 50}, {0, 10}, 1), {100, -50}},
        {wheel(-1000, 1000, 0), {200, -50}},
        {[&](GLView&) {
             view.setModelRefPoint({1e9, 0});
         },
         {200, -50}},
        {[&](GLView&) { view.setZoom(2); }, {200, 0}},
        {[&](GLView&) {
             view.setModelRefPoint({1e9, 1e9});
         },
         {600, 200}},
        {wheel(0, -50, 16, {0, 0}), {1000 - 800 / 0.8, -125}}, // about a corner: 2 * 0.4
        {[&](GLView&) {
             view.fit({0, 0, 1, 1});
         },
         {0, 0}},
        {[&](GLView&) {
             view.setZoom(1), view.onResize({2000, 100});
         },
         {-500, 0}},
        {[&](GLView&) {
             view.removePlaneLimits(), view.setModelRefPoint({-7, -8});
         },
         {-7, -8}},
        {[&](GLView&) {
             view.onResize({800, 600}), view.setPlaneLimits({0, 0, 1000, 500}, 60), view.setModelRefPoint({-1e9, 1e9});
         },
         {60 - 800, 500 - 60}}, // so much stays in sight
        {[&](GLView&) {
             view.setCenter({10, 20});
         },
         {10 - 400, 20 - 300}},
        {[&](GLView&) { view.zoomBy(2); }, {10 - 200, 20 - 150}},
    };
    for (const auto& [act, origin] : steps)
    {
        act(*pNative);
        letGo(*pNative);
        EXPECT_NEAR(view.getOrigin().x, origin.x, 1e-9) << &act - &steps[0].first;
        EXPECT_NEAR(view.getOrigin().y, origin.y, 1e-9) << &act - &steps[0].first;
    }
    EXPECT_EQ(view.getCenter(), Point(10, 20));
    EXPECT_EQ(view.getVisible(), (td::RectNormalized<double>{-190, -130, 210, 170}));
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
    letGo(*pNative);
    // Other bindings end what the old ones began.
    press({10, 10}, 1)(*pNative);
    view.setBindings(Plane::Bindings::Plain);
    EXPECT_TRUE(journal.said({"cursor 3", "cursor 1"}));
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
    view.setModelRefPoint({1, 2});
    EXPECT_TRUE(journal.said({"origin", "needs display"}));
    view.setModelRefPoint({cNaN, 2});
    EXPECT_TRUE(journal.said({}));
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
