#include "GLViewFixture.h"

namespace test
{

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
