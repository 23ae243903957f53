// Views whose context is lost: by their own surface, by a driver that says that the GPU was reset, and in a widget of a
// toolkit that brings another one.
#include "support/CapturedLog.h"

#include <gui/Application.h>
#include <gui/Texture.h>
#include <gui/gl/gl.h>
#include <gui/gl/port/HostedView.h>
#include <gui/gl/port/Zav.h>

#include <epoxy/gl.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace
{

using namespace gui::gl;

const Context cContext{DepthBuffer::Size::Bits24, StencilBuffer::Size::Bits8, Context::Profile::Core41};
constexpr td::Size<int> cPixels{60, 40};

bool s_isReset = false;

GLenum resetStatus() { return s_isReset ? GL_GUILTY_CONTEXT_RESET : GL_NO_ERROR; }

decltype(epoxy_glGetIntegerv) s_getIntegerv = nullptr;

// A context that tells of resets, on a driver that may have none.
void getInteger(GLenum name, GLint* pValue)
{
    s_getIntegerv(name, pValue);
    if (name == GL_RESET_NOTIFICATION_STRATEGY)
        *pValue = GL_LOSE_CONTEXT_ON_RESET;
}

class Resets
{
public:
    Resets()
        : _status(epoxy_glGetGraphicsResetStatus)
    {
        // Found by the loader now, or it would call the replacement for ever.
        const OffscreenContext context({1, 1}, cContext);
        GLint major = 0;
        glGetIntegerv(GL_MAJOR_VERSION, &major);
        s_getIntegerv = epoxy_glGetIntegerv;
        epoxy_glGetIntegerv = getInteger;
        epoxy_glGetGraphicsResetStatus = resetStatus;
    }
    Resets(const Resets&) = delete;
    Resets& operator=(const Resets&) = delete;
    ~Resets()
    {
        epoxy_glGetIntegerv = s_getIntegerv;
        epoxy_glGetGraphicsResetStatus = _status;
    }

private:
    decltype(epoxy_glGetGraphicsResetStatus) _status;
};

/// Says everything to GL once, in onInit, and draws with the least that can be said in a frame.
class TerseView : public View
{
public:
    std::vector<std::string> told;
    std::function<void()> onLost = [] {};
    bool activates = true; ///< in each frame: hosts have others' programs in between

protected:
    void onInit() override
    {
        told.emplace_back("onInit");
        const td::Color colors[] = {{255, 0, 0, 255}, {0, 255, 0, 255}, {0, 0, 255, 255}, {255, 255, 0, 255}};
        gui::Texture image;
        gui::TextureHelper helper(&image);
        helper.reserve(16);
        helper.updateInfo(2, 2, 4);
        for (int i = 0; i < 16; ++i)
            image.getBytes()[i] = static_cast<td::BYTE>(colors[i / 4].rgba() >> (8 * (i % 4)));
        _textures.append({&image}, Texture::Type::Tex2D);
        const float quad[] = {-0.9F, -0.9F, 0, 0, 0.8F, -0.9F, 3, 0, -0.9F, 0.7F, 0, 3, 0.8F, 0.7F, 3, 3};
        _buffer.appendShape(Primitive::TriangleStrip, quad, 4);
        _buffer.getCommandList().encode();
        _buffer.commit();
        _program.link();
        _program.setBuffer(&_buffer);
        _program.activate();
        _program.setMVP(glm::mat4(0.9F));
        _textures.setActive(Texture::Unit::T0, 0);
        glClearColor(0.2F, 0.4F, 0.6F, 1);
        glEnable(GL_BLEND);
        glBlendFunc(GL_SRC_COLOR, GL_ONE_MINUS_SRC_COLOR);
        glScissor(3, 5, 50, 30);
        glEnable(GL_CULL_FACE);
        glCullFace(GL_FRONT);
        glFrontFace(GL_CW);
    }
    void onDraw(const td::RectNormalized<double>&) override
    {
        glDisable(GL_SCISSOR_TEST);
        glClear(GL_COLOR_BUFFER_BIT);
        glEnable(GL_SCISSOR_TEST);
        if (activates)
            _program.activate();
        _program.execute();
    }
    void onContextLost() override
    {
        EXPECT_EQ(CurrentContext::getID(), 0u);
        told.emplace_back("lost");
        onLost();
    }
    void onContextRestored() override
    {
        EXPECT_TRUE(_program.isOK() && _buffer.isCommitted() && _textures.getID(0) != 0);
        told.emplace_back("restored");
    }
    void cleanResources() override { told.emplace_back("cleaned"); }

private:
    Texture2DProgram _program;
    Textures _textures;
    Buffer _buffer{DataType::Vec2, DataType::Vec2};
};

std::vector<td::BYTE> bytesOf(const gui::Texture& picture)
{
    return {picture.getBytes(), picture.getBytes() + std::size_t(picture.getWidth()) *
                                                         std::size_t(picture.getHeight()) * picture.getBytesPerPixel()};
}

class LossTest : public testing::Test
{
protected:
    void show(View& view)
    {
        const td::PointAndSize<double> geometry({0, 0}, {60, 40});
        ASSERT_NE(zav::createGLView(&view, &geometry, cContext), nullptr);
    }
    static std::vector<td::BYTE> pictureOf(View& view)
    {
        gui::Texture picture;
        EXPECT_TRUE(zav::drawInto(&view, picture));
        return bytesOf(picture);
    }
    /// But for the time it took.
    static std::vector<std::string> linesOf(test::CapturedLog& log)
    {
        std::vector<std::string> lines = log.take();
        for (std::string& line : lines)
            line.resize(std::min(line.find(" ("), line.size()));
        return lines;
    }

    const std::string restored = "GLView has another GL context, and what was in the lost one is there again";
    test::CapturedLog log;
};

// What is told once stays told: state, bindings, the program in use and its uniforms.
TEST_F(LossTest, WhatAViewSaysOnceHoldsInEveryContext)
{
    for (const bool activates : {true, false})
    {
        TerseView view;
        view.activates = activates;
        show(view);
        const std::vector<td::BYTE> before = pictureOf(view);
        EXPECT_GT(std::count(before.begin(), before.end(), td::BYTE(102)), 300); // the ground's green
        EXPECT_LT(std::count(before.begin(), before.end(), td::BYTE(102)), 1500);
        for (int i = 0; i < 3; ++i)
        {
            view.loseContext();
            EXPECT_TRUE(pictureOf(view) == before);
            EXPECT_EQ(linesOf(log), std::vector<std::string>{restored});
        }
        EXPECT_EQ(view.told.size(), 7u);
        EXPECT_EQ(view.told[1] + view.told[2], "lostrestored");
    }
}

// Then nothing can be read of the old one any more.
TEST_F(LossTest, AResetOfTheGPUIsFoundBeforeTheFrame)
{
    const Resets resets;
    TerseView view;
    show(view);
    const std::vector<td::BYTE> before = pictureOf(view);
    if (!gui::gl::Context::isAtLeast(45, 32) && !epoxy_has_gl_extension("GL_KHR_robustness"))
        GTEST_SKIP() << "the driver does not tell of resets";
    view.onLost = [] { s_isReset = false; };
    for (int i = 0; i < 2; ++i)
    {
        s_isReset = true;
        EXPECT_TRUE(pictureOf(view) == before);
        EXPECT_EQ(linesOf(log),
                  (std::vector<std::string>{
                      "Warning! GLView lost its GL context without notice, as after a reset of the GPU", restored}));
    }
}

// What is asked for in onContextLost may be that the view goes.
TEST_F(LossTest, AViewMayEndWhileItsContextIsLost)
{
    auto pView = std::make_unique<TerseView>();
    show(*pView);
    std::ignore = pictureOf(*pView);
    pView->onLost = [&pView] { pView.reset(); };
    pView->loseContext();
    gui::Texture picture;
    EXPECT_FALSE(zav::drawInto(pView.get(), picture));
    EXPECT_EQ(pView, nullptr);
    EXPECT_EQ(linesOf(log), std::vector<std::string>{});
}

/// A widget of a toolkit that has its contexts come and go.
class Widget : public HostWidget
{
public:
    std::unique_ptr<OffscreenContext> context = std::make_unique<OffscreenContext>(cPixels, cContext);
    bool isWorking = true;

    const char* getName() const override { return "Widget"; }
    bool makeContextCurrent() override { return isWorking && context->makeCurrent(); }
    // Known to the library by another handle than the offscreen context's own.
    const void* getContext() const override { return context.get(); }
    td::Size<double> getSize() const override { return {60, 40}; }
    float getBackingScale() const override { return 1; }
    td::Size<int> getDrawableSize() const override { return cPixels; }
    unsigned int getFramebuffer() const override { return 0; }
    void requestPaint() override { ++nRequests; }
    bool isShown() const override { return true; }

    int nRequests = 0;
};

// With notice, without, and with a context that does not work any more when it is given notice of.
TEST_F(LossTest, AWidgetGoesOnInTheContextThatItsToolkitBrings)
{
    Widget widget;
    TerseView view;
    HostedView hosted(widget, HostedView::makerOf(view, cContext));
    const auto paint = [&]
    {
        EXPECT_TRUE(widget.context->makeCurrent());
        hosted.paint();
        EXPECT_TRUE(widget.context->makeCurrent());
        gui::Texture picture;
        EXPECT_TRUE(widget.context->readPixels(picture));
        return bytesOf(picture);
    };
    hosted.begin();
    const std::vector<td::BYTE> before = paint();
    for (const char* const notice : {"given", "none", "late"})
    {
        SCOPED_TRACE(notice);
        if (notice[0] == 'l')
            widget.isWorking = false;
        if (notice[0] != 'n')
            hosted.contextLost();
        EXPECT_EQ(hosted.hasBegun(), notice[0] == 'n');
        widget.isWorking = true;
        auto pOther = std::make_unique<OffscreenContext>(cPixels, cContext);
        std::swap(widget.context, pOther);
        hosted.begin();
        pOther.reset();
        EXPECT_TRUE(hosted.hasBegun());
        hosted.begin(); // the same
        EXPECT_TRUE(paint() == before);
        std::vector<std::string> lines = linesOf(log);
        ASSERT_FALSE(lines.empty());
        EXPECT_EQ(lines.back(), restored);
        EXPECT_EQ(lines.size(), notice[0] == 'g' ? 1u : 2u);
    }
    // The widget's own context, with all in it made anew.
    view.loseContext();
    EXPECT_TRUE(paint() == before);
    EXPECT_EQ(linesOf(log), std::vector<std::string>{restored});
    hosted.contextLost();
    hosted.end();
    EXPECT_EQ(hosted.getView(), nullptr);
    EXPECT_EQ(view.told.back(), "lost"); // there was no context to clean up in
}

} // namespace
