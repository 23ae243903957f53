#include "support/CaughtAsserts.h"
#include "support/GLTrace.h"
#include "support/Images.h"

#include <gui/gl/Buffer.h>
#include <gui/gl/Command.h>
#include <gui/gl/CurrentContext.h>
#include <gui/gl/Program.h>
#include <gui/gl/Textures.h>

#include <epoxy/gl.h>
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

namespace
{

using gui::gl::CurrentContext;
using test::GLTrace;

struct TintProgram : gui::gl::Program
{
    void onLinked() override { _color3Location = 0; }
};

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

// What was uploaded to a context that died must not be drawn from in the next, where its names are somebody else's.
TEST_F(CurrentContextTest, ObjectsKnowThatTheyAreNotInTheNextContext)
{
    CurrentContext::set(&a);
    gui::gl::Buffer buffer{gui::gl::DataType::Vec2};
    buffer.appendVertex({0, 0});
    ASSERT_TRUE(buffer.commit());
    TintProgram program;
    ASSERT_TRUE(program.link("v", "f"));
    gui::gl::Textures textures;
    gui::Texture image = test::image(1, 1, 3);
    ASSERT_TRUE(textures.append({&image}, gui::gl::Texture::Type::Tex2D));
    program.setTextures(&textures);
    CurrentContext::died(&a);
    CurrentContext::set(&b);
    trace.clear();
    EXPECT_FALSE(buffer.isCommitted());
    EXPECT_FALSE(buffer.isAddOnCommitted());
    buffer.activate();
    EXPECT_TRUE(asserts.caught("CurrentContext::isAlive(_contextID)"));
    EXPECT_FALSE(program.isOK());
    program.activate();
    EXPECT_TRUE(trace.only({"glUseProgram(0)"}));
    textures.setActive(gui::gl::Textures::Unit::T0, 0);
    EXPECT_TRUE(asserts.caught("textureID != 0"));
    EXPECT_EQ(trace.count("glBindTexture"), 0u);

    EXPECT_TRUE(buffer.commit());
    EXPECT_EQ(trace.count("glBufferData"), 1u);
    EXPECT_TRUE(textures.append({&image}, gui::gl::Texture::Type::Tex2D));
    EXPECT_EQ(textures.size(), 1u);
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
    TintProgram program;
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
