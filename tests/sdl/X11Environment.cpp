// The desktop of tests of windows on X11.

#include "X11Desktop.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

namespace test
{

namespace
{

class OwnDesktop : public X11Desktop
{
public:
    // SDL3 has no key for what the input method takes.
    std::vector<std::string> hearsComposed(const std::vector<std::string>& ofKeys) const override
    {
        return GUIGL_SDL == 3 ? std::vector<std::string>{"text é"} : ofKeys;
    }
};

std::unique_ptr<X11Desktop> s_pDesktop;

class Environment : public testing::Environment
{
public:
    void SetUp() override
    {
        setenv("GUIGL_WINDOW_SYSTEM", "x11", 1);
        s_pDesktop = std::make_unique<OwnDesktop>();
        ASSERT_TRUE(s_pDesktop->isOk());
    }
    // The server stays until the program has ended: it would take the program with it.
};

testing::Environment* const s_pEnvironment = testing::AddGlobalTestEnvironment(new Environment);

} // namespace

Desktop& desktop() { return *s_pDesktop; }

} // namespace test
