#include "support/CountedAllocations.h"
#include "support/Images.h"
#include "support/NullGL.h"

#include <gui/gl/CommandList.h>
#include <gui/gl/Program.h>
#include <gui/gl/Textures.h>

#include <epoxy/gl.h>

#include <random>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace
{

using gui::gl::Command;
using gui::gl::CommandList;
using gui::gl::Primitive;
using gui::gl::Textures;
using test::ColorProgram;

static_assert(!std::is_copy_constructible_v<CommandList> && !std::is_copy_assignable_v<CommandList>);

class CommandListTest : public test::NullGL
{
protected:
    /// Command i draws from vertex i.
    static void record(CommandList& list, unsigned int n)
    {
        for (unsigned int i = 0; i < n; ++i)
        {
            Command* pCommand = list.get();
            pCommand->createDrawArrays(Primitive::Points, i, 1);
            ASSERT_TRUE(list.encode(pCommand));
        }
    }

    static std::vector<std::string> draws(const std::vector<unsigned int>& firsts)
    {
        std::vector<std::string> calls;
        for (const unsigned int first : firsts)
            calls.push_back("glDrawArrays(0, " + std::to_string(first) + ", 1)");
        return calls;
    }
};

TEST_F(CommandListTest, ExecutesAllOrARange)
{
    CommandList list;
    list.execute();
    list.execute(0, 10);
    EXPECT_TRUE(trace.only({}));
    record(list, 5); // it grows on the way: 1, 2, 4, 8
    struct Case
    {
        std::size_t first;
        std::size_t count;
        std::vector<unsigned int> executed;
    };
    const std::size_t huge = static_cast<std::size_t>(-1);
    const Case cases[] = {{2, 10, {2, 3, 4}}, {7, 1, {}},    {1, 2, {1, 2}},  {0, 0, {}},
                          {3, huge, {3, 4}},  {huge, 2, {}}, {huge, huge, {}}}; // first + count would wrap
    for (const Case& range : cases)
    {
        list.execute(range.first, range.count);
        EXPECT_TRUE(trace.only(draws(range.executed))) << range.first << ' ' << range.count;
    }
    list.execute();
    EXPECT_TRUE(trace.only(draws({0, 1, 2, 3, 4})));
}

TEST_F(CommandListTest, MatricesComeAgainAfterReset)
{
    CommandList list;
    glm::mat4* const pFirst = list.allocMatrix();
    EXPECT_EQ(list.allocMatrix(), pFirst + 1);
    list.reset();
    EXPECT_EQ(list.allocMatrix(), pFirst);
    list.release();
    *list.allocMatrix() = glm::mat4(1);
}

/// Fills a command at random, of few kinds and values so that runs of equal ones are frequent.
void fill(Command& command, std::mt19937& random, unsigned int first)
{
    const auto below = [&random](unsigned int n) { return static_cast<unsigned int>(random() % n); };
    const auto primitive = static_cast<Primitive>(below(2));
    const unsigned int kind = below(4);
    if (kind == 0)
        command.createDrawArrays(primitive, first, 3);
    else if (kind == 1)
        command.createDrawElements(primitive, first, 3);
    else if (kind == 2)
        command.createDrawArraysInstanced(primitive, first, 3, 7);
    else
        command.createDrawArrayPatches(first, 3, 3);
    const td::ColorID color = below(2) == 0 ? td::ColorID::Red : td::ColorID::Blue;
    const unsigned int state = below(4);
    if (state == 1)
        command.setColor(color);
    else if (state == 2 && kind < 2)
        command.setColor(color, 51);
    else if (state == 3)
        command.setTexture(Textures::Unit::T2, static_cast<char>(below(2)));
}

// What a command does alone is tested where commands are; here it does it in the midst of its like.
TEST_F(CommandListTest, RunsOfAnyLengthDoWhatEachCommandDoesAlone)
{
    gui::Texture image = test::image(1, 1, 3);
    Textures textures;
    ASSERT_TRUE(textures.append({&image, &image}, gui::gl::Texture::Type::Tex2D));
    ColorProgram program;
    ASSERT_TRUE(program.link("vs", "fs"));
    program.setTextures(&textures);
    std::mt19937 random(1);
    constexpr unsigned int cCommands = 3000;
    CommandList list(cCommands);
    std::vector<Command*> commands;
    for (unsigned int i = 0; i < cCommands; ++i)
    {
        commands.push_back(list.get());
        fill(*commands.back(), random, i);
        if (random() % 16 != 0)
        {
            ASSERT_TRUE(list.encode(commands.back()));
        }
        if (random() % 16 == 0) // encoded already, or not
            commands.back()->setTypeInfo(commands.back()->getType(), Command::DrawSubType::None);
    }
    program.activate();
    trace.clear();
    for (const Command* const pCommand : commands)
        pCommand->execute();
    const std::vector<std::string> calls = trace.calls();
    const std::vector<std::string> lines = log.take();
    const std::vector<std::string> conditions(lines.size(), "false");
    EXPECT_GT(lines.size(), 0u); // those that are not encoded
    EXPECT_GT(calls.size(), std::size_t(cCommands));
    EXPECT_TRUE(asserts.caught(conditions));

    program.activate();
    trace.clear();
    list.execute();
    EXPECT_TRUE(trace.only(calls));
    EXPECT_EQ(log.take(), lines);
    EXPECT_TRUE(asserts.caught(conditions));
}

TEST_F(CommandListTest, ReplayAllocatesNothing)
{
    ColorProgram program;
    ASSERT_TRUE(program.link("vs", "fs"));
    CommandList list;
    for (int i = 0; i < 100; ++i)
    {
        Command* pCommand = list.get();
        pCommand->createDrawElements(Primitive::Triangles, 0, 3);
        pCommand->setColor(i % 2 == 0 ? td::ColorID::Red : td::ColorID::Blue);
        ASSERT_TRUE(list.encode(pCommand));
    }
    program.activate();
    static int s_nDraws = 0;
    static int s_nColors = 0;
    // The trace's own functions allocate.
    const auto draw = std::exchange(epoxy_glDrawElements, [](GLenum, GLsizei, GLenum, const void*) { ++s_nDraws; });
    const auto color = std::exchange(epoxy_glUniform3fv, [](GLint, GLsizei, const GLfloat*) { ++s_nColors; });
    const unsigned long nBefore = test::countedAllocations();
    list.execute();
    const unsigned long nAllocations = test::countedAllocations() - nBefore;
    epoxy_glDrawElements = draw;
    epoxy_glUniform3fv = color;
    EXPECT_EQ(nAllocations, 0u);
    EXPECT_GT(nBefore, 0u);
    EXPECT_EQ(s_nDraws, 100);
    EXPECT_EQ(s_nColors, 100);
}

} // namespace
