#pragma once

#include "RecordingView.h"
#include "support/CapturedLog.h"
#include "support/CaughtAsserts.h"

#include <gtest/gtest.h>

namespace test
{

/// A view in a fake window, on a null GL.
class GLViewFixture : public testing::Test
{
protected:
    using Events = std::initializer_list<gui::InputDevice::Event>;
    static constexpr unsigned short cAllEvents = 0x07F5;

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
