#include "RecordingView.h"

#include "WaitInLoop.h"
#include "support/Lines.h"

#include <epoxy/gl.h>
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <utility>

namespace test
{

namespace
{

std::string modifierText(unsigned int modifiers)
{
    constexpr std::pair<gui::KeyModifier, const char*> cNames[] = {
        {gui::KeyModifier::Shift, "+Shift"}, {gui::KeyModifier::CapsLock, "+Caps"}, {gui::KeyModifier::Ctrl, "+Ctrl"},
        {gui::KeyModifier::Alt, "+Alt"},     {gui::KeyModifier::Cmd, "+Cmd"},       {gui::KeyModifier::Fn, "+Fn"}};
    std::string text;
    for (const auto& [modifier, name] : cNames)
        if (gui::isKeyModifierPressed(modifiers, modifier))
            text += name;
    return text;
}

std::string keyText(const gui::Key& key)
{
    std::ostringstream text;
    constexpr char cLastControl = 31;
    if (key.isVirtual())
        text << "key virtual " << static_cast<int>(key.getVirtual()) << " code " << key.getCode();
    else if (key.isASCII() && key.getChar() > cLastControl)
        text << "key '" << key.getChar() << "'";
    else
        text << "key " << key.getCode();
    text << modifierText(key.getModifiers());
    return text.str();
}

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

RecordingView::~RecordingView() = default;

void RecordingView::create(gui::gl::Context::Animation animation, const td::Size<double>& size)
{
    using enum gui::InputDevice::Event;
    const td::PointAndSize<double> geometry({0, 0}, size);
    createContext(
        gui::gl::Context(animation, gui::gl::DepthBuffer::Size::Bits24, gui::gl::StencilBuffer::Size::None,
                         gui::gl::Context::Profile::Core41),
        {CursorEnterLeave, PrimaryClicks, SecondaryClicks, CursorDrag, ScrollAndZoom, Keyboard, OtherClicks, OtherDrag},
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

Screenshot RecordingView::readPixels()
{
    Screenshot picture;
    onFrame = [&picture]
    {
        int viewport[4]{};
        glGetIntegerv(GL_VIEWPORT, viewport);
        std::vector<unsigned char> bytes(static_cast<std::size_t>(viewport[2] * viewport[3] * 4));
        glReadPixels(0, 0, viewport[2], viewport[3], GL_RGBA, GL_UNSIGNED_BYTE, bytes.data());
        picture = toScreenshot(viewport[2], viewport[3], bytes.data());
    };
    reRender();
    waitInLoop([&] { return picture.width != 0; });
    onFrame = nullptr;
    return picture;
}

void RecordingView::checkContext()
{
    if (gui::gl::CurrentContext::getID() != _context)
        isContextWrong = true;
}

void RecordingView::onInit() { _context = gui::gl::CurrentContext::getID(); }

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
    if ((static_cast<std::uint32_t>(corner[0] << 16 | corner[1] << 8 | corner[2])) != cTopRight)
        isPictureWrong = true;
    if (onFrame)
        onFrame();
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
    if (onCleanUp)
        onCleanUp();
}

void RecordingView::add(const std::string& what, const gui::InputDevice& device)
{
    checkContext();
    std::ostringstream text;
    const td::Point<double>& point = device.getFramePoint();
    text << what << ' ' << point.x << ',' << point.y;
    const gui::InputDevice::Button button = device.getButton();
    const bool isClick = !what.starts_with("drag") &&
                         (button == gui::InputDevice::Button::Primary || button == gui::InputDevice::Button::Secondary);
    if (isClick)
        text << " x" << device.getNoOfEvents();
    if (what == "zoom")
        text << " by " << device.getScale();
    lines.push_back(text.str() + modifierText(device.getKeyboardModifiers()));
}

void RecordingView::onPrimaryButtonReleased(const gui::InputDevice& device)
{
    add("release", device);
    if (onRelease)
        onRelease();
}

bool RecordingView::onScroll(const gui::InputDevice& device)
{
    add("scroll", device);
    return true;
}

bool RecordingView::onZoom(const gui::InputDevice& device)
{
    add("zoom", device);
    return true;
}

bool RecordingView::onKeyPressed(const gui::Key& key)
{
    checkContext();
    lines.push_back(keyText(key));
    return true;
}

bool RecordingView::onKeyReleased(const gui::Key& key)
{
    checkContext();
    lines.push_back("up " + keyText(key));
    return true;
}

} // namespace test
