#pragma once

#include "support/CapturedLog.h"
#include "support/CaughtAsserts.h"
#include "support/EventView.h"
#include "support/FakeSurface.h"

namespace test
{

/// A view that notes each of its callbacks in its window's journal, and complains there when its context is not
/// current.
class RecordingView : public EventView
{
public:
    explicit RecordingView(FakeWindow& window)
        : _window(window)
    {
    }

protected:
    void hear(const std::string& line) override;
    void onInit() override { note("onInit"); }
    void cleanResources() override { note("cleanResources"); }
    bool prepareNextFrame() override;
    void onDraw(const td::RectNormalized<double>& rect) override;
    void onGeometryChange(const td::PointAndSize<double>& geometry) override;
    void onResize(const td::Size<double>& size) override { note("onResize", inWords({size.width, size.height})); }

private:
    static std::string inWords(std::initializer_list<double> numbers);

    FakeWindow& _window;
};

/// A view in a fake window, on a null GL.
class GLViewFixture : public testing::Test
{
protected:
    using Events = std::initializer_list<gui::InputDevice::Event>;
    static constexpr unsigned short cAllEvents = 0x0FF5;

    /// Makes a view's native side; the journal is empty afterwards.
    gui::gl::GLView* create(RecordingView& view, unsigned short events = cAllEvents, bool isAnimated = false);
    /// The same, and lets it enter its window, 200 by 100 points large.
    gui::gl::GLView* show(RecordingView& view, unsigned short events = cAllEvents, bool isAnimated = false);

    static gui::gl::Context context(bool isAnimated = false);

    GLTrace trace{GLTrace::Null};
    CapturedLog log;
    CaughtAsserts asserts;
    Journal journal{trace};
    FakeWindow window{journal};
};

} // namespace test
