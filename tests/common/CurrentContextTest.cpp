#include "support/GLTrace.h"

#include <gui/gl/Buffer.h>
#include <gui/gl/Command.h>
#include <gui/gl/CurrentContext.h>
#include <gui/gl/Program.h>

#include <gtest/gtest.h>

#include <memory>

namespace
{

using gui::gl::CurrentContext;
using test::GLTrace;

/// Two contexts that share nothing, known by the addresses of these.
class CurrentContextTest : public testing::Test
{
protected:
    ~CurrentContextTest() override
    {
        CurrentContext::died(&a);
        CurrentContext::died(&b);
    }

    std::unique_ptr<gui::gl::Buffer> committedBuffer()
    {
        auto buffer = std::make_unique<gui::gl::Buffer>();
        const float point[] = {0, 0};
        buffer->init(0, 1, 0, {gui::gl::DataType::Vec2});
        buffer->appendVertices(point, 1);
        EXPECT_TRUE(buffer->commit());
        return buffer;
    }

    GLTrace trace{GLTrace::Null};
    char a = 0;
    char b = 0;
};

TEST_F(CurrentContextTest, NamesWaitForTheirContext)
{
    CurrentContext::set(&a);
    auto buffer = committedBuffer();
    CurrentContext::set(&b);
    trace.clear();
    buffer.reset(); // here it would delete what b has under these numbers
    CurrentContext::set(nullptr);
    CurrentContext::set(&b);
    EXPECT_TRUE(trace.only({}));
    CurrentContext::set(&a);
    EXPECT_TRUE(trace.only({"glDeleteBuffers(1, [1])", "glDeleteVertexArrays(1, [1])"}));
    CurrentContext::set(&b);
    CurrentContext::set(&a);
    EXPECT_TRUE(trace.only({})); // once
}

TEST_F(CurrentContextTest, NamesDieWithTheirContext)
{
    CurrentContext::set(&a);
    auto waiting = committedBuffer();
    auto owned = committedBuffer();
    CurrentContext::set(nullptr);
    waiting.reset();
    CurrentContext::died(&a);
    trace.clear();
    CurrentContext::set(&a); // the window system may use an address again
    owned.reset();
    EXPECT_TRUE(trace.only({}));
}

TEST_F(CurrentContextTest, DyingWhileCurrentLeavesNoneCurrent)
{
    CurrentContext::set(&a);
    const CurrentContext::ID first = CurrentContext::getID();
    EXPECT_NE(first, 0u);
    CurrentContext::died(&a);
    EXPECT_EQ(CurrentContext::getID(), 0u);
    CurrentContext::died(&a);
    CurrentContext::died(nullptr);
    CurrentContext::set(&a);
    EXPECT_NE(CurrentContext::getID(), first); // a new context, though at the same address
}

struct ColorProgram : gui::gl::Program
{
    void onLinked() override { _color3Location = 0; }
};

// The other context has other uniform values: a colour that was sent in the first one must be sent there too.
TEST_F(CurrentContextTest, AnotherContextForgetsWhatWasSent)
{
    CurrentContext::set(&a);
    ColorProgram inA;
    ASSERT_TRUE(inA.link("v", "f"));
    gui::gl::Command command;
    command.createDrawArrays(gui::gl::Primitive::Triangles, 0, 3);
    command.setColor(td::ColorID::Red);
    ASSERT_TRUE(command.encode());
    inA.activate();
    command.execute();
    trace.clear();
    CurrentContext::set(&a); // as before: nothing to forget
    command.execute();
    EXPECT_EQ(trace.count("glUniform3fv"), 0u);
    CurrentContext::set(&b);
    CurrentContext::set(&a);
    inA.activate();
    command.execute();
    EXPECT_EQ(trace.count("glUniform3fv"), 1u);
}

} // namespace
