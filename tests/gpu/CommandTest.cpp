#include "support/Images.h"
#include "support/NullGL.h"

#include <gui/gl/Command.h>
#include <gui/gl/Context.h>
#include <gui/gl/Program.h>
#include <gui/gl/Textures.h>

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace
{

using gui::gl::Command;
using gui::gl::Primitive;
using gui::gl::Textures;
using Type = Command::Type;
using SubType = Command::DrawSubType;
using Uniform = Command::_additinalUniform;

struct TestProgram : gui::gl::Program
{
    void onLinked() override
    {
        _color3Location = 3;
        _color4Location = 4;
        _matrixLocation = 16;
    }
};

Command triangles(unsigned int count = 3)
{
    Command command;
    command.createDrawArrays(Primitive::Triangles, 0, count);
    return command;
}

class CommandTest : public test::NullGL
{
protected:
    void activate(TestProgram& program)
    {
        ASSERT_TRUE(program.link("vs", "fs"));
        program.activate();
        trace.clear();
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
    Command command;
    command.createDrawArrayPoints(5, 6, 2.5f);
    EXPECT_EQ(callsOf(command), (Calls{"glPointSize(2.5)", "glDrawArrays(0, 5, 6)"}));
    command.reset();
    command.createDrawElementPoints(5, 6, 0.5f);
    EXPECT_EQ(callsOf(command), (Calls{"glPointSize(0.5)", "glDrawElements(0, 6, 0x1405, 20)"}));
    command.reset();
    command.createDrawArrayPatches(0, 9, 3);
    EXPECT_EQ(callsOf(command), (Calls{"glPatchParameteri(0x8e72, 3)", "glDrawArrays(14, 0, 9)"}));
    command.reset();
    command.createDrawElementPatches(2, 8, 4);
    EXPECT_EQ(callsOf(command), (Calls{"glPatchParameteri(0x8e72, 4)", "glDrawElements(14, 8, 0x1405, 8)"}));
}

TEST_F(CommandTest, WhatGLCannotBeToldIsRefused)
{
    struct Case
    {
        const char* condition;
        std::function<void(Command&)> create;
    };
    const Case cases[] = {
        {"nVertices % verticesPerPatch == 0", [](Command& c) { c.createDrawArrayPatches(0, 10, 3); }},
        {"nIndices % verticesPerPatch == 0", [](Command& c) { c.createDrawElementPatches(0, 10, 3); }},
        {"verticesPerPatch > 0", [](Command& c) { c.createDrawArrayPatches(0, 9, 0); }},
        {"verticesPerPatch > 0", [](Command& c) { c.createDrawElementPatches(0, 9, -3); }},
        {"first <= INT_MAX && count <= INT_MAX",
         [](Command& c) { c.createDrawArrays(Primitive::Points, std::size_t(INT_MAX) + 1, 1); }},
        {"first <= UINT_MAX && count <= INT_MAX",
         [](Command& c) { c.createDrawElements(Primitive::Points, std::size_t(UINT_MAX) + 1, 1); }},
        {"first <= UINT_MAX && count <= INT_MAX",
         [](Command& c) { c.createDrawElementPoints(0, unsigned(INT_MAX) + 1, 1); }},
        {"pMatrix != nullptr", [](Command& c) { c.createMVPSetter(nullptr); }},
    };
    for (const Case& refused : cases)
    {
        Command command;
        refused.create(command);
        EXPECT_TRUE(asserts.caught(refused.condition));
        EXPECT_EQ(command.getType(), Type::None);
    }
}

/// Draws of instances, points and patches.
void (*const cWithNumbers[])(Command&) = {
    [](Command& c) { c.createDrawArraysInstanced(Primitive::Points, 0, 1, 1); },
    [](Command& c) { c.createDrawElementsInstanced(Primitive::Points, 0, 1, 1); },
    [](Command& c) { c.createDrawArrayPoints(0, 1, 1); },
    [](Command& c) { c.createDrawElementPoints(0, 1, 1); },
    [](Command& c) { c.createDrawArrayPatches(0, 1, 1); },
    [](Command& c) { c.createDrawElementPatches(0, 1, 1); },
};

TEST_F(CommandTest, ACommandIsCreatedOnce)
{
    const glm::mat4 matrix(1);
    Uniform uniform{1, 2, {3}};
    std::vector<std::function<void(Command&)>> creates(std::begin(cWithNumbers), std::end(cWithNumbers));
    creates.emplace_back([](Command& c) { c.createDrawArrays(Primitive::Points, 0, 1); });
    creates.emplace_back([](Command& c) { c.createDrawElements(Primitive::Points, 0, 1); });
    creates.emplace_back([&](Command& c) { c.createMVPSetter(&matrix); });
    creates.emplace_back([&](Command& c) { EXPECT_FALSE(c.createUniformSetter(&uniform, 1)); });
    for (const std::function<void(Command&)>& create : creates)
    {
        Command command = triangles(7);
        create(command);
        EXPECT_TRUE(asserts.caught("_type == (td::BYTE) Type::None"));
        EXPECT_EQ(callsOf(command), Calls{"glDrawArrays(4, 0, 7)"});
        command.reset();
        EXPECT_EQ(command.getType(), Type::None);
        EXPECT_FALSE(command.execute());
        EXPECT_TRUE(log.said("Error! Command not encoded!"));
        EXPECT_TRUE(asserts.caught("false"));
    }
}

TEST_F(CommandTest, ColorsAreSentWhenTheyDiffer)
{
    TestProgram program;
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
    EXPECT_TRUE(trace.only({sendRed, draw, "glUniform3fv(3, 1, [0 0 1])", draw}));
    // And so may whether there is one.
    program.activate();
    trace.clear();
    red.setTypeInfo(red.getType(), SubType::None);
    red.execute();
    red.setTypeInfo(red.getType(), SubType::DrawWithClr3);
    red.execute();
    EXPECT_TRUE(trace.only({draw, "glUniform3fv(3, 1, [0 0 1])", draw}));
}

TEST_F(CommandTest, AlphaIsCutToAByte)
{
    struct Case
    {
        float alpha;
        const char* sent;
    };
    const Case cases[] = {{0.5f, "127"},   {1.0f, "255"}, {-0.5f, "0"},   {-1e30f, "0"},       {0.0f, "0"},
                          {0.999f, "254"}, {2.0f, "254"}, {1e30f, "255"}, {std::nanf(""), "0"}};
    TestProgram program;
    activate(program);
    for (const Case& c : cases)
    {
        Command command = triangles();
        command.setColor(td::ColorID::White, c.alpha);
        ASSERT_TRUE(command.encode());
        program.activate();
        trace.clear();
        command.execute();
        Command same = triangles();
        same.setColor(td::ColorID::White, std::stoi(c.sent));
        ASSERT_TRUE(same.encode());
        same.execute();
        EXPECT_EQ(trace.count("glUniform4fv"), 1u) << c.alpha;
    }
    Command command = triangles();
    command.setColor(td::ColorID::White, 256);
    EXPECT_TRUE(asserts.caught("alpha >= 0 && alpha <= 255"));
}

TEST_F(CommandTest, TexturesAreBoundWhenTheyDiffer)
{
    TestProgram program;
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
    gui::gl::Program::useNone();
    trace.clear();
    const glm::mat4 matrix(1);
    Command color = triangles(), alpha = triangles(), texture = triangles(), mvp;
    color.setColor(td::ColorID::Red);
    alpha.setColor(td::ColorID::Red, 9);
    mvp.createMVPSetter(&matrix);
    for (Command* command : {&color, &alpha, &mvp})
    {
        ASSERT_TRUE(command->encode());
        EXPECT_FALSE(command->execute());
        EXPECT_TRUE(asserts.caught("s_pCurrentProgram != nullptr"));
    }
    texture.setTexture(Textures::Unit::T0, 0);
    ASSERT_TRUE(texture.encode());
    EXPECT_FALSE(texture.execute());
    EXPECT_TRUE(log.said("Error! Textures used without being set in an active program!"));
    EXPECT_TRUE(asserts.caught("pTextures"));
    EXPECT_TRUE(trace.only({}));
}

TEST_F(CommandTest, OneKindOfColorOrTexturePerCommand)
{
    const std::string draws = "(td::BYTE) DrawSubType::";
    const auto condition = [&](const std::string& name, bool encoded)
    {
        const std::string own = "_drawSubType == " + draws + name;
        return encoded ? own : "_drawSubType == " + draws + "None || " + own;
    };
    struct Setter
    {
        std::string name;
        std::function<void(Command&)> set;
    };
    const Setter setters[] = {
        {"DrawWithClr3", [](Command& c) { c.setColor(td::ColorID::Red); }},
        {"DrawWithClr4", [](Command& c) { c.setColor(td::ColorID::Red, 5); }},
        {"DrawWithTexture", [](Command& c) { c.setTexture(Textures::Unit::T0, 1); }},
    };
    const glm::mat4 matrix(1);
    for (const Setter& first : setters)
    {
        Command empty;
        first.set(empty);
        EXPECT_TRUE(asserts.caught("_type != 0"));
        Command mvp;
        mvp.createMVPSetter(&matrix);
        first.set(mvp);
        EXPECT_TRUE(asserts.caught("false"));
        Command plain = triangles();
        ASSERT_TRUE(plain.encode());
        first.set(plain);
        EXPECT_TRUE(asserts.caught(condition(first.name, true)));
        EXPECT_EQ(plain.getDrawSubType(), SubType::None);
        for (const Setter& second : setters)
        {
            for (const bool encoded : {false, true})
            {
                Command command = triangles();
                first.set(command);
                const SubType subType = command.getDrawSubType();
                ASSERT_TRUE(!encoded || command.encode());
                second.set(command);
                const bool isRefused = first.name != second.name;
                EXPECT_TRUE(isRefused ? asserts.caught(condition(second.name, encoded))
                                      : asserts.caught(std::vector<std::string>{}));
                EXPECT_EQ(command.getDrawSubType(), subType);
            }
        }
    }
}

// The word that holds an RGBA colour is the one of instances, point and patch sizes.
TEST_F(CommandTest, RGBAColorsAndTheOtherNumbersExcludeEachOther)
{
    for (const auto& create : cWithNumbers)
    {
        Command command;
        create(command);
        const Calls before = callsOf(command);
        command.setColor(td::ColorID::Red, 5);
        EXPECT_TRUE(asserts.caught("_type == (td::BYTE) Type::DrawArrays || _type == (td::BYTE) Type::DrawElements"));
        EXPECT_EQ(callsOf(command), before);
        command.setColor(td::ColorID::Red); // its bytes lie elsewhere
        EXPECT_EQ(command.getDrawSubType(), SubType::DrawWithClr3);
    }
    Command command = triangles();
    command.setColor(td::ColorID::Red, 5);
    command.setNumberOfInstances(2);
    EXPECT_TRUE(asserts.caught("_drawSubType != (td::BYTE) DrawSubType::DrawWithClr4"));
    EXPECT_EQ(command.getType(), Type::DrawArrays);
}

TEST_F(CommandTest, InstancesAreGivenToPlainDraws)
{
    Command elements, points, empty;
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
    points.createDrawArrayPoints(0, 1, 1);
    for (Command* command : {&points, &empty, &elements})
    {
        const Type type = command->getType();
        command->setNumberOfInstances(2);
        EXPECT_TRUE(log.said("Error! Command::setNumberOfIstances can be only called after createDrawElements or "
                             "createDrawArrays!"));
        EXPECT_TRUE(asserts.caught("false"));
        EXPECT_EQ(command->getType(), type);
    }
}

TEST_F(CommandTest, WhatCannotBeEncodedStaysAsItWas)
{
    Uniform uniform{1, 2, {3}};
    Command empty, uniforms;
    EXPECT_TRUE(uniforms.createUniformSetter(&uniform, 1));
    for (Command* command : {&empty, &uniforms})
    {
        EXPECT_FALSE(command->encode());
        EXPECT_TRUE(asserts.caught("false"));
        EXPECT_EQ(asserts.lastFunction(), td::cAssertReports ? "encode" : "");
    }
    struct Case
    {
        const char* function;
        std::function<void(Command&, Primitive)> create;
    };
    const Case cases[] = {
        {"encodeDrawArrays", [](Command& c, Primitive p) { c.createDrawArrays(p, 0, 1); }},
        {"encodeDrawElements", [](Command& c, Primitive p) { c.createDrawElements(p, 0, 1); }},
        {"encodeDrawArraysInstanced", [](Command& c, Primitive p) { c.createDrawArraysInstanced(p, 0, 1, 1); }},
        {"encodeDrawElementsInstanced", [](Command& c, Primitive p) { c.createDrawElementsInstanced(p, 0, 1, 1); }},
    };
    for (const Case& unknown : cases)
    {
        for (const int primitive : {8, 255})
        {
            Command command;
            unknown.create(command, Primitive(primitive));
            EXPECT_FALSE(command.encode());
            EXPECT_TRUE(asserts.caught("false"));
            EXPECT_EQ(asserts.lastFunction(), td::cAssertReports ? unknown.function : "");
        }
    }
}

TEST_F(CommandTest, MatricesAreReadAtEachExecution)
{
    TestProgram program;
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
    TestProgram program;
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

TEST_F(CommandTest, UniformsThatDoNotFitAreRefused)
{
    struct Case
    {
        std::vector<td::BYTE> types;
        bool isMatrix;
        const char* condition; // null when it is no misuse
    };
    const Case cases[] = {
        {{5, 5}, false, nullptr},    // 4 + 6 of 13 bytes
        {{5, 4, 1}, false, nullptr}, // 4 + 5 + 3 of them: one stays free
        {{6}, true, "uniformSize < 5"},
        {{10}, true, "uniformSize < 5"},
        {{6}, false, "false"},
        {{0}, true, "false"},
        {{0}, false, "false"},
        {{1, 6}, false, "false"},
        {{21}, true, "type < UniformSize.size()"},
        {{255}, false, "type < UniformSize.size()"},
        {{1, 255}, false, "type < UniformSize.size()"},
    };
    for (const Case& c : cases)
    {
        std::vector<Uniform> uniforms;
        for (const td::BYTE type : c.types)
            uniforms.push_back({type, 1, {}});
        Command command;
        command.setTypeInfo(c.isMatrix ? Type::MVPSetter : Type::UniformSetter, SubType::None);
        EXPECT_EQ(command.setAdditionalUniforms(uniforms.data(), static_cast<unsigned char>(uniforms.size())),
                  c.condition == nullptr);
        EXPECT_TRUE(asserts.caught(c.condition == nullptr ? std::vector<std::string>{}
                                                          : std::vector<std::string>{c.condition}));
    }
    std::vector<Uniform> many(5, {1, 1, {}});
    Command command;
    EXPECT_TRUE(command.createUniformSetter(many.data(), 4)); // 1 + 3 * 3 of 13 bytes
    command.reset();
    EXPECT_FALSE(command.createUniformSetter(many.data(), 5));
    EXPECT_FALSE(command.setAdditionalUniforms(nullptr, 1));
    EXPECT_TRUE(asserts.caught("pUniforms"));
    Command draw = triangles();
    EXPECT_FALSE(draw.setAdditionalUniforms(many.data(), 1));
    EXPECT_TRUE(asserts.caught("false"));
}

} // namespace
