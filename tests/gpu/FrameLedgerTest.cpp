#include "support/Images.h"
#include "support/NullGL.h"

#include <gui/gl/Buffer.h>
#include <gui/gl/FrameLedger.h>
#include <gui/gl/Program.h>
#include <gui/gl/Textures.h>

#include <epoxy/gl.h>

namespace
{

using gui::gl::Command;
using gui::gl::DataType;
using gui::gl::FrameLedger;
using gui::gl::Primitive;

class FrameLedgerTest : public test::NullGL
{
protected:
    void SetUp() override { FrameLedger::start(FrameLedger::Times::CPU); }
    void TearDown() override
    {
        FrameLedger::stop();
        NullGL::TearDown();
    }
};

TEST_F(FrameLedgerTest, AFrameAtRestUploadsNothing)
{
    gui::gl::Buffer buffer{DataType::Vec2};
    test::ColorProgram program;
    const float corners[12] = {};
    buffer.appendVertices(corners, 6);
    for (const td::ColorID color : {td::ColorID::Red, td::ColorID::Red, td::ColorID::Blue})
    {
        Command* const pCommand = buffer.getCommandList().get();
        pCommand->createDrawArrays(Primitive::Triangles, 0, 6);
        pCommand->setColor(color);
        ASSERT_TRUE(buffer.getCommandList().encode(pCommand));
    }
    Command* const pInstanced = buffer.getCommandList().get();
    pInstanced->createDrawArraysInstanced(Primitive::Triangles, 0, 3, 10);
    ASSERT_TRUE(buffer.getCommandList().encode(pInstanced));
    ASSERT_TRUE(program.link("vs", "fs"));
    program.setBuffer(&buffer);
    for (unsigned int frame = 1; frame <= 2; ++frame)
    {
        SCOPED_TRACE(frame);
        FrameLedger::begin();
        if (frame == 1)
        {
            ASSERT_TRUE(buffer.commit());
        }
        program.activate();
        trace.clear();
        program.execute();
        const std::size_t nCalls = trace.calls().size();
        program.deActivate();
        FrameLedger::end();
        const FrameLedger::Frame& cost = FrameLedger::getLast();
        EXPECT_EQ(cost.number, frame);
        EXPECT_EQ(cost.nUploads, frame == 1 ? 1u : 0u);
        EXPECT_EQ(cost.nBytesUploaded, frame == 1 ? sizeof(corners) : 0u);
        EXPECT_EQ(nCalls, 6u); // four draws, two colours
        EXPECT_EQ(cost.nDraws, 4u);
        EXPECT_EQ(cost.nVertices, 3 * 6 + 3 * 10u);
        EXPECT_EQ(cost.getCount(Command::Type::DrawArrays), 3u);
        EXPECT_EQ(cost.getCount(Command::Type::DrawArraysInstanced), 1u);
        EXPECT_EQ(cost.nStatesSaved, 1u); // the second red
        EXPECT_GE(cost.nStatesSent, 2u);
        EXPECT_LE(cost.nStatesSent, 12u);
        EXPECT_GE(cost.cpuTime, 0);
        EXPECT_LT(cost.gpuTime, 0);
    }
}

TEST_F(FrameLedgerTest, ImagesCountAsTheirPixels)
{
    FrameLedger::begin();
    gui::Texture image = test::image(5, 3, 4);
    gui::gl::Textures textures;
    ASSERT_TRUE(textures.append({&image}, gui::gl::Texture::Type::Tex2D));
    {
        const FrameLedger::Pause pause;
        const FrameLedger::Pause inner;
        ASSERT_TRUE(textures.append({&image}, gui::gl::Texture::Type::Tex2D));
    }
    FrameLedger::end();
    EXPECT_EQ(FrameLedger::getLast().nBytesUploaded, 5u * 3 * 4);
    textures.release();
}

// The call during which it is stopped would be counted for ever, by its own count.
TEST_F(FrameLedgerTest, ADriversCallbackMayStopIt)
{
    FrameLedger::stop();
    static auto* const s_before = glLineWidth;
    static bool s_startsAgain = false;
    const auto withCallback = [](GLfloat)
    {
        FrameLedger::stop();
        if (s_startsAgain)
            FrameLedger::start(FrameLedger::Times::CPU);
    };
    for (const bool startsAgain : {false, true})
    {
        s_startsAgain = startsAgain;
        glLineWidth = withCallback;
        FrameLedger::start(FrameLedger::Times::CPU);
        glLineWidth(1);
        EXPECT_EQ(glLineWidth != withCallback, startsAgain);
        FrameLedger::stop();
        EXPECT_TRUE(glLineWidth == withCallback);
        glLineWidth = s_before;
    }
}

TEST_F(FrameLedgerTest, WhatIsOffCountsNothing)
{
    FrameLedger::stop();
    EXPECT_FALSE(FrameLedger::isOn());
    const std::uint64_t number = FrameLedger::getLast().number;
    FrameLedger::begin();
    FrameLedger::end();
    EXPECT_EQ(FrameLedger::getLast().number, number);
    FrameLedger::start(FrameLedger::Times::CPU);
    FrameLedger::end(); // without a begin
    EXPECT_EQ(FrameLedger::getLast().number, 0u);
    FrameLedger::begin();
    FrameLedger::begin(); // the first was given up
    FrameLedger::end();
    EXPECT_EQ(FrameLedger::getLast().number, 1u);
}

} // namespace
