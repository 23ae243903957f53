#include "RecordingView.h"

#include "WaitInLoop.h"
#include "support/Lines.h"
#include "support/Pinning.h"

#include <gui/Texture.h>

#include <epoxy/gl.h>
#include <gtest/gtest.h>

#include <utility>

namespace test
{

namespace
{

// From bytes of red, green, blue and alpha, the bottom row first.
Screenshot toScreenshot(int width, int height, const unsigned char* bytes)
{
    Screenshot picture{width, height, {}};
    for (int y = height - 1; y >= 0; --y)
        for (int x = 0; x < width; ++x)
        {
            const unsigned char* const pPixel = bytes + (y * width + x) * 4;
            picture.pixels.push_back(static_cast<std::uint32_t>(pPixel[0] << 16 | pPixel[1] << 8 | pPixel[2]));
        }
    return picture;
}

void fill(int x, int y, int width, int height, std::uint32_t color)
{
    const auto channel = [color](unsigned int shift) { return static_cast<float>((color >> shift) & 0xFF) / 255; };
    glScissor(x, y, width, height);
    glClearColor(channel(16), channel(8), channel(0), 1);
    glClear(GL_COLOR_BUFFER_BIT);
}

} // namespace

void RecordingView::create(gui::gl::Context::Animation animation, const td::Size<double>& size)
{
    using enum gui::InputDevice::Event;
    handles = true;
    const td::PointAndSize<double> geometry({0, 0}, size);
    createContext(gui::gl::Context(animation, gui::gl::DepthBuffer::Size::Bits24, gui::gl::StencilBuffer::Size::None,
                                   gui::gl::Context::Profile::Core41),
                  {CursorEnterLeave, PrimaryClicks, SecondaryClicks, CursorDrag, ScrollAndZoom, Keyboard, OtherClicks,
                   OtherDrag, Drops},
                  &geometry);
}

testing::AssertionResult RecordingView::hasHeard(const std::vector<std::string>& expected)
{
    waitInLoop([&] { return lines.size() >= expected.size(); });
    return areLines("heard", std::exchange(lines, {}), expected);
}

Screenshot grabFrame(gui::gl::View& view)
{
    gui::Texture texture;
    bool isRead = false;
    view.readFrameFrameBuffer(texture, [&isRead] { isRead = true; });
    if (!waitInLoop([&] { return isRead; }))
        return {};
    return toScreenshot(texture.getWidth(), texture.getHeight(), texture.getBytes());
}

Screenshot RecordingView::readDrawn()
{
    int viewport[4]{};
    glGetIntegerv(GL_VIEWPORT, viewport);
    std::vector<unsigned char> bytes(static_cast<std::size_t>(viewport[2] * viewport[3] * 4));
    glReadPixels(0, 0, viewport[2], viewport[3], GL_RGBA, GL_UNSIGNED_BYTE, bytes.data());
    return toScreenshot(viewport[2], viewport[3], bytes.data());
}

Screenshot RecordingView::readPixels()
{
    Screenshot picture;
    in["onDraw"] = [&picture] { picture = readDrawn(); };
    reRender();
    waitInLoop([&] { return picture.width != 0; });
    in.erase("onDraw");
    return picture;
}

void RecordingView::hear(const std::string& line)
{
    checkContext();
    lines.push_back(line);
}

void RecordingView::onInit()
{
    _context = gui::gl::CurrentContext::getID();
    // Here the driver is in use. A toolkit may unload it with its last window.
    pinLoadedLibraries();
}

void RecordingView::onDraw(const td::RectNormalized<double>&)
{
    checkContext();
    ++nFrames;
    int viewport[4]{};
    glGetIntegerv(GL_VIEWPORT, viewport);
    const int width = viewport[2];
    const int height = viewport[3];
    const int halfWidth = width / 2;
    const int halfHeight = height / 2;
    constexpr std::uint32_t cTopRight = 0x20C020;
    glEnable(GL_SCISSOR_TEST);
    fill(0, halfHeight, halfWidth, height - halfHeight, topLeft);
    fill(halfWidth, halfHeight, width - halfWidth, height - halfHeight, cTopRight);
    fill(0, 0, halfWidth, halfHeight, 0x2020E0);
    fill(halfWidth, 0, width - halfWidth, halfHeight, 0xE0E020);
    glDisable(GL_SCISSOR_TEST);
    // Beyond what the buffers hold nothing is drawn, and nothing read.
    unsigned char corner[4]{};
    glReadPixels(width - 1, height - 1, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, corner);
    if (!mayBeCut && (static_cast<std::uint32_t>(corner[0] << 16 | corner[1] << 8 | corner[2])) != cTopRight)
        isWrong = true;
    act("onDraw");
}

void RecordingView::onResize(const td::Size<double>& size)
{
    checkContext();
    sizes.push_back(size);
}

void RecordingView::cleanResources()
{
    checkContext();
    ++nCleanUps;
    act("cleanResources");
}

} // namespace test
