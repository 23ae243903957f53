#include <gui/gl/port/PixelFormat.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

namespace
{

using gui::gl::Context;
using gui::gl::DepthBuffer;
using gui::gl::PixelFormat;
using gui::gl::PixelFormatSizes;
using gui::gl::StencilBuffer;

bool operator==(const PixelFormatSizes& a, const PixelFormatSizes& b)
{
    return a.is41 == b.is41 && a.isES == b.isES && a.colorBits == b.colorBits && a.alphaBits == b.alphaBits &&
           a.depthBits == b.depthBits && a.stencilBits == b.stencilBits && a.nSamples == b.nSamples &&
           a.isTransparent == b.isTransparent;
}

TEST(PixelFormat, SaysWhatTheContextAsksForAndIsReadBack)
{
    Context plain(static_cast<DepthBuffer::Size>(6), static_cast<StencilBuffer::Size>(2),
                  static_cast<Context::Profile>(0));
    const PixelFormat plainList = gui::gl::buildPixelFormat(plain);
    EXPECT_EQ(plainList, (PixelFormat{99, 0x3200, 8, 24, 11, 8, 12, 24, 13, 8, 5, 73, 72, 0}));
    EXPECT_TRUE(gui::gl::decodePixelFormat(plainList) == (PixelFormatSizes{false, 24, 8, 24, 8}));

    Context deep(Context::Animation::On, DepthBuffer::Size::Bits32, StencilBuffer::Size::None,
                 Context::Profile::Core41);
    deep.setRGBSize(30, 2);
    const PixelFormat deepList = gui::gl::buildPixelFormat(deep);
    EXPECT_EQ(deepList, (PixelFormat{99, 0x4100, 8, 30, 11, 2, 12, 32, 13, 0, 5, 73, 72, 0}));
    EXPECT_TRUE(gui::gl::decodePixelFormat(deepList) == (PixelFormatSizes{true, 30, 2, 32, 0}));

    deep.setSamples(8);
    const PixelFormat smoothList = gui::gl::buildPixelFormat(deep);
    EXPECT_EQ(smoothList, (PixelFormat{99, 0x4100, 8, 30, 11, 2, 12, 32, 13, 0, 55, 1, 56, 8, 5, 73, 72, 0}));
    deep.setTransparent(true);
    const PixelFormat clearList = gui::gl::buildPixelFormat(deep);
    EXPECT_EQ(clearList, (PixelFormat{99, 0x4100, 8, 30, 11, 2, 12, 32, 13, 0, 55, 1, 56, 8, 236, 0, 5, 73, 72, 0}));
    EXPECT_TRUE(gui::gl::decodePixelFormat(clearList) == (PixelFormatSizes{true, 30, 2, 32, 0, 8, true}));
    PixelFormatSizes sizes = gui::gl::decodePixelFormat(smoothList);
    EXPECT_TRUE(sizes == (PixelFormatSizes{true, 30, 2, 32, 0, 8}));
    EXPECT_TRUE(gui::gl::fallBackSamples(sizes) && gui::gl::fallBackSamples(sizes) && gui::gl::fallBackSamples(sizes));
    EXPECT_FALSE(gui::gl::fallBackSamples(sizes));
    EXPECT_TRUE(sizes == (PixelFormatSizes{true, 30, 2, 32, 0}));
}

TEST(PixelFormat, TheEnvironmentMayWantES)
{
    const char* const text = std::getenv("GUIGL_ES");
    const std::string before = text != nullptr ? text : "";
    const Context context(DepthBuffer::Size::None, StencilBuffer::Size::None, Context::Profile::Core41);
    for (const auto& [wanted, isES] : {std::pair("", false), {"0", false}, {"1", true}})
    {
        setenv("GUIGL_ES", wanted, 1);
        EXPECT_EQ(gui::gl::decodePixelFormat(gui::gl::requestPixelFormat(context)).isES, isES) << wanted;
    }
    setenv("GUIGL_ES", before.c_str(), 1);
}

// Values that look like attributes (8, 11, 12, 13, 72) must not be taken for them, nor 0 for the end.
TEST(PixelFormat, TellsValuesFromAttributes)
{
    Context context(static_cast<DepthBuffer::Size>(0), StencilBuffer::Size::Bits8, Context::Profile::Core41);
    context.setRGBSize(12, 13);
    EXPECT_TRUE(gui::gl::decodePixelFormat(gui::gl::buildPixelFormat(context)) ==
                (PixelFormatSizes{true, 12, 13, 0, 8}));
    context.setRGBSize(0, 72);
    EXPECT_TRUE(gui::gl::decodePixelFormat(gui::gl::buildPixelFormat(context)) ==
                (PixelFormatSizes{true, 0, 72, 0, 8}));

    // A list from elsewhere: no end, and the last attribute lacks its value.
    PixelFormat endless;
    endless.fill(8);
    endless[0] = 73;
    EXPECT_EQ(gui::gl::decodePixelFormat(endless).colorBits, 8);
}

TEST(PixelFormat, GivesUpStepByStepAndNeverWhatSystemsHave)
{
    const struct
    {
        int depth, stencil;
        std::vector<std::pair<int, int>> steps;
    } cases[] = {
        {32, 32, {{32, 8}, {24, 8}}}, {32, 8, {{24, 8}}}, {32, 0, {{24, 0}}},
        {24, 16, {{24, 8}}},          {24, 8, {}},        {0, 0, {}},
    };
    for (const auto& c : cases)
    {
        PixelFormatSizes sizes{true, 24, 8, c.depth, c.stencil};
        std::vector<std::pair<int, int>> steps;
        while (steps.size() < 5 && gui::gl::fallBack(sizes))
            steps.emplace_back(sizes.depthBits, sizes.stencilBits);
        EXPECT_EQ(steps, c.steps) << c.depth << ", " << c.stencil;
        EXPECT_TRUE(sizes.is41 && sizes.colorBits == 24 && sizes.alphaBits == 8);
        EXPECT_TRUE(gui::gl::fallBackVersion(sizes) && !sizes.is41 && !gui::gl::fallBackVersion(sizes));
    }
}

} // namespace
