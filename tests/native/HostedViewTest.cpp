// A view inside a host that made the context itself, draws it into framebuffers of its own, another one for each frame,
// and presents them when it likes.
#include "support/OffscreenGL.h"

#include <gui/gl/CurrentContext.h>
#include <gui/gl/View.h>
#include <gui/gl/port/Zav.h>

#include <epoxy/gl.h>

#include <gtest/gtest.h>

#include <array>
#include <memory>

namespace
{

using gui::gl::Context;
using gui::gl::NativeSurfaceClient;

constexpr td::Size<int> cSize{40, 20};

struct Host
{
    gui::gl::OffscreenContext& context;
    std::array<GLuint, 2> framebuffers{};
    std::array<GLuint, 2> textures{};
    std::size_t nFrames = 0;
    int nRequests = 0;

    explicit Host(gui::gl::OffscreenContext& hostsContext)
        : context(hostsContext)
    {
        glGenFramebuffers(2, framebuffers.data());
        glGenTextures(2, textures.data());
        for (std::size_t i = 0; i < 2; ++i)
        {
            glBindTexture(GL_TEXTURE_2D, textures[i]);
            glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, cSize.width, cSize.height, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
            glBindFramebuffer(GL_FRAMEBUFFER, framebuffers[i]);
            glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, textures[i], 0);
        }
    }

    GLuint current() const { return framebuffers[nFrames % 2]; }

    // As a host's own paint event: it binds what is to be drawn into, and turns to the next afterwards.
    void paint(NativeSurfaceClient& view)
    {
        glBindFramebuffer(GL_FRAMEBUFFER, current());
        view.drawNow();
        ++nFrames;
    }
};

class HostedSurface : public gui::gl::NativeSurface
{
public:
    explicit HostedSurface(Host& host)
        : _host(host)
    {
    }

    bool makeCurrent() override { return _host.context.makeCurrent(); }
    void flush() override {}
    td::Size<double> getSize() const override { return {20, 10}; }
    float getBackingScale() const override { return 2; }
    td::Size<int> getDrawableSize() const override { return cSize; }
    unsigned int getDefaultFramebuffer() const override { return _host.current(); }
    void setNeedsDisplay() override { ++_host.nRequests; }

private:
    Host& _host;
};

// Draws into a framebuffer of its own first, and must find its way back to the host's.
class DetourView : public gui::gl::View
{
public:
    GLuint detour = 0;
    td::ColorID color = td::ColorID::Red;

protected:
    void onInit() override { glGenFramebuffers(1, &detour); }
    void onDraw(const td::RectNormalized<double>&) override
    {
        glBindFramebuffer(GL_FRAMEBUFFER, detour);
        activateScreenFB();
        Context::clear(color);
        Context::clear(Context::Clear::Color);
    }
    void cleanResources() override { glDeleteFramebuffers(1, &detour); }
};

using HostedViewTest = test::OffscreenGL;

TEST_F(HostedViewTest, EachFrameGoesIntoTheFramebufferOfThatFrame)
{
    Host host(context());
    // Another context is current, as in a host with contexts of its own.
    gui::gl::OffscreenContext other({8, 8}, Context(gui::gl::DepthBuffer::Size::None,
                                                    gui::gl::StencilBuffer::Size::None, Context::Profile::Core41));
    DetourView view;
    NativeSurfaceClient* const pNative = zav::createGLView(
        &view, nullptr, {},
        {gui::gl::DepthBuffer::Size::None, gui::gl::StencilBuffer::Size::None, Context::Profile::Core41},
        [&host](auto&, auto&, auto&) { return std::make_unique<HostedSurface>(host); });
    ASSERT_NE(pNative, nullptr);
    pNative->enteredWindow();
    EXPECT_EQ(view.getPixelHiDPIScale(), 2);
    EXPECT_GE(host.nRequests, 1);

    const std::array colors{td::ColorID::Red, td::ColorID::Blue};
    const std::array pixels{test::Pixel{255, 0, 0}, test::Pixel{0, 0, 255}};
    for (const td::ColorID color : colors)
    {
        view.color = color;
        host.paint(*pNative);
    }
    for (std::size_t i = 0; i < 2; ++i)
    {
        glBindFramebuffer(GL_FRAMEBUFFER, host.framebuffers[i]);
        EXPECT_EQ(pixel(cSize.width - 1, cSize.height - 1), pixels[i]);
    }

    pNative->windowClosed();
    host.paint(*pNative);
    EXPECT_TRUE(context().makeCurrent()) << "the host's context is the host's";
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glDeleteFramebuffers(2, host.framebuffers.data());
    glDeleteTextures(2, host.textures.data());
}

} // namespace
