#pragma once

#include "GLTrace.h"

#include "src/native/GLView.h"

#include <gui/gl/CurrentContext.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace test
{

/// What happened, line by line and in order. The GL calls of a trace stand between the lines, but for plain queries.
class Journal
{
public:
    explicit Journal(GLTrace& trace)
        : _trace(trace)
    {
    }

    void note(const std::string& line);
    GLTrace& trace() { return _trace; }

    /// The lines since the last check; forgets them.
    std::vector<std::string> take();
    /// Whether exactly these were written since the last check; forgets what was.
    testing::AssertionResult said(const std::vector<std::string>& lines);

private:
    void noteCalls();

    GLTrace& _trace;
    std::vector<std::string> _lines;
};

/// The test's end of a fake surface: what the surface answers, and what became of it. It outlives the surface.
struct FakeWindow
{
    explicit FakeWindow(Journal& aJournal)
        : journal(aJournal)
    {
    }

    /// Makes surfaces that belong to this window, one at a time.
    gui::gl::SurfaceFactory factory();

    bool isCurrent() const { return contextID != 0 && gui::gl::CurrentContext::getID() == contextID; }

    Journal& journal;
    td::Size<double> size{300, 300};
    float scale = 1;
    unsigned int framebuffer = 0;
    bool hasContext = true; ///< false: the context is lost, or cannot be made in the first place
    bool hasSurface = false;
    gui::gl::CurrentContext::ID contextID = 0;
    GLTrace::Context context = 0; ///< of a strict GL; made with the surface, and gone with it
};

/// A surface on no window system, with a context that is current when it says so. It notes: "needs display", "flush",
/// "cursor 3", "text input on", "caret 1,2 3,4", "clock 30 60", "clock stops", "surface gone"; and it complains there
/// when its context is not current where it has to be.
class FakeSurface : public gui::gl::NativeSurface
{
public:
    FakeSurface(FakeWindow& window, const td::Size<double>& size);
    ~FakeSurface() override;

    bool makeCurrent() override;
    void flush() override;
    td::Size<double> getSize() const override { return _window.size; }
    float getBackingScale() const override { return _window.scale; }
    td::Size<int> getDrawableSize() const override;
    unsigned int getDefaultFramebuffer() const override;
    void setNeedsDisplay() override;
    void setCursor(gui::Cursor::Type type) override;
    void setTextInput(bool isOn) override;
    void setTextInputRect(const td::RectNormalized<double>& rect) override;
    void startFrameClock(float minFPS, float maxFPS) override;
    void stopFrameClock() override;

private:
    void noteInContext(const std::string& line) const;

    FakeWindow& _window;
};

} // namespace test
