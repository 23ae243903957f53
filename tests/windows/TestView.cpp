#include "TestView.h"

namespace test
{

using gui::gl::Context;

TestView::TestView(td::ColorID color, bool isAnimated)
    : _color(color)
{
    createContext(Context(isAnimated ? Context::Animation::On : Context::Animation::Off,
                          gui::gl::DepthBuffer::Size::None, gui::gl::StencilBuffer::Size::None,
                          Context::Profile::Core41));
}

void TestView::onDraw(const td::RectNormalized<double>&)
{
    ++nDraws;
    Context::clear(_color);
    Context::clear(Context::Clear::Color);
    if (inDraw)
        inDraw();
}

void TestView::cleanResources()
{
    ++nCleanUps;
    if (inCleanUp)
        inCleanUp();
}

} // namespace test
