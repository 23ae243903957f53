// Every scene of the gallery in the hands of a driver that refuses, and of one that loses the context.

#include "SlowScenes.h"

#include "support/CapturedLog.h"
#include "support/GLTrace.h"
#include "support/Pinning.h"
#include "support/Thorough.h"

#include <gallery/Scenes.h>
#include <gallery/Stage.h>

#include <gui/Application.h>
#include <gui/gl/CurrentContext.h>
#include <gui/gl/View.h>
#include <td/Assert.h>

#include <epoxy/egl.h>
#include <epoxy/gl.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace
{

using gallery::SceneInfo;

constexpr int cWidth = 120, cHeight = 75;

// How many refusals each scene meets.
constexpr int cTries = test::cIsThorough ? 2 : 1;

/// A scene in a view, as the gallery shows it, at a moment that stays.
class SceneView : public gui::gl::View, private gallery::Stage
{
public:
    explicit SceneView(const SceneInfo& info)
        : _info(info)
    {
    }
    ~SceneView() override { end(); }

    void create()
    {
        using namespace gui::gl;
        const td::PointAndSize<double> geometry({0, 0}, {cWidth, cHeight});
        createContext(Context(DepthBuffer::Size::Bits24, StencilBuffer::Size::Bits8, Context::Profile::Core41), {},
                      &geometry);
    }
    void end()
    {
        makeCurrentContext();
        _pScene.reset();
    }

    bool isShown() const { return _pScene != nullptr; }

    int nDraws = 0;

protected:
    void onInit() override
    {
        std::unique_ptr<gallery::Scene> pScene = _info.make();
        if (!pScene->init())
            return;
        _pScene = std::move(pScene);
        _pScene->enter(*this);
    }
    void onDraw(const td::RectNormalized<double>&) override
    {
        ++nDraws;
        if (_pScene != nullptr)
            _pScene->draw({{cWidth, cHeight}, 1, 2});
    }
    void cleanResources() override { _pScene.reset(); }

private:
    void redraw() override {}
    void grab(gui::Texture& image, const std::function<void()>& callback) override
    {
        readFrameFrameBuffer(image, callback);
    }
    double getSeconds() const override { return 2; }
    void toggleTime() override {}
    void setCursor(gui::Cursor::Type) override {}
    void setNote(const std::string&) override {}

    const SceneInfo& _info;
    std::unique_ptr<gallery::Scene> _pScene;
};

EGLBoolean refuseCurrent(EGLDisplay, EGLSurface, EGLSurface, EGLContext) { return EGL_FALSE; }
EGLContext refuseContext(EGLDisplay, EGLConfig, EGLContext, const EGLint*) { return EGL_NO_CONTEXT; }

class Refusal : public testing::Test
{
protected:
    Refusal()
    {
        log.take(); // the window system in use
        // Memory that a driver does not have is told by its errors alone, and those by this.
        setenv("GUIGL_GL_DEBUG", "1", 1);
        td::setAssertHandler([this](const td::AssertReport& report) { asserts.emplace_back(report.condition); });
    }
    ~Refusal() override
    {
        EXPECT_TRUE(asserts.empty()) << asserts.front();
        td::setAssertHandler({});
    }

    /// Draws two frames. @return the second one's pixels
    std::string draw(SceneView& view)
    {
        for (int i = 0; i < 2; ++i)
        {
            view.nDraws = 0;
            view.reRender();
            for (int turn = 0; turn < 2; ++turn) // the second one delivers frames that were read
                app.step(0);
            EXPECT_GE(view.nDraws, 1);
        }
        view.makeCurrentContext();
        std::string pixels(std::size_t(cWidth) * cHeight * 4, 0);
        glReadPixels(0, 0, cWidth, cHeight, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
        return pixels;
    }

    /// Shows a scene on a driver that refuses the nth call that it may refuse. @return what the log had to say
    std::vector<std::string> refuse(const SceneInfo& info, unsigned int nth)
    {
        gl.refuseNth(nth);
        SceneView view(info);
        view.create();
        draw(view);
        const bool isShown = view.isShown();
        view.end();
        EXPECT_EQ(gl.nAlive(), 0U);
        std::vector<std::string> lines = log.take();
        if (!isShown)
            lines.emplace_back("what the gallery says then itself");
        return lines;
    }

    /// Loses the context of a scene between two frames, and gives it another one. @return how many calls it made that
    /// may be refused
    unsigned int lose(const SceneInfo& info)
    {
        gl.record(false);
        gl.refuseNth(0);
        SceneView view(info);
        view.create();
        test::pinLoadedLibraries();
        const std::string pixels = draw(view);
        const unsigned int nRefusable = gl.nRefusable() - 1; // the last one read the pixels
        {
            eglMakeCurrent(eglGetCurrentDisplay(), EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
            gui::gl::CurrentContext::set(nullptr);
            const auto loaded = std::exchange(epoxy_eglMakeCurrent, &refuseCurrent);
            gl.record(true);
            for (int i = 0; i < 3; ++i)
            {
                view.reRender();
                app.step(0);
            }
            EXPECT_TRUE(log.said("ERROR! OffscreenContext cannot be made current (EGL error 3000)"));
            view.release();
            EXPECT_TRUE(gl.only({})) << "a call without a context";
            gl.record(false);
            epoxy_eglMakeCurrent = loaded;
        }
        gl.destroy(gl.current());
        gl.makeCurrent(1);
        gl.refuseNth(0);
        view.create();
        EXPECT_TRUE(draw(view) == pixels);
        view.end();
        EXPECT_EQ(gl.nAlive(), 0U);
        return nRefusable;
    }

    test::GLTrace gl{test::GLTrace::Forward};
    test::CapturedLog log;
    gui::Application app{0, nullptr};
    std::vector<std::string> asserts;
};

// The environment variable GUIGL_REFUSALS wants another number of tries; 1000 are all.
TEST_F(Refusal, WhatIsRefusedIsSaidAndDrawnAgainInANewContext)
{
    const char* const wanted = std::getenv("GUIGL_REFUSALS");
    const auto nTries = static_cast<unsigned int>(std::max(1, wanted != nullptr ? std::atoi(wanted) : cTries));
    unsigned int offset = 0; // so that scenes which begin alike have other calls refused
    for (const SceneInfo& info : gallery::scenes())
    {
        if (nTries == 1 && test::isSlow(info))
            continue;
        SCOPED_TRACE(info.name);
        const unsigned int n = lose(info);
        ASSERT_GT(n, 0U);
        const unsigned int stride = std::max(1U, n / nTries);
        offset += 7;
        for (unsigned int nth = 1 + offset % stride; nth <= n; nth += stride)
        {
            const std::vector<std::string> lines = refuse(info, nth);
            SCOPED_TRACE(gl.refused() + ", refusal " + std::to_string(nth) + " of " + std::to_string(n));
            EXPECT_FALSE(lines.empty()) << "nothing was said";
            // What the built-in shaders' programs do by their rules, and a font that has no texture.
            for (const std::string& condition : std::exchange(asserts, {}))
                EXPECT_TRUE(condition == "false" || condition == "_program.isOK()" || condition == "_textureID != 0")
                    << condition;
        }
    }
}

TEST_F(Refusal, WithoutAContextThereIsNoView)
{
    SceneView view(gallery::scenes().front());
    const auto loaded = std::exchange(epoxy_eglCreateContext, &refuseContext);
    view.create();
    epoxy_eglCreateContext = loaded;
    EXPECT_EQ(view.getHandle(), nullptr);
    EXPECT_TRUE(log.said("ERROR! OffscreenContext cannot create an OpenGL 4.1 core context (EGL error 3000)"));
    for (const std::string& condition : std::exchange(asserts, {}))
        EXPECT_EQ(condition, "_handle != nullptr");
}

} // namespace
