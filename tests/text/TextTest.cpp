#include "FontFixture.h"

#include <vo/Log.h>

#include <string>
#include <vector>

namespace
{

using gui::gl::Textures;
using test::FontFile;

class TextTest : public test::FontFixture
{
protected:
    TextTest()
    {
        for (const auto& [name, location] : {std::pair("mvp", 3), {"textureSampler", 5}, {"color", 7}, {"z", 9}})
            trace.setUniformLocation(name, location);
    }

    void loadFont(unsigned char index, std::u32string_view characters)
    {
        const std::string path = write(FontFile(characters).bytes());
        EXPECT_EQ(renderer->loadFont(index, path.c_str()), renderer->getFont(index));
    }
};

TEST_F(TextTest, InitLinksItsShadersAndSetsTheSamplerInUse)
{
    renderer->init({800, 600}, Textures::Unit::T3);
    EXPECT_TRUE(trace.inOrder({"glUseProgram(1)", "glUniform1i(5, 3)", "glUseProgram(0)"}));
    renderer->init({800, 600}, Textures::Unit::T0); // in a new context, say
    EXPECT_EQ(trace.aliveNames(test::GLTrace::Kind::Program).size(), 1u);
    renderer->init({800, 600}, Textures::Unit(32));
    EXPECT_TRUE(asserts.caught("unit <= Textures::Unit::T31"));

    trace.failLinking("no");
    renderer->init({800, 600}, Textures::Unit::T0);
    EXPECT_TRUE(asserts.caught("false"));
    EXPECT_EQ(log.take().size(), 1u);
    trace.clear();
    renderer->render(Text::Ctrl::None);
    EXPECT_TRUE(asserts.caught("_program.isOK()"));
    EXPECT_TRUE(trace.only({}));
    trace.compileAndLinkAll();
    trace.setUniformLocation("color", -1);
    renderer->init({800, 600}, Textures::Unit::T0);
    EXPECT_TRUE(asserts.caught("_colorPos >= 0"));
}

TEST_F(TextTest, RenderDrawsEachStringWithItsColorAndDepthWhereTheyChange)
{
    renderer->allocFonts(2);
    loadFont(0, U"ab");
    loadFont(1, U"c");
    Font& first = *renderer->getFont(0);
    const auto add = [&](td::ColorID color)
    {
        first.addString({0, 0}, "ab", 0, td::ColorID::Red, 1);
        first.addString({0, 20}, "a", 0, td::ColorID::Red, 1);
        first.addString({0, 40}, "", 0, Format{.z = 0.5f, .colorID = td::ColorID::Red});
        first.addString({0, 60}, "b", 0, Format{.z = 0.5f, .colorID = color});
    };
    add(td::ColorID::Lime);
    renderer->init({2, 4}, Textures::Unit::T2);
    renderer->setFrameSize({0, 9}); // changes nothing
    renderer->setFrameSize({9, 0});
    renderer->commit();
    trace.clear();
    renderer->render(Text::Ctrl::BlendNoDepthTest);
    EXPECT_TRUE(trace.inOrder(
        {"glUseProgram(1)", "glUniformMatrix4fv(3, 1, 0, [1 0 0 0 0 -0.5 0 0 0 0 -1 0 -1 1 -0 1])", "glUniform1i(5, 2)",
         "glActiveTexture(0x84c2)", "glBindVertexArray(1)", "glBindTexture(0xde1, 1)", "glUniform4fv(7, 1, [1 0 0 1])",
         "glUniform1f(9, 0)", "glDrawArrays(4, 0, 12)", "glDrawArrays(4, 12, 6)", "glUniform1f(9, 0.5)",
         "glDrawArrays(4, 18, 0)", "glUniform4fv(7, 1, [0 1 0 1])", "glDrawArrays(4, 18, 6)", "glBindVertexArray(2)",
         "glDisable(0xbe2)", "glBindVertexArray(0)", "glUseProgram(0)"}));
    EXPECT_EQ(trace.count("glUniform4fv") + trace.count("glUniform1f"), 4u);

    first.reset(); // the same strings, another colour
    add(td::ColorID::Blue);
    renderer->render(Text::Ctrl::None);
    EXPECT_TRUE(trace.inOrder({"glUniform4fv(7, 1, [1 0 0 1])", "glDrawArrays(4, 0, 12)", "glDrawArrays(4, 12, 6)",
                               "glDrawArrays(4, 18, 0)", "glUniform4fv(7, 1, [0 0 1 1])", "glDrawArrays(4, 18, 6)"}));
}

TEST_F(TextTest, CtrlSaysWhatIsTurnedOffAndOn)
{
    const std::vector<std::string> off[] = {
        {}, {"glDisable(0xb71)"}, {"glDisable(0xb44)"}, {"glDisable(0xb71)", "glDisable(0xb44)"}};
    for (unsigned int value = 0; value <= 9; ++value)
    {
        std::vector<std::string> expected = value > 7 ? off[0] : off[value % 4];
        if (value >= 4 && value <= 7)
            expected.insert(expected.end(), {"glEnable(0xbe2)", "glBlendFunc(0x302, 0x303)"});
        gui::gl::startCtrl(Text::Ctrl(value));
        EXPECT_TRUE(trace.only(expected)) << value;
        gui::gl::endCtrl(Text::Ctrl(value));
        EXPECT_TRUE(trace.only(value >= 4 ? std::vector<std::string>{"glDisable(0xbe2)"} : std::vector<std::string>{}));
    }
}

TEST_F(TextTest, FontsStayUntilTheirNumberChanges)
{
    EXPECT_DEATH((vo::setLogSink({}), renderer->getFont(1)), "Error! Text::getFont 1 of 1 fonts! Call allocFonts");
    renderer->allocFonts(2);
    loadFont(1, U"ab");
    renderer->getFont(1)->addString({}, "ab", 0, td::ColorID::Red, 1);
    renderer->allocFonts(2);
    EXPECT_EQ(takeVertices(*renderer->getFont(1)).size(), 48u);
    renderer->commit();
    renderer->allocFonts(3); // deletes what the fonts had
    EXPECT_TRUE(trace.nothingAlive());
    EXPECT_EQ(renderer->getFont(1)->measure("ab", 0, {}), td::Size<float>());
}

TEST_F(TextTest, FontsThatCannotBeDrawnAreLeftOut)
{
    const std::vector<std::string> missing{"_textureID != 0", "_textureID != 0"};
    renderer->allocFonts(3);
    loadFont(2, U"ab");
    renderer->getFont(2)->addString({}, "ab", 0, td::ColorID::Red, 1);
    renderer->init({2, 4}, Textures::Unit::T0);
    for (int frame = 0; frame < 2; ++frame)
    {
        trace.clear();
        renderer->render(Text::Ctrl::None);
        EXPECT_EQ(trace.count("glDrawArrays"), 1u);
        EXPECT_EQ(log.take(), frame == 0 ? std::vector<std::string>{"Error! Text::render font 0 has no texture!"}
                                         : std::vector<std::string>{});
        EXPECT_TRUE(asserts.caught(missing));
    }
    renderer->getFont(2)->reset();
    renderer->getFont(2)->addString({}, "b", 0, td::ColorID::Red, 1);
    trace.failNext("glGenBuffers");
    trace.clear();
    renderer->render(Text::Ctrl::None);
    EXPECT_EQ(trace.count("glDrawArrays"), 0u);
    EXPECT_TRUE(log.said("ERROR! Font::commit cannot create VBO!"));
    EXPECT_TRUE(asserts.caught(missing));

    gui::gl::Program other;
    Font fresh;
    fresh.draw(&other);
    EXPECT_TRUE(asserts.caught("_vao != 0"));
    renderer->render(Text::Ctrl::None);
    EXPECT_TRUE(asserts.caught(missing));
    trace.clear();
    renderer->getFont(2)->draw(&other);
    EXPECT_TRUE(asserts.caught("pTextProg != nullptr"));
    EXPECT_TRUE(trace.only({}));
}

} // namespace
