#pragma once

#include <gui/gl/OffscreenContext.h>

#include <gtest/gtest.h>

#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace test
{

struct Pixel
{
    int red;
    int green;
    int blue;
    int alpha = 255;

    bool operator==(const Pixel&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const Pixel& pixel);

/// A real context of the core profile for each test, with the driver's debug output on. At the end of the test a debug
/// message of type error, undefined behaviour or deprecated and any error that glGetError knows fail the test; other
/// messages are printed.
class OffscreenGL : public testing::Test
{
public:
    /// Whether the context that is current is of the driver of that name; for what docs/drivers.md lists.
    static bool isDriver(std::string_view name);

protected:
    explicit OffscreenGL(const td::Size<int>& size = {64, 64});
    ~OffscreenGL() override;

    void SetUp() override;
    void TearDown() override;

    gui::gl::OffscreenContext& context() { return *_context; }

    /// The messages that would fail the test, and the errors of glGetError, so far; forgets both.
    std::vector<std::string> takeErrors();

    /// Colour, depth and stencil buffer; depth 1, stencil 0.
    static void clear(const Pixel& color = {0, 0, 0, 0});

    /// The samples per pixel that the driver has at most; 1 where it has no more.
    static int mostSamples();

    /// Read from the framebuffer that is bound. y counts from the bottom, as GL does.
    static Pixel pixel(int x, int y);
    static float depthAt(int x, int y);
    /// From the bottom left corner.
    static void readDepths(int width, int height, float* pDepths);

private:
    td::Size<int> _size;
    std::unique_ptr<gui::gl::OffscreenContext> _context;
    std::vector<std::string> _errors;
};

} // namespace test
