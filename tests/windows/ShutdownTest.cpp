#include "TestView.h"

#include "support/CapturedLog.h"

#include <gui/Application.h>
#include <gui/Window.h>
#include <gui/gl/Buffer.h>
#include <gui/gl/CurrentContext.h>

#include <epoxy/gl.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <stdexcept>

namespace
{

using test::TestView;

class Shutdown : public testing::Test
{
protected:
    test::CapturedLog log;
    std::optional<gui::Application> app{std::in_place, 0, nullptr};

    Shutdown() { log.take(); } // the window system in use
};

TEST_F(Shutdown, TheWindowGoesFirst)
{
    TestView view(td::ColorID::Red);
    view.inCleanUp = [] { EXPECT_NE(gui::gl::CurrentContext::getID(), 0U); };
    {
        gui::Window window("Window", {32, 32});
        window.show(view);
        app->step(0);
    }
    EXPECT_EQ(view.nCleanUps, 1);
    EXPECT_FALSE(app->step(0)) << "the last window is closed";
}

TEST_F(Shutdown, TheViewGoesFirst)
{
    gui::Window window("Window", {32, 32});
    {
        TestView view(td::ColorID::Red);
        window.show(view);
        app->step(0);
        EXPECT_TRUE(window.isOpen());
    }
    EXPECT_FALSE(window.isOpen());
    EXPECT_EQ(app->run(), 0);
}

TEST_F(Shutdown, TheApplicationGoesFirst)
{
    TestView view(td::ColorID::Red, true);
    gui::Window window("Window", {32, 32});
    window.show(view);
    app->step(0);
    app.reset();
}

TEST_F(Shutdown, FromInsideHandlers)
{
    auto view = std::make_unique<TestView>(td::ColorID::Red);
    auto window = std::make_unique<gui::Window>("Window", td::Size<double>{32, 32});
    window->show(*view);
    view->inDraw = [] { gui::Application::quit(7); };
    EXPECT_EQ(app->run(), 7);

    app.emplace(0, nullptr);
    log.take();
    view->inDraw = [&window] { window.reset(); };
    view->reRender();
    EXPECT_EQ(app->run(), 0);
    EXPECT_EQ(view->nCleanUps, 1);

    app.emplace(0, nullptr);
    log.take();
    view = std::make_unique<TestView>(td::ColorID::Red);
    view->inDraw = [&view]
    {
        const std::function<void()> keep = std::move(view->inDraw);
        view.reset();
    };
    view->reRender();
    app->step(0);
    EXPECT_EQ(view, nullptr);
}

TEST_F(Shutdown, ExceptionsLeaveTheLoopUsable)
{
    TestView view(td::ColorID::Red);
    gui::Window window("Window", {32, 32});
    window.show(view);
    view.inDraw = [] { throw std::runtime_error("draw"); };
    EXPECT_THROW(app->step(0), std::runtime_error);
    view.inDraw = nullptr;
    view.reRender();
    app->step(0);
    EXPECT_EQ(view.nDraws, 2);
}

class ThrowingView : public gui::gl::View
{
public:
    using View::createContext;

protected:
    void onInit() override { throw std::runtime_error("init"); }
    void cleanResources() override { ADD_FAILURE() << "there is nothing to clean up"; }
};

TEST_F(Shutdown, AnExceptionFromOnInitLeavesNoNativeView)
{
    using namespace gui::gl;
    ThrowingView view;
    EXPECT_THROW(
        view.createContext(Context(DepthBuffer::Size::None, StencilBuffer::Size::None, Context::Profile::Core41)),
        std::runtime_error);
    EXPECT_EQ(view.getHandle(), nullptr);
    EXPECT_EQ(CurrentContext::getID(), 0U);
}

// GL objects may outlive the view whose context made them: they must not delete a neighbour's of the same number.
TEST_F(Shutdown, ObjectsThatOutliveTheirViewLeaveOthersAlone)
{
    using namespace gui::gl;
    Buffer survivor;
    TestView other(td::ColorID::Red);
    {
        TestView view(td::ColorID::Blue);
        survivor.init(0, 1, 0, {DataType::Vec2});
        survivor.appendVertex({0, 0});
        ASSERT_TRUE(survivor.commit());
    }
    other.makeCurrentContext();
    Buffer neighbour;
    neighbour.init(0, 1, 0, {DataType::Vec2});
    neighbour.appendVertex({0, 0});
    ASSERT_TRUE(neighbour.commit());
    neighbour.activate();
    GLint vertexArray = 0;
    glGetIntegerv(GL_VERTEX_ARRAY_BINDING, &vertexArray);
    survivor.release();
    EXPECT_TRUE(glIsVertexArray(static_cast<GLuint>(vertexArray)));
    neighbour.deActivate();
}

} // namespace
