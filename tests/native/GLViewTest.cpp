#include "GLViewFixture.h"

#include "toolkit/src/AsyncQueue.h"

#include <gui/Texture.h>

#include <epoxy/gl.h>

#include <cstdlib>
#include <functional>
#include <memory>
#include <stdexcept>

namespace
{

using gui::gl::GLView;
using test::RecordingView;
using Lines = std::vector<std::string>;

class GLViewTest : public test::GLViewFixture
{
protected:
    ~GLViewTest() override { EXPECT_TRUE(gui::AsyncQueue::instance().isEmpty()); }
};

// What onInit may rely on: its handle, the current context, the viewport, the window's framebuffer.
TEST_F(GLViewTest, TheViewIsCompleteInOnInit)
{
    window.scale = 2;
    window.framebuffer = 5;
    RecordingView view(window);
    view.in["onInit"] = [&]
    {
        view.activateScreenFB();
        view.reRender();
        td::Size<double> size;
        view.getSize(size);
        EXPECT_EQ(size, (td::Size<double>(400, 200)));
        EXPECT_TRUE(view.isAnimated());
        EXPECT_EQ(view.getOpenGLVersion(), std::make_tuple(4, 5));
    };
    const td::PointAndSize<double> geometry(10, 20, 400, 200);
    EXPECT_EQ(view.getOpenGLVersion(), std::make_tuple(0, 0));
    trace.setLimit(GL_MAJOR_VERSION, 4);
    trace.setLimit(GL_MINOR_VERSION, 5);
    GLView* const pNative = GLView::createView(&view, &geometry, 0, context(true), window.factory());
    ASSERT_NE(pNative, nullptr);
    std::vector<std::string> lines = journal.take();
    lines.resize(4); // GL's state is looked at then
    EXPECT_EQ(lines, (std::vector<std::string>{"glViewport(0, 0, 800, 400)", "onInit", "glBindFramebuffer(0x8d40, 5)",
                                               "needs display"}));
    EXPECT_FALSE(pNative->hasFrameClock());

    RecordingView plain(window);
    GLView::createView(&plain, nullptr, 0, context(), window.factory());
    EXPECT_EQ(window.size, (td::Size<double>(300, 300)));
    EXPECT_FALSE(plain.isAnimated());
}

TEST_F(GLViewTest, ErrorsOfGLAreTheApplicationsUnlessDebugged)
{
    RecordingView plain(window), view(window);
    trace.setErrors({GL_INVALID_OPERATION});
    create(plain)->drawNow();
    EXPECT_EQ(glGetError(), unsigned(GL_INVALID_OPERATION)) << "an application that asks later";
    plain.release();

    setenv("GUIGL_GL_DEBUG", "1", 1);
    const auto makeSurface = [this](auto&... arguments)
    {
        unsetenv("GUIGL_GL_DEBUG"); // it is asked for once
        return window.factory()(arguments...);
    };
    GLView* const pNative = GLView::createView(&view, nullptr, 0, context(), makeSurface);
    trace.setErrors({GL_INVALID_ENUM, GL_INVALID_ENUM, GL_OUT_OF_MEMORY});
    pNative->drawNow();
    EXPECT_EQ(log.take(), (Lines{"ERROR! GLView onDraw left OpenGL error 500",
                                 "ERROR! GLView onDraw left OpenGL error 505 (out of memory)"}));
    trace.setErrors({GL_INVALID_VALUE, GL_INVALID_ENUM});
    pNative->drawNow();
    EXPECT_TRUE(log.said("ERROR! GLView onDraw left OpenGL error 501"));
    journal.take();
}

// Neither a refusing system nor an exception leaves a surface, a handle or a view that cannot be made a second time.
TEST_F(GLViewTest, CreationThatFailsLeavesNothing)
{
    RecordingView view(window);
    const auto make = [&] { return GLView::createView(&view, nullptr, 0, context(), window.factory()); };
    window.hasContext = false;
    EXPECT_EQ(make(), nullptr);
    EXPECT_EQ(view.getHandle(), nullptr);
    view.reRender();
    view.makeCurrentContext();
    EXPECT_TRUE(journal.said({}));

    window.hasContext = true;
    view.in["onInit"] = [] { throw std::runtime_error("no such shader"); };
    EXPECT_THROW(make(), std::runtime_error);
    EXPECT_EQ(view.getHandle(), nullptr);
    EXPECT_TRUE(journal.said({"glViewport(0, 0, 300, 300)", "onInit", "surface gone"}));
    EXPECT_EQ(gui::gl::CurrentContext::getID(), 0u);

    view.in["onInit"] = [&] { view.release(); };
    EXPECT_EQ(make(), nullptr);
    EXPECT_EQ(view.getHandle(), nullptr);
    EXPECT_FALSE(window.hasSurface);

    view.in.clear();
    EXPECT_NE(make(), nullptr);
    view.release();

    // The end of the view inside its own onInit, quietly and with an exception.
    for (const bool throws : {false, true})
    {
        auto pView = std::make_unique<RecordingView>(window);
        pView->in["onInit"] = [&]
        {
            pView.reset();
            if (throws)
                throw std::runtime_error("too late");
        };
        RecordingView* const pMade = pView.get();
        try
        {
            EXPECT_EQ(GLView::createView(pMade, nullptr, 0, context(), window.factory()), nullptr);
            EXPECT_FALSE(throws);
        }
        catch (const std::runtime_error&)
        {
            EXPECT_TRUE(throws);
        }
        EXPECT_FALSE(window.hasSurface);
    }
}

TEST_F(GLViewTest, EnteringAWindowTellsScaleAndSize)
{
    RecordingView view(window);
    GLView* const pNative = create(view);
    window.size = {200, 100};
    window.scale = 2;
    view.in["onResize"] = [&] { EXPECT_EQ(view.getPixelHiDPIScale(), 2); };
    pNative->enteredWindow();
    EXPECT_TRUE(journal.said(
        {"glViewport(0, 0, 400, 200)", "onGeometryChange 0 0 200 100", "onResize 200 100", "needs display"}));
    EXPECT_EQ(view.getPixelHiDPISizeScale(), 2);

    // The window system may report one change several times.
    pNative->sizeChanged();
    pNative->scaleChanged();
    EXPECT_TRUE(journal.said({}));
    window.size = {50, 60};
    pNative->sizeChanged();
    pNative->sizeChanged();
    EXPECT_TRUE(
        journal.said({"glViewport(0, 0, 100, 120)", "onGeometryChange 0 0 50 60", "onResize 50 60", "needs display"}));

    // Another display: the same size in points, other pixels.
    window.scale = 1;
    view.in["onResize"] = [&] { EXPECT_EQ(view.getPixelHiDPIScale(), 1); };
    pNative->sizeChanged();
    pNative->scaleChanged();
    pNative->scaleChanged();
    EXPECT_TRUE(journal.said({"glViewport(0, 0, 50, 60)", "needs display", "onResize 50 60", "needs display"}));
    EXPECT_EQ(view.getPixelHiDPISizeScale(), 1);

    window.size = {70, 80};
    window.scale = 3;
    view.in.clear();
    pNative->scaleChanged();
    pNative->sizeChanged();
    EXPECT_TRUE(
        journal.said({"glViewport(0, 0, 210, 240)", "onGeometryChange 0 0 70 80", "onResize 70 80", "needs display"}));
}

TEST_F(GLViewTest, ADrawSetsNothingButTheFramebuffersName)
{
    RecordingView view(window);
    GLView* const pNative = show(view);
    pNative->drawNow();
    EXPECT_TRUE(journal.said({"onDraw 0 0 200 100", "flush"}));

    // A host's framebuffer: the name that the view binds is this frame's.
    view.in["onDraw"] = [&] { view.activateScreenFB(); };
    for (const unsigned int name : {7u, 7u, 0u, 12u})
    {
        window.framebuffer = name;
        pNative->drawNow();
        EXPECT_TRUE(
            journal.said({"onDraw 0 0 200 100", "glBindFramebuffer(0x8d40, " + std::to_string(name) + ")", "flush"}));
    }

    // Asked for in the draw: one more, and never one inside the other.
    view.in["onDraw"] = [&]
    {
        view.reRender();
        view.reDraw();
    };
    pNative->drawNow();
    EXPECT_TRUE(journal.said({"onDraw 0 0 200 100", "needs display", "needs display", "flush"}));
    view.in["onDraw"] = [&]
    {
        pNative->drawNow();
        pNative->onFrameTick();
    };
    pNative->drawNow();
    EXPECT_TRUE(journal.said({"onDraw 0 0 200 100", "needs display", "needs display", "flush"}));
}

TEST_F(GLViewTest, NothingIsDrawnIntoNothing)
{
    auto pView = std::make_unique<RecordingView>(window);
    GLView* const pNative = show(*pView);
    for (const td::Size<double> size : {td::Size<double>(0, 100), td::Size<double>(100, 0)})
    {
        window.size = size;
        pNative->drawNow();
        pNative->onFrameTick();
    }
    window.size = {100, 100};
    window.hasContext = false;
    pNative->drawNow();
    EXPECT_TRUE(journal.said({}));
    window.hasContext = true;

    pNative->cleanResources();
    EXPECT_TRUE(journal.said({"cleanResources"}));
    pView->reRender();
    pView->reDraw();
    pNative->drawNow();
    pNative->onFrameTick();
    pNative->enteredWindow();
    pNative->sizeChanged();
    pNative->scaleChanged();
    pNative->cleanResources();
    EXPECT_TRUE(journal.said({}));
}

// A view that is made, or goes, inside another one's draw takes the current context with it: the frame must still be
// read and presented in its own.
TEST_F(GLViewTest, AFrameEndsInTheContextItBeganIn)
{
    test::FakeWindow other(journal);
    RecordingView view(window);
    GLView* const pNative = show(view);
    std::unique_ptr<RecordingView> pGuest;
    view.in["onDraw"] = [&]
    {
        pGuest = std::make_unique<RecordingView>(other);
        GLView::createView(pGuest.get(), nullptr, 0, context(), other.factory());
    };
    pNative->drawNow();
    EXPECT_TRUE(journal.said({"onDraw 0 0 200 100", "glViewport(0, 0, 300, 300)", "onInit", "flush"}));
    view.in["onDraw"] = [&] { pGuest.reset(); };
    pNative->drawNow();
    EXPECT_TRUE(journal.said({"onDraw 0 0 200 100", "surface gone", "flush"}));
}

TEST_F(GLViewTest, AnExceptionInADrawEndsThatFrameOnly)
{
    auto pView = std::make_unique<RecordingView>(window);
    GLView* const pNative = show(*pView, cAllEvents, true);
    gui::Texture texture;
    int nDelivered = 0;
    pView->readFrameFrameBuffer(texture, [&] { ++nDelivered; });
    for (const char* const callback : {"prepareNextFrame", "onDraw"})
    {
        pView->in[callback] = [] { throw std::runtime_error("drawn badly"); };
        EXPECT_THROW(pNative->onFrameTick(), std::runtime_error);
        pView->in.clear();
    }
    EXPECT_TRUE(pNative->hasFrameClock());
    journal.take();
    pNative->onFrameTick();
    EXPECT_TRUE(journal.said(
        {"prepareNextFrame", "onDraw 0 0 200 100", "glReadPixels(0, 0, 200, 100, 0x1908, 0x1401, ptr)", "flush"}));
    gui::AsyncQueue::instance().runPending();
    EXPECT_EQ(nDelivered, 1);
    pView.reset();
    EXPECT_FALSE(window.hasSurface);
}

TEST_F(GLViewTest, AGrabReadsOneFrameAndReplacesOneThatIsNotReadYet)
{
    window.scale = 2; // the main display's is 1
    RecordingView view(window);
    GLView* const pNative = show(view);
    std::string delivered;
    gui::Texture first, second;
    view.readFrameFrameBuffer(first, [&] { delivered += "first "; });
    EXPECT_TRUE(journal.said({"needs display"}));
    window.size = {20, 10};
    view.readFrameFrameBuffer(second, [&] { delivered += "second "; });
    journal.take();
    pNative->drawNow();
    EXPECT_TRUE(journal.said({"onDraw 0 0 20 10", "glReadPixels(0, 0, 40, 20, 0x1908, 0x1401, ptr)", "flush"}));
    EXPECT_EQ(delivered, "");
    pNative->drawNow();
    EXPECT_TRUE(journal.said({"onDraw 0 0 20 10", "flush"}));
    gui::AsyncQueue::instance().runPending();
    EXPECT_EQ(delivered, "second ");

    // One that was read already is delivered all the same.
    view.readFrameFrameBuffer(first, [&] { delivered += "third "; });
    pNative->drawNow();
    view.readFrameFrameBuffer(second, [&] { delivered += "fourth "; });
    gui::AsyncQueue::instance().runPending();
    EXPECT_EQ(delivered, "second third ");
    pNative->drawNow();
    gui::AsyncQueue::instance().runPending();
    EXPECT_EQ(delivered, "second third fourth ");
}

// The application loads three bytes per pixel into the image that waits for four.
TEST_F(GLViewTest, AGrabNeverWritesPastItsImage)
{
    RecordingView view(window);
    GLView* const pNative = show(view);
    gui::Texture texture;
    view.readFrameFrameBuffer(texture, [] { FAIL() << "no frame was read"; });
    gui::TextureHelper(&texture).updateInfo(200, 100, 3);
    journal.take();
    pNative->drawNow();
    EXPECT_TRUE(asserts.caught("pTexture->getBytesPerPixel() == cBytesPerPixel"));
    pNative->drawNow();
    EXPECT_TRUE(journal.said({"onDraw 0 0 200 100", "flush", "onDraw 0 0 200 100", "flush"}));
    gui::AsyncQueue::instance().runPending();
}

// The callback usually belongs to the object that owns the view.
TEST_F(GLViewTest, AGrabIsDroppedWithItsView)
{
    for (const bool isRead : {false, true})
    {
        auto pView = std::make_unique<RecordingView>(window);
        GLView* const pNative = show(*pView);
        gui::Texture texture;
        const auto guard = std::make_shared<int>();
        pView->readFrameFrameBuffer(texture, [guard] { FAIL() << "nobody is there to take it"; });
        if (isRead)
            pNative->drawNow();
        pView.reset();
        gui::AsyncQueue::instance().runPending();
        EXPECT_EQ(guard.use_count(), 1);
    }
}

TEST_F(GLViewTest, CleansUpOnceWhoeverGoesFirst)
{
    auto pView = std::make_unique<RecordingView>(window);
    show(*pView, cAllEvents, true);
    pView.reset(); // its overrides are gone by then
    EXPECT_TRUE(journal.said({"clock stops", "surface gone"}));

    pView = std::make_unique<RecordingView>(window);
    GLView* pNative = show(*pView, cAllEvents, true);
    test::FakeWindow other(journal);
    RecordingView neighbour(other);
    GLView::createView(&neighbour, nullptr, 0, context(), other.factory());
    journal.take();
    pNative->leftWindow();
    pNative->windowClosed();
    EXPECT_TRUE(journal.said({"clock stops", "cleanResources", "surface gone"}));
    pNative->windowClosed();
    pNative->drawNow();
    pView->startAnimation();
    pView->setCursor(gui::Cursor::Type::Pan, true);
    pView->makeCurrentContext();
    EXPECT_EQ(pView->getOpenGLVersion(), std::make_tuple(0, 0));
    pView.reset();
    EXPECT_TRUE(journal.said({}));

    // The application lets go of the native view alone.
    RecordingView released(window);
    show(released);
    for (const Lines& lines : {Lines{"cleanResources", "surface gone"}, Lines{}})
    {
        released.release();
        released.reDraw();
        EXPECT_TRUE(journal.said(lines));
    }
    td::Size<double> size(1, 1);
    released.getSize(size);
    EXPECT_EQ(size, td::Size<double>());

    auto* const pOwned = new RecordingView(window);
    show(*pOwned);
    static_cast<gui::ZavObject*>(pOwned)->destroy();
    EXPECT_TRUE(journal.said({"surface gone"}));
}

} // namespace
