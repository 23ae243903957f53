#pragma once

#include "CapturedLog.h"
#include "CaughtAsserts.h"
#include "GLTrace.h"

#include <gui/gl/CurrentContext.h>
#include <gui/gl/Program.h>

#include <gtest/gtest.h>

namespace test
{

/// A program of any shaders that takes colours and a matrix; a null GL links it.
struct ColorProgram : gui::gl::Program
{
    void onLinked() override
    {
        _color3Location = 3;
        _color4Location = 4;
        _matrixLocation = 16;
    }
};

/// For tests without a driver: a null GL whose context is current, with log lines and assertions caught. GL objects
/// that a test leaves alive fail it.
class NullGL : public testing::Test
{
protected:
    NullGL() { gui::gl::CurrentContext::set(this); }
    ~NullGL() override { gui::gl::CurrentContext::died(this); }

    void TearDown() override { EXPECT_TRUE(trace.nothingAlive()); }

    GLTrace trace{GLTrace::Null};
    CapturedLog log;
    CaughtAsserts asserts;
};

} // namespace test
