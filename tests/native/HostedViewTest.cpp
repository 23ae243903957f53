// A view inside a host that made the context itself, draws it into framebuffers of its own, another one for each frame,
// and presents them when it likes.
#include "support/CapturedLog.h"
#include "support/OffscreenGL.h"
#include "toolkit/src/AsyncQueue.h"

#include <gui/Texture.h>
#include <gui/gl/CurrentContext.h>
#include <gui/gl/View.h>
#include <gui/gl/port/Zav.h>

#include <epoxy/gl.h>

#include <array>
#include <cstdio>
#include <memory>
#include <string>

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

    ~Host()
    {
        EXPECT_TRUE(context.makeCurrent());
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
        glDeleteFramebuffers(2, framebuffers.data());
        glDeleteTextures(2, textures.data());
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
    bool isBlended = false; ///< whether its upper half is blue, with half an alpha

protected:
    void onInit() override { glGenFramebuffers(1, &detour); }
    void onDraw(const td::RectNormalized<double>&) override
    {
        glBindFramebuffer(GL_FRAMEBUFFER, detour);
        activateScreenFB();
        Context::clear(color);
        Context::clear(Context::Clear::Color);
        if (!isBlended)
            return;
        glEnable(GL_SCISSOR_TEST);
        glScissor(0, cSize.height / 2, cSize.width, cSize.height / 2);
        glClearColor(0, 0, 1, 0.5f);
        Context::clear(Context::Clear::Color);
        glDisable(GL_SCISSOR_TEST);
        glBindFramebuffer(GL_READ_FRAMEBUFFER, 0); // what it has read from itself
    }
    void cleanResources() override { glDeleteFramebuffers(1, &detour); }
};

NativeSurfaceClient* showIn(Host& host, DetourView& view)
{
    NativeSurfaceClient* const pNative = zav::createGLView(
        &view, nullptr, {},
        {gui::gl::DepthBuffer::Size::None, gui::gl::StencilBuffer::Size::None, Context::Profile::Core41},
        [&host](auto&, auto&, auto&) { return std::make_unique<HostedSurface>(host); });
    pNative->enteredWindow();
    return pNative;
}

using HostedViewTest = test::OffscreenGL;

TEST_F(HostedViewTest, EachFrameGoesIntoTheFramebufferOfThatFrame)
{
    Host host(context());
    // Another context is current, as in a host with contexts of its own.
    gui::gl::OffscreenContext other({8, 8}, Context(gui::gl::DepthBuffer::Size::None,
                                                    gui::gl::StencilBuffer::Size::None, Context::Profile::Core41));
    DetourView view;
    NativeSurfaceClient* const pNative = showIn(host, view);
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
}

// A picture is of the frame's own framebuffer, upright, and without holes where something was blended.
TEST_F(HostedViewTest, PicturesAreWholeAndUpright)
{
    Host host(context());
    DetourView view;
    view.isBlended = true;
    NativeSurfaceClient* const pNative = showIn(host, view);
    gui::Texture frame;
    bool isDelivered = false;
    view.readFrameFrameBuffer(frame, [&] { isDelivered = true; });
    host.paint(*pNative);
    gui::AsyncQueue::instance().runPending();
    EXPECT_TRUE(isDelivered);
    ASSERT_EQ(frame.getHeight(), cSize.height);
    const td::BYTE* const pTop = frame.getBytes() + std::size_t(frame.getWidth() * (frame.getHeight() - 1) * 4);
    EXPECT_EQ(frame.getBytes()[0], 255) << "red, the first row is the bottom";
    EXPECT_EQ(pTop[2], 255) << "blue";
    EXPECT_NEAR(pTop[3], 128, 1);

    const std::string path = testing::TempDir() + "hosted-view.png";
    gui::Texture saved;
    const auto load = [&](bool isSaved) { return isSaved && saved.loadFromFile(path.c_str()); };
    ASSERT_TRUE(load(frame.saveToFile(path.c_str())));
    EXPECT_EQ(saved.getBytesPerPixel(), 3u);
    frame.setOpaque(false);
    ASSERT_TRUE(load(frame.saveToFile(path.c_str())));
    EXPECT_EQ(saved.getBytesPerPixel(), 4u);
    ASSERT_TRUE(load(view.savePicture(path.c_str())));
    EXPECT_EQ(saved.getBytesPerPixel(), 3u);
    EXPECT_EQ(saved.getBytes()[2], 255) << "blue above";
    ASSERT_TRUE(load(context().savePicture(path.c_str())));
    EXPECT_EQ(saved.getWidth(), context().getSize().width);
    pNative->windowClosed();
    test::CapturedLog log;
    EXPECT_FALSE(view.savePicture(path.c_str()));
    EXPECT_TRUE(log.said("Error! View::savePicture there is no frame to save: " + path));
    std::remove(path.c_str());
}

} // namespace
