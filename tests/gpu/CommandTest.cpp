#include "support/Images.h"
#include "support/NullGL.h"

#include <gui/Color.h>
#include <gui/gl/Command.h>
#include <gui/gl/Context.h>
#include <gui/gl/Program.h>
#include <gui/gl/Textures.h>

#include <epoxy/gl.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <cstring>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace
{

using gui::gl::Command;
using gui::gl::Primitive;
using gui::gl::Textures;
using test::ColorProgram;
using Type = Command::Type;
using SubType = Command::DrawSubType;
using Uniform = Command::_additinalUniform;

Command triangles(unsigned int count = 3)
{
    Command command;
    command.createDrawArrays(Primitive::Triangles, 0, count);
    return command;
}

class CommandTest : public test::NullGL
{
protected:
    void activate(ColorProgram& program)
    {
        ASSERT_TRUE(program.link("vs", "fs"));
        program.activate();
        trace.clear();
    }

    /// The RGBA colour that a command sends to a program that has none yet.
    static std::array<float, 4> sentBy(Command command, ColorProgram& program)
    {
        static std::array<float, 4> s_sent;
        s_sent = {};
        const auto copy = [](GLint, GLsizei, const GLfloat* values) { std::copy(values, values + 4, s_sent.begin()); };
        const auto loaded = std::exchange(epoxy_glUniform4fv, copy);
        program.activate();
        EXPECT_TRUE(command.encode() && command.execute());
        epoxy_glUniform4fv = loaded;
        return s_sent;
    }

    std::vector<std::string> callsOf(Command command)
    {
        EXPECT_TRUE(command.encode());
        trace.clear();
        EXPECT_TRUE(command.execute());
        return trace.calls();
    }
};

using Calls = std::vector<std::string>;

TEST_F(CommandTest, EachKindDrawsEachPrimitive)
{
    for (int mode = 0; mode < 8; ++mode)
    {
        // GL's modes follow the primitives' order, but for patches, triangle fans and strips.
        const std::string glMode = std::to_string(std::vector<int>{0, 1, 3, 2, 4, 6, 5, 14}[std::size_t(mode)]);
        const auto primitive = static_cast<Primitive>(mode);
        Command arrays, elements, arraysInstanced, elementsInstanced;
        arrays.createDrawArrays(primitive, INT_MAX, 12);
        elements.createDrawElements(primitive, 6, 12);
        arraysInstanced.createDrawArraysInstanced(primitive, 6, 12, 9);
        elementsInstanced.createDrawElementsInstanced(primitive, 0x40000006, 12, 9);
        EXPECT_EQ(callsOf(arrays), Calls{"glDrawArrays(" + glMode + ", 2147483647, 12)"});
        EXPECT_EQ(callsOf(elements), Calls{"glDrawElements(" + glMode + ", 12, 0x1405, 24)"});
        EXPECT_EQ(callsOf(arraysInstanced), Calls{"glDrawArraysInstanced(" + glMode + ", 6, 12, 9)"});
        // In 32 bits the offset would wrap to 24.
        EXPECT_EQ(callsOf(elementsInstanced), Calls{"glDrawElementsInstanced(" + glMode + ", 12, 0x1405, ptr, 9)"});
    }
}

TEST_F(CommandTest, PointsAndPatchesSetTheirSizeFirst)
{
    Command points, indexedPoints, patches, indexedPatches;
    points.createDrawArrayPoints(5, 6, 2.5f);
    EXPECT_EQ(callsOf(points), (Calls{"glPointSize(2.5)", "glDrawArrays(0, 5, 6)"}));
    indexedPoints.createDrawElementPoints(5, 6, 0.5f);
    EXPECT_EQ(callsOf(indexedPoints), (Calls{"glPointSize(0.5)", "glDrawElements(0, 6, 0x1405, 20)"}));
    patches.createDrawArrayPatches(0, 9, 3);
    EXPECT_EQ(callsOf(patches), (Calls{"glPatchParameteri(0x8e72, 3)", "glDrawArrays(14, 0, 9)"}));
    indexedPatches.createDrawElementPatches(2, 8, 4);
    EXPECT_EQ(callsOf(indexedPatches), (Calls{"glPatchParameteri(0x8e72, 4)", "glDrawElements(14, 8, 0x1405, 8)"}));
}

TEST_F(CommandTest, ColorsAreSentWhenTheyDiffer)
{
    ColorProgram program;
    activate(program);
    Command red = triangles();
    red.setColor(td::ColorID::Red);
    Command orange = triangles();
    orange.setColor(td::ColorID::Orange, 128);
    Command nothing = triangles();
    nothing.setColor(td::ColorID::Black, 0);
    for (Command* command : {&red, &orange, &nothing})
        ASSERT_TRUE(command->encode());
    nothing.execute(); // equals what a fresh program is taken to have
    red.execute();
    red.execute();
    orange.execute();
    orange.execute();
    red.execute();
    const std::string draw = "glDrawArrays(4, 0, 3)";
    const std::string sendRed = "glUniform3fv(3, 1, [1 0 0])";
    EXPECT_TRUE(trace.only(
        {draw, sendRed, draw, draw, "glUniform4fv(4, 1, [1 0.647059 0 0.501961])", draw, draw, sendRed, draw}));
    program.activate();
    trace.clear();
    red.execute();
    red.setColor(td::ColorID::Blue); // the value may change after encoding
    red.execute();
    red.setColor("#00ff0088"); // a colour of no table, whose alpha is not asked for
    red.execute();
    orange.setColor("#ff000033", td::Color("#ff000033").alpha());
    orange.execute();
    red.setColor(td::ColorID::Blue);
    red.execute();
    const std::string sendBlue = "glUniform3fv(3, 1, [0 0 1])";
    EXPECT_TRUE(trace.only({sendRed, draw, sendBlue, draw, "glUniform3fv(3, 1, [0 1 0])", draw,
                            "glUniform4fv(4, 1, [1 0 0 0.2])", draw, sendBlue, draw}));
    // And so may whether there is one.
    program.activate();
    trace.clear();
    red.setTypeInfo(red.getType(), SubType::None);
    red.execute();
    red.setTypeInfo(red.getType(), SubType::DrawWithClr3);
    red.execute();
    EXPECT_TRUE(trace.only({draw, "glUniform3fv(3, 1, [0 0 1])", draw}));
}

// A channel times 1/255 is often not the channel over 255.
TEST_F(CommandTest, ColorsAreExactQuotients)
{
    ColorProgram program;
    activate(program);
    for (int i = 0; i < 256; ++i)
    {
        const auto id = static_cast<td::ColorID>(i % 183);
        const td::Color color = gui::Color::toTDColor(id);
        Command command = triangles();
        command.setColor(id, i);
        const std::array<float, 4> expected{color.red() / 255.0f, color.green() / 255.0f, color.blue() / 255.0f,
                                            static_cast<float>(i) / 255.0f};
        EXPECT_EQ(sentBy(command, program), expected) << i;
    }
}

TEST_F(CommandTest, AlphaIsCutToAByte)
{
    ColorProgram program;
    activate(program);
    const std::pair<float, int> cases[] = {{0.5f, 127},   {1.0f, 255}, {-0.5f, 0},   {-1e30f, 0},       {0.0f, 0},
                                           {0.999f, 254}, {2.0f, 254}, {1e30f, 255}, {std::nanf(""), 0}};
    for (const auto& [alpha, sent] : cases)
    {
        Command command = triangles();
        command.setColor(td::ColorID::White, alpha);
        EXPECT_EQ(sentBy(command, program)[3], static_cast<float>(sent) / 255.0f) << alpha;
    }
}

TEST_F(CommandTest, TexturesAreBoundWhenTheyDiffer)
{
    ColorProgram program;
    gui::Texture dot = test::image(1, 1, 3);
    Textures textures;
    for (int i = 0; i < 201; ++i)
        ASSERT_TRUE(textures.append({&dot}, gui::gl::Texture::Type::Tex2D));
    program.setTextures(&textures);
    activate(program);
    Command two = triangles(), three = triangles(), far = triangles(), otherUnit = triangles();
    two.setTexture(Textures::Unit::T1, 2);
    three.setTexture(Textures::Unit::T1, 3);
    far.setTexture(Textures::Unit::T1, static_cast<char>(200)); // negative as a char
    otherUnit.setTexture(Textures::Unit::T0, 4);                // as many together as the one before
    for (Command* command : {&two, &three, &far, &otherUnit})
        ASSERT_TRUE(command->encode());
    for (Command* command : {&two, &two, &three, &otherUnit, &far})
        EXPECT_TRUE(command->execute());
    const std::string draw = "glDrawArrays(4, 0, 3)";
    const std::string unit1 = "glActiveTexture(0x84c1)";
    EXPECT_TRUE(trace.only({unit1, "glBindTexture(0xde1, 3)", draw, draw, unit1, "glBindTexture(0xde1, 4)", draw,
                            "glActiveTexture(0x84c0)", "glBindTexture(0xde1, 5)", draw, unit1,
                            "glBindTexture(0xde1, 201)", draw}));

    // All that binds another texture where the command's was.
    using gui::gl::Context;
    const std::pair<const char*, std::function<void()>> binds[] = {
        {"append", [&] { EXPECT_TRUE(textures.append({&dot}, gui::gl::Texture::Type::Tex2D)); }},
        {"setActive", [&] { textures.setActive(Textures::Unit::T0, 5); }},
        {"setUniform", [&] { textures.setUniform(1, Textures::Unit::T0, 5); }},
        {"bindToActiveUnit", [&] { textures.bindToActiveUnit(5); }},
        {"bindToSamplerUnit",
         [] { Textures::bindToSamplerUnit(6, Textures::Unit::T0, gui::gl::Texture::Type::CubeMap); }},
        {"the context's", [] { Context::bindTextureToCurrentlyActiveTextureUnit(6, gui::gl::Texture::Type::Tex2D); }},
        {"the program's", [&] { program.setUniformValue(1, gui::gl::Texture::Type::Tex2D, 6, Textures::Unit::T0); }}};
    for (const auto& [name, bind] : binds)
    {
        bind();
        trace.clear();
        EXPECT_TRUE(otherUnit.execute());
        EXPECT_TRUE(otherUnit.execute());
        EXPECT_EQ(trace.count("glBindTexture"), 1U) << name;
    }
    trace.clear();

    program.setTextures(nullptr);
    EXPECT_FALSE(otherUnit.execute());
    EXPECT_TRUE(log.said("Error! Textures used without being set in an active program!"));
    EXPECT_TRUE(asserts.caught("pTextures"));
    EXPECT_TRUE(trace.only({}));
}

TEST_F(CommandTest, WithoutACurrentProgramNothingIsSentOrDrawn)
{
    ColorProgram kept;
    {
        ColorProgram program; // that is no more
        activate(program);
    }
    trace.clear();
    const glm::mat4 matrix(1);
    Command color = triangles(), alpha = triangles(), texture = triangles(), mvp;
    color.setColor(td::ColorID::Red);
    alpha.setColor(td::ColorID::Red, 9);
    mvp.createMVPSetter(&matrix);
    for (const bool isKept : {false, true})
    {
        if (isKept)
        {
            activate(kept);
            gui::gl::Program::useNone();
            trace.clear();
        }
        for (Command* command : {&color, &alpha, &mvp})
        {
            ASSERT_TRUE(command->encode());
            EXPECT_FALSE(command->execute());
            EXPECT_TRUE(asserts.caught("s_pCurrentProgram != nullptr"));
        }
    }
    texture.setTexture(Textures::Unit::T0, 0);
    ASSERT_TRUE(texture.encode());
    EXPECT_FALSE(texture.execute());
    EXPECT_TRUE(log.said("Error! Textures used without being set in an active program!"));
    EXPECT_TRUE(asserts.caught("pTextures"));
    EXPECT_TRUE(trace.only({}));
}

TEST_F(CommandTest, InstancesAreGivenToPlainDraws)
{
    Command elements;
    elements.createDrawElements(Primitive::Triangles, 0, 12);
    elements.setNumberOfInstances(5);
    EXPECT_EQ(elements.getType(), Type::DrawElementsInstanced);
    EXPECT_EQ(callsOf(elements), Calls{"glDrawElementsInstanced(4, 12, 0x1405, 0, 5)"});
    Command arrays = triangles();
    ASSERT_TRUE(arrays.encode());
    arrays.setNumberOfInstances(5);
    trace.clear();
    arrays.execute(); // takes effect with the next encode
    EXPECT_TRUE(trace.only({"glDrawArrays(4, 0, 3)"}));
    EXPECT_EQ(callsOf(arrays), Calls{"glDrawArraysInstanced(4, 0, 3, 5)"});
}

TEST_F(CommandTest, MatricesAreReadAtEachExecution)
{
    ColorProgram program;
    activate(program);
    glm::mat4 matrix(1);
    Command command;
    command.createMVPSetter(&matrix);
    EXPECT_FALSE(command.isDraw());
    EXPECT_EQ(callsOf(command), Calls{"glUniformMatrix4fv(16, 1, 0, [1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1])"});
    matrix = glm::mat4(2);
    EXPECT_EQ(callsOf(command), Calls{"glUniformMatrix4fv(16, 1, 0, [2 0 0 0 0 2 0 0 0 0 2 0 0 0 0 2])"});
}

TEST_F(CommandTest, FurtherUniformsFollowTheMatrix)
{
    ColorProgram program;
    activate(program);
    const glm::mat4 matrix(1);
    struct Case
    {
        std::vector<Uniform> uniforms;
        Calls sent;
    };
    const auto yellow = static_cast<td::BYTE>(td::ColorID::Yellow);
    const Case cases[] = {
        {{{1, 9, {200}}}, {"glUniform1i(9, 200)"}},
        {{{2, 255, {31}}}, {"glUniform1i(255, 31)"}},
        {{{3, 9, {yellow}}}, {"glUniform3fv(9, 1, [1 1 0])"}},
        {{{4, 9, {255, 0, 51}}}, {"glUniform3fv(9, 1, [1 0 0.2])"}},
        {{{5, 9, {255, 0, 51, 102}}}, {"glUniform4fv(9, 1, [1 0 0.2 0.4])"}},
        {{{1, 9, {7}}, {2, 8, {6}}}, {"glUniform1i(9, 7)", "glUniform1i(8, 6)"}},
        {{{1, 9, {7}}, {2, 8, {6}}, {1, 7, {5}}}, {"glUniform1i(9, 7)", "glUniform1i(8, 6)"}}, // no room for the third
        {{{4, 9, {255, 0, 51}}, {1, 8, {6}}}, {"glUniform3fv(9, 1, [1 0 0.2])"}},
    };
    for (const Case& c : cases)
    {
        std::vector<Uniform> uniforms = c.uniforms;
        Command command;
        command.createMVPSetter(&matrix, uniforms.data(), static_cast<unsigned char>(uniforms.size()));
        Calls calls = callsOf(command);
        ASSERT_FALSE(calls.empty());
        EXPECT_TRUE(calls.front().starts_with("glUniformMatrix4fv(16, 1"));
        calls.erase(calls.begin());
        EXPECT_EQ(calls, c.sent);
    }
}

using Act = std::function<void(Command&)>;

/// Commands of all kinds.
const std::vector<Act>& creations()
{
    static const glm::mat4 s_matrix(1);
    static Uniform s_uniform{1, 2, {3}};
    static const std::vector<Act> s_creations{
        [](Command& c) { c.createDrawArrays(Primitive::Triangles, 0, 1); },
        [](Command& c) { c.createDrawElements(Primitive::Triangles, 0, 1); },
        [](Command& c) { c.createDrawArraysInstanced(Primitive::Points, 0, 1, 1); },
        [](Command& c) { c.createDrawElementsInstanced(Primitive::Points, 0, 1, 1); },
        [](Command& c) { c.createDrawArrayPoints(0, 1, 1); },
        [](Command& c) { c.createDrawElementPoints(0, 1, 1); },
        [](Command& c) { c.createDrawArrayPatches(0, 1, 1); },
        [](Command& c) { c.createDrawElementPatches(0, 1, 1); },
        [](Command& c) { c.createMVPSetter(&s_matrix); },
        [](Command& c) { c.createUniformSetter(&s_uniform, 1); },
    };
    return s_creations;
}

/// A uniform of each type.
Act uniforms(std::vector<td::BYTE> types)
{
    return [types](Command& command)
    {
        std::vector<Uniform> list;
        for (const td::BYTE type : types)
            list.push_back({type, 1, {}});
        EXPECT_FALSE(command.setAdditionalUniforms(list.data(), static_cast<unsigned char>(list.size())));
    };
}

struct Misuse
{
    Act before;
    Act act;
    std::string condition;
    const char* function = nullptr; ///< that reports it
};

std::vector<Misuse> misuses()
{
    const Act nothing = [](Command&) {}, encode = [](Command&c) { EXPECT_FALSE(c.encode()); };
    const Act mvp = creations()[8], uniformSetter = creations()[9];
    const Act two = [](Command& c) { c.setNumberOfInstances(2); };
    const std::string tooLong = "first <= UINT_MAX && count <= INT_MAX", badType = "type < UniformSize.size()";
    std::vector<Misuse> all{
        {nothing, [](Command& c) { c.createDrawArrayPatches(0, 10, 3); }, "nVertices % verticesPerPatch == 0"},
        {nothing, [](Command& c) { c.createDrawElementPatches(0, 10, 3); }, "nIndices % verticesPerPatch == 0"},
        {nothing, [](Command& c) { c.createDrawArrayPatches(0, 9, 0); }, "verticesPerPatch > 0"},
        {nothing, [](Command& c) { c.createDrawElementPatches(0, 9, -3); }, "verticesPerPatch > 0"},
        {nothing, [](Command& c) { c.createDrawArrays(Primitive::Points, std::size_t(INT_MAX) + 1, 1); },
         "first <= INT_MAX && count <= INT_MAX"},
        {nothing, [](Command& c) { c.createDrawElements(Primitive::Points, std::size_t(UINT_MAX) + 1, 1); }, tooLong},
        {nothing, [](Command& c) { c.createDrawElementPoints(0, unsigned(INT_MAX) + 1, 1); }, tooLong},
        {nothing, [](Command& c) { c.createMVPSetter(nullptr); }, "pMatrix != nullptr"},
        {creations()[0], [](Command& c) { c.setColor(td::ColorID::White, 256); }, "alpha >= 0 && alpha <= 255"},
        {[](Command& c) { c = triangles(), c.setColor(td::ColorID::Red, 5); }, two,
         "_drawSubType != (td::BYTE) DrawSubType::DrawWithClr4"},
        {nothing, two, "false", "setNumberOfInstances"},
        {creations()[3], two, "false", "setNumberOfInstances"},
        {creations()[4], two, "false", "setNumberOfInstances"},
        {nothing, encode, "false", "encode"},
        {uniformSetter, encode, "false", "encode"},
        // A uniform setter has 13 bytes for values, a matrix setter 5.
        {mvp, uniforms({6}), "uniformSize < 5"},
        {mvp, uniforms({10}), "uniformSize < 5"},
        {uniformSetter, uniforms({6}), "false"},
        {mvp, uniforms({0}), "false"},
        {uniformSetter, uniforms({0}), "false"},
        {uniformSetter, uniforms({1, 6}), "false"},
        {mvp, uniforms({21}), badType},
        {uniformSetter, uniforms({255}), badType},
        {uniformSetter, uniforms({1, 255}), badType},
        {creations()[0], uniforms({1}), "false"},
        {mvp, [](Command& c) { EXPECT_FALSE(c.setAdditionalUniforms(nullptr, 1)); }, "pUniforms"},
    };
    for (const Act& create : creations())
        all.push_back({[](Command& c) { c = triangles(); }, create, "_type == (td::BYTE) Type::None"});
    const char* const encoders[] = {"encodeDrawArrays", "encodeDrawElements", "encodeDrawArraysInstanced",
                                    "encodeDrawElementsInstanced"};
    for (const Primitive unknown : {Primitive(8), Primitive(255)})
    {
        const Act creates[] = {[=](Command& c) { c.createDrawArrays(unknown, 0, 1); },
                               [=](Command& c) { c.createDrawElements(unknown, 0, 1); },
                               [=](Command& c) { c.createDrawArraysInstanced(unknown, 0, 1, 1); },
                               [=](Command& c) { c.createDrawElementsInstanced(unknown, 0, 1, 1); }};
        for (std::size_t i = 0; i < 4; ++i)
            all.push_back({creates[i], encode, "false", encoders[i]});
    }
    // One kind of colour or texture for each command, chosen before it is encoded; an RGBA colour takes the word that
    // holds instances, point and patch sizes.
    const Act setters[] = {[](Command& c) { c.setColor(td::ColorID::Red); },
                           [](Command& c) { c.setColor(td::ColorID::Red, 5); },
                           [](Command& c) { c.setTexture(Textures::Unit::T0, 1); }};
    const char* const names[] = {"DrawWithClr3", "DrawWithClr4", "DrawWithTexture"};
    for (std::size_t i = 0; i < 3; ++i)
    {
        const std::string draws = "_drawSubType == (td::BYTE) DrawSubType::", own = draws + names[i];
        all.push_back({nothing, setters[i], "_type != 0"});
        all.push_back({mvp, setters[i], "false"});
        all.push_back({[](Command& c) { c = triangles(), c.encode(); }, setters[i], own});
        for (const std::size_t other : {(i + 1) % 3, (i + 2) % 3})
        {
            const Act set = setters[other];
            all.push_back({[=](Command& c) { c = triangles(), set(c); }, setters[i], draws + "None || " + own});
            all.push_back({[=](Command& c) { c = triangles(), set(c), c.encode(); }, setters[i], own});
        }
    }
    for (std::size_t i = 2; i < 8; ++i)
        all.push_back({creations()[i], setters[1],
                       "_type == (td::BYTE) Type::DrawArrays || _type == (td::BYTE) Type::DrawElements"});
    return all;
}

TEST_F(CommandTest, MisuseIsSaidAndTouchesNothing)
{
    for (const Misuse& misuse : misuses())
    {
        SCOPED_TRACE(misuse.condition);
        Command command, before;
        misuse.before(command);
        asserts.caught(std::vector<std::string>{}); // not this one's
        std::memcpy(static_cast<void*>(&before), &command, sizeof command);
        misuse.act(command);
        EXPECT_TRUE(asserts.caught(misuse.condition));
        if (td::cAssertReports && misuse.function != nullptr)
        {
            EXPECT_EQ(asserts.lastFunction(), misuse.function);
        }
        EXPECT_EQ(std::memcmp(&before, &command, sizeof command), 0);
        for (const std::string& line : log.take())
            EXPECT_EQ(line, "Error! Command::setNumberOfIstances can be only called after createDrawElements or "
                            "createDrawArrays!");
    }
}

TEST_F(CommandTest, UniformsAreTakenAsLongAsTheyFit)
{
    std::vector<Uniform> many(5, {1, 1, {}});
    Command command;
    EXPECT_TRUE(command.createUniformSetter(many.data(), 4)); // 1 + 3 * 3 of 13 bytes
    command.reset();
    EXPECT_FALSE(command.createUniformSetter(many.data(), 5));
    many[0].type = 5;
    many[1].type = 4; // 4 + 5 + 3 of them: one stays free
    EXPECT_TRUE(command.setAdditionalUniforms(many.data(), 3));
    command.reset();
    EXPECT_EQ(command.getType(), Type::None);
    EXPECT_FALSE(command.execute());
    EXPECT_TRUE(log.said("Error! Command not encoded!"));
    EXPECT_TRUE(asserts.caught("false"));
}

} // namespace
