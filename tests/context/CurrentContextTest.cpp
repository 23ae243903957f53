#include "support/NullGL.h"

#include <gui/gl/Command.h>
#include <gui/gl/CurrentContext.h>
#include <gui/gl/Program.h>

#include <epoxy/gl.h>
#include <gtest/gtest-spi.h>

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

    GLTrace trace{GLTrace::Null};
    test::CaughtAsserts asserts;
    char a = 0;
    char b = 0;
};

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

// Without this the checks of every other test on a null GL could be asleep.
TEST_F(CurrentContextTest, TheNullGLKnowsWhichNamesLive)
{
    const GLuint names[] = {1};
    EXPECT_NONFATAL_FAILURE(glDeleteBuffers(1, names), "glDeleteBuffers: buffer 1 is not alive");
    EXPECT_NE(glCreateProgram(), 0u);
    EXPECT_FALSE(trace.nothingAlive());
}

// Sent without a program of this context in use, colours and matrices would go nowhere, or to a neighbour's program.
TEST_F(CurrentContextTest, AnotherContextHasNoCurrentProgramYet)
{
    CurrentContext::set(&a);
    test::ColorProgram program;
    ASSERT_TRUE(program.link("v", "f"));
    gui::gl::Command command;
    command.createDrawArrays(gui::gl::Primitive::Triangles, 0, 3);
    command.setColor(td::ColorID::Red);
    ASSERT_TRUE(command.encode());
    program.activate();
    EXPECT_TRUE(command.execute());
    trace.clear();
    CurrentContext::set(&a); // as before: nothing to forget
    EXPECT_TRUE(command.execute());
    EXPECT_EQ(trace.count("glUniform3fv"), 0u);
    CurrentContext::set(&b);
    EXPECT_FALSE(command.execute());
    EXPECT_TRUE(asserts.caught("s_pCurrentProgram != nullptr"));
    CurrentContext::set(&a);
    EXPECT_FALSE(command.execute());
    EXPECT_TRUE(asserts.caught("s_pCurrentProgram != nullptr"));
    EXPECT_EQ(trace.count("glDrawArrays"), 1u);
}

} // namespace
