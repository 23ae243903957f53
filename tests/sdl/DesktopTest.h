#pragma once

#include "DesktopFixture.h"

namespace test
{

/// A window at the place of the parameter, with the pointer in it.
class DesktopTest : public DesktopFixture, public testing::WithParamInterface<int>
{
protected:
    void SetUp() override
    {
        ASSERT_NO_FATAL_FAILURE(show(*shown, view, "Window", GetParam()));
        xdo(at(40, 30));
        ASSERT_TRUE(view.hasHeard({"enter 40,30"}));
    }
    void TearDown() override { EXPECT_FALSE(view.isWrong); }

    RecordingView view;
    std::unique_ptr<ShownWindow> shown = desktop().makeWindow("Window", {200, 150});
};

} // namespace test
