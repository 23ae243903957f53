#include "GLViewFixture.h"

#include <sstream>

namespace test
{

void RecordingView::hear(const std::string& line)
{
    _window.journal.note(line + (_window.isCurrent() ? "" : " in another context"));
}

bool RecordingView::prepareNextFrame()
{
    note("prepareNextFrame");
    return true;
}

void RecordingView::onDraw(const td::RectNormalized<double>& rect)
{
    note("onDraw", inWords({rect.left, rect.top, rect.right, rect.bottom}));
}

void RecordingView::onGeometryChange(const td::PointAndSize<double>& geometry)
{
    const auto& [point, size] = geometry;
    note("onGeometryChange", inWords({point.x, point.y, size.width, size.height}));
}

std::string RecordingView::inWords(std::initializer_list<double> numbers)
{
    std::ostringstream words;
    for (const double number : numbers)
        words << ' ' << number;
    return words.str();
}

gui::gl::Context GLViewFixture::context(bool isAnimated)
{
    using gui::gl::Context;
    Context result(isAnimated ? Context::Animation::On : Context::Animation::Off, gui::gl::DepthBuffer::Size::Bits24,
                   gui::gl::StencilBuffer::Size::Bits8, Context::Profile::Core41);
    result.setPreferredFrameRateRange(30, 60);
    return result;
}

gui::gl::GLView* GLViewFixture::create(RecordingView& view, unsigned short events, bool isAnimated)
{
    auto* const pNative = gui::gl::GLView::createView(&view, nullptr, events, context(isAnimated), window.factory());
    EXPECT_EQ(view.getHandle(), pNative);
    journal.take();
    return pNative;
}

gui::gl::GLView* GLViewFixture::show(RecordingView& view, unsigned short events, bool isAnimated)
{
    auto* const pNative = create(view, events, isAnimated);
    window.size = {200, 100};
    pNative->enteredWindow();
    journal.take();
    return pNative;
}

} // namespace test
