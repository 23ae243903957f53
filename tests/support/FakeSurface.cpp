#include "FakeSurface.h"

#include "Lines.h"

#include <cstdio>
#include <utility>

namespace test
{

void Journal::noteCalls()
{
    for (const std::string& call : _trace.calls())
    {
        if (!call.starts_with("glGet"))
            _lines.push_back(call);
    }
    _trace.clear();
}

void Journal::note(const std::string& line)
{
    noteCalls();
    _lines.push_back(line);
}

std::vector<std::string> Journal::take()
{
    noteCalls();
    return std::exchange(_lines, {});
}

testing::AssertionResult Journal::said(const std::vector<std::string>& lines)
{
    return areLines("happened", take(), lines);
}

gui::gl::SurfaceFactory FakeWindow::factory()
{
    return [this](gui::gl::NativeSurfaceClient&, const gui::gl::PixelFormat&,
                  const td::Size<double>& initialSize) -> std::unique_ptr<gui::gl::NativeSurface>
    {
        if (!hasContext)
            return nullptr;
        return std::make_unique<FakeSurface>(*this, initialSize);
    };
}

FakeSurface::FakeSurface(FakeWindow& window, const td::Size<double>& size)
    : _window(window)
{
    _window.size = size;
    _window.hasSurface = true;
}

FakeSurface::~FakeSurface()
{
    gui::gl::CurrentContext::died(this);
    _window.contextID = 0;
    _window.hasSurface = false;
    if (_window.context != 0)
        _window.journal.trace().destroy(_window.context);
    _window.journal.note("surface gone");
}

void FakeSurface::noteInContext(const std::string& line) const
{
    _window.journal.note(_window.isCurrent() ? line : line + " in another context");
}

bool FakeSurface::makeCurrent()
{
    if (!_window.hasContext)
        return false;
    if (_window.context != 0)
        _window.journal.trace().makeCurrent(_window.context);
    gui::gl::CurrentContext::set(this);
    _window.contextID = gui::gl::CurrentContext::getID();
    return true;
}

void FakeSurface::flush() { noteInContext("flush"); }

td::Size<int> FakeSurface::getDrawableSize() const
{
    const auto scale = static_cast<double>(_window.scale);
    return {static_cast<int>(_window.size.width * scale), static_cast<int>(_window.size.height * scale)};
}

unsigned int FakeSurface::getDefaultFramebuffer() const
{
    if (!_window.isCurrent())
        noteInContext("framebuffer");
    return _window.framebuffer;
}

void FakeSurface::setNeedsDisplay() { _window.journal.note("needs display"); }

void FakeSurface::setCursor(gui::Cursor::Type type)
{
    _window.journal.note("cursor " + std::to_string(static_cast<int>(type)));
}

void FakeSurface::setTextInput(bool isOn) { _window.journal.note(isOn ? "text input on" : "text input off"); }

void FakeSurface::setTextInputRect(const td::RectNormalized<double>& rect)
{
    char line[64];
    std::snprintf(line, sizeof line, "caret %g,%g %g,%g", rect.left, rect.top, rect.right, rect.bottom);
    _window.journal.note(line);
}

void FakeSurface::startFrameClock(float minFPS, float maxFPS)
{
    char line[64];
    std::snprintf(line, sizeof line, "clock %g %g", static_cast<double>(minFPS), static_cast<double>(maxFPS));
    _window.journal.note(line);
}

void FakeSurface::stopFrameClock() { _window.journal.note("clock stops"); }

} // namespace test
