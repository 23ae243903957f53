// The screen's device pixels per point change while the program runs.

#include "src/native/GLView.h"
#include "support/CapturedLog.h"
#include "toolkit/src/offscreen/OffscreenWindowSystem.h"

#include <gui/Application.h>
#include <gui/Display.h>
#include <gui/Window.h>
#include <gui/gl/gl.h>

#include <epoxy/gl.h>
#include <gtest/gtest.h>

#include <glm/ext/matrix_transform.hpp>

#include <algorithm>
#include <cmath>

namespace
{

using namespace gui::gl;

constexpr td::Size<double> cSize{160, 120};
constexpr double cHalf = 6; // of a mark, in points

/// A mark where the user has pressed the button.
class MarkView : public OrthoView
{
public:
    MarkView()
    {
        createContext(true);
        setZoom(1.5);
        setModelRefPoint({-20, 30});
    }

    td::Point<double> mark; // in the model

protected:
    void onInit() override
    {
        constexpr auto cSide = static_cast<float>(cHalf);
        const float corners[] = {-cSide, -cSide, cSide, -cSide, -cSide, cSide, cSide, cSide};
        _buffer.init(0, 4, 0, {DataType::Vec2});
        _buffer.appendVertices(corners, 4);
        ASSERT_TRUE(_program.link() && _buffer.commit());
        Command* const pCommand = _commands.get();
        pCommand->createDrawArrays(Primitive::TriangleStrip, 0, 4);
        pCommand->setColor(td::ColorID::Black);
        _commands.encode(pCommand);
        _program.setBuffer(&_buffer);
    }
    void onDraw(const td::RectNormalized<double>&) override
    {
        Context::clear(td::ColorID::White);
        Context::clear(Context::Clear::Color);
        _program.activate();
        const glm::vec3 place(static_cast<float>(mark.x), static_cast<float>(mark.y), 0);
        _program.setMVP(
            glm::scale(glm::translate(getProjection(), place), glm::vec3(static_cast<float>(1 / getZoom()))));
        _commands.execute();
        _program.deActivate();
    }
    void onPrimaryButtonPressed(const gui::InputDevice& device) override
    {
        mark = getModelPoint(device.getFramePoint());
        reRender();
    }

private:
    Flat2DProgram _program;
    Buffer _buffer;
    CommandList _commands;
};

class Scale : public testing::Test
{
protected:
    Scale() { log.take(); } // the window system in use
    ~Scale() override { gui::setOffscreenScale(1); }

    static void press(MarkView& view, const td::Point<double>& point)
    {
        auto& native = dynamic_cast<GLView&>(*view.getHandle());
        native.onButton({ButtonEvent::Button::Left, true, true, 1, 0, point});
    }

    /// Whether the frame, at this scale, has the mark around a point of the view and nothing else.
    static testing::AssertionResult shows(MarkView& view, const td::Point<double>& point, double scale)
    {
        view.makeCurrentContext();
        int viewport[4]{};
        glGetIntegerv(GL_VIEWPORT, viewport);
        const int width = viewport[2], height = viewport[3];
        std::vector<unsigned char> reds(static_cast<std::size_t>(width * height) * 4);
        glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, reds.data());
        int left = width, right = 0, bottom = height, top = 0;
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                if (reds[static_cast<std::size_t>(y * width + x) * 4] == 0)
                {
                    left = std::min(left, x), right = std::max(right, x + 1);
                    bottom = std::min(bottom, y), top = std::max(top, y + 1);
                }
        const auto isAt = [scale](int pixel, double points) { return std::abs(pixel - points * scale) <= 0.5; };
        if (isAt(width, cSize.width) && isAt(height, cSize.height) && isAt(left, point.x - cHalf) &&
            isAt(right, point.x + cHalf) && isAt(height - top, point.y - cHalf) &&
            isAt(height - bottom, point.y + cHalf))
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << "a frame of " << width << " by " << height << " with a mark from " << left
                                           << ", " << height - top << " to " << right << ", " << height - bottom;
    }

    test::CapturedLog log;
    gui::Application app{0, nullptr};
};

// An event comes between the change and the frame that follows it.
TEST_F(Scale, PictureAndPointerAgreeBeforeDuringAndAfterAChange)
{
    constexpr td::Point<double> cFixed{100, 20};
    MarkView view;
    MarkView neighbour;
    gui::Window window("Window", cSize);
    gui::Window other("Other", cSize);
    window.show(view);
    other.show(neighbour);
    press(neighbour, cFixed);
    td::Point<double> point{40, 30};
    for (const double scale : {1.0, 1.25, 2.0, 1.25, 1.0})
    {
        SCOPED_TRACE(scale);
        gui::setOffscreenScale(static_cast<float>(scale));
        point = {point.x + 16, point.y + 8};
        press(view, point);
        EXPECT_EQ(view.getPixelHiDPIScale(), static_cast<float>(scale));
        EXPECT_EQ(gui::Display::getDefaultBackingScaleFactor(), static_cast<float>(scale));
        app.step(0);
        EXPECT_TRUE(shows(view, point, scale));
        EXPECT_TRUE(shows(neighbour, cFixed, scale));
    }
    EXPECT_EQ(window.getSize(), cSize);
}

} // namespace
