// Which window system a program gets, in good and in bad environments. The program runs in a process of its own.

#include "Process.h"
#include "Waiting.h"
#include "Weston.h"
#include "XServer.h"

#include <gtest/gtest.h>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>

namespace test
{

namespace
{

class WindowSystemTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(server.isOk());
        std::string name = testing::TempDir() + "guigl-runtime-XXXXXX";
        ASSERT_NE(mkdtemp(name.data()), nullptr);
        folder = name;
    }
    ~WindowSystemTest() override
    {
        std::error_code error;
        if (!folder.empty())
            std::filesystem::remove_all(folder, error);
    }

    /// Runs the program, with the test's own display unless the variables say otherwise. All it writes goes to text.
    int run(const Variables& variables)
    {
        int exitStatus = -1;
        text = outputOf({"sh", "-c", "exec \"$0\" 2>&1", GUIGL_WINDOW_PROGRAM}, exitStatus, completed(variables));
        return exitStatus;
    }
    Variables completed(Variables variables) const
    {
        variables.emplace("GUIGL_WINDOW_SYSTEM", "");
        variables["XDG_RUNTIME_DIR"] = folder;
        // Its own tests look for leaks; drivers that are unloaded at the end have some.
        const char* const sanitizer = std::getenv("ASAN_OPTIONS");
        variables["ASAN_OPTIONS"] = std::string(sanitizer != nullptr ? sanitizer : "") + ":detect_leaks=0";
        return variables;
    }
    bool said(const std::string& words) const { return text.find(words) != std::string::npos; }

    XServer server;
    std::string folder;
    std::string text;
};

TEST_F(WindowSystemTest, FirstOneThatWorks)
{
    const struct
    {
        const char* name;
        Variables variables;
        const char* windowSystem;
        const char* words;
    } cases[] = {
        {"an X server", {}, "x11", "asked for 32 depth and 16 stencil bits, got 24 and 8"},
        {"nothing", {{"DISPLAY", ""}}, "offscreen", ""},
        {"a dead X server", {{"DISPLAY", ":32100"}}, "offscreen", "Warning! WindowSystem x11 does not start: "},
        {"no compositor", {{"WAYLAND_DISPLAY", "nobody"}}, "x11", "wayland does not start: no compositor answers"},
        {"offscreen wanted", {{"GUIGL_WINDOW_SYSTEM", "offscreen"}}, "offscreen", ""},
        {"a scale that is no number",
         {{"GUIGL_WINDOW_SYSTEM", "offscreen"}, {"GUIGL_SCALE", "2x"}},
         "offscreen",
         "GUIGL_SCALE=2x is not from 1 to 8"},
        {"x11 wanted", {{"GUIGL_WINDOW_SYSTEM", "x11"}, {"WAYLAND_DISPLAY", "nobody"}}, "x11", ""},
        {"wayland wanted in vain",
         {{"GUIGL_WINDOW_SYSTEM", "wayland"}, {"WAYLAND_DISPLAY", ""}},
         "offscreen",
         "Warning! WindowSystem wayland does not start: WAYLAND_DISPLAY is not set"},
        {"an unknown one wanted", {{"GUIGL_WINDOW_SYSTEM", "tty"}}, "x11", "GUIGL_WINDOW_SYSTEM=tty is unknown"},
    };
    for (const auto& c : cases)
    {
        EXPECT_EQ(run(c.variables), 0) << c.name << "\n" << text;
        EXPECT_TRUE(said(std::string("runs on window system: ") + c.windowSystem)) << c.name << "\n" << text;
        EXPECT_TRUE(said(c.words)) << c.name << "\n" << text;
    }
}

// SDL crashes on it.
TEST_F(WindowSystemTest, CompositorWithoutSeat)
{
    Process weston({"weston", "--backend=headless-backend.so", "--socket=wayland-test", "--log=" + folder + "/log"},
                   {{"XDG_RUNTIME_DIR", folder}});
    ASSERT_TRUE(waitFor([&] { return std::filesystem::exists(folder + "/wayland-test"); }));
    EXPECT_EQ(run({{"WAYLAND_DISPLAY", "wayland-test"}}), 0) << text;
    EXPECT_TRUE(said("wayland does not start: the compositor has no seat")) << text;
    EXPECT_TRUE(said("runs on window system: x11")) << text;
}

// The program must not live on without a window, and its view cleans up. That it shows another window in that moment is
// the one case in which nothing can be cleaned up.
TEST_F(WindowSystemTest, CompositorThatDies)
{
    const std::string file = folder + "/output";
    const auto isSaid = [&](const char* words)
    {
        std::ifstream stream(file);
        text.assign(std::istreambuf_iterator<char>(stream), {});
        return said(words);
    };
    for (const char* what : {"stays", "shows"})
    {
        auto weston = std::make_unique<Weston>("us");
        ASSERT_TRUE(weston->isOk());
        Variables variables = completed({});
        variables.erase("XDG_RUNTIME_DIR");
        Process program({"sh", "-c", "exec \"$0\" \"$2\" > \"$1\" 2>&1", GUIGL_WINDOW_PROGRAM, file, what}, variables);
        ASSERT_TRUE(waitFor([&] { return isSaid("window system: wayland") && text.ends_with("wayland"); }));
        weston.reset();
        EXPECT_EQ(program.wait(cPatience), 1) << what;
        const bool isInTime = isSaid("ERROR! Application lost its display and ends") && said("cleaned up");
        const bool isTooLate = std::string(what) == "shows" && said("display while it showed a window");
        EXPECT_TRUE(isInTime || isTooLate) << what << text;
        std::filesystem::remove(file);
    }
}

TEST_F(WindowSystemTest, TextsGoFromProgramToProgram)
{
    const std::string copied = std::string(100'000, 'x') + "é日";
    const Process program({GUIGL_WINDOW_PROGRAM, "stays", copied}, completed({{"WAYLAND_DISPLAY", ""}}));
    const auto told = [&](const Variables& variables)
    {
        int exitStatus = -1;
        return outputOf({GUIGL_WINDOW_PROGRAM, "asks"}, exitStatus, completed(variables));
    };
    const std::string own = "\n1 1 own\n";
    ASSERT_TRUE(waitFor([&] { return server.findWindow("Program") != 0; }));
    EXPECT_EQ(told({{"WAYLAND_DISPLAY", ""}}), "1 " + copied + ", 1 " + copied + "!" + own + "x11");
    EXPECT_EQ(told({{"GUIGL_WINDOW_SYSTEM", "offscreen"}}), "0 , 0 " + own + "offscreen");
}

// It takes connections and never says a word.
TEST_F(WindowSystemTest, CompositorThatHangs)
{
    const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, (folder + "/wayland-test").c_str(), sizeof(address.sun_path) - 1);
    ASSERT_EQ(bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
    ASSERT_EQ(listen(fd, 1), 0);
    EXPECT_EQ(run({{"WAYLAND_DISPLAY", "wayland-test"}}), 0) << text;
    EXPECT_TRUE(said("wayland does not start: no compositor answers")) << text;
    EXPECT_TRUE(said("runs on window system: x11")) << text;
    close(fd);
}

TEST_F(WindowSystemTest, ContextThatTheSystemLacks)
{
    EXPECT_EQ(run({{"MESA_GL_VERSION_OVERRIDE", "2.1"}}), 2) << text;
    EXPECT_TRUE(
        said("ERROR! SDLContext cannot have an OpenGL 4.1 core context with 24 colour, 8 alpha, 32 depth and 16 "
             "stencil bits ("))
        << text;
    EXPECT_TRUE(said("); the system has OpenGL 2.1")) << text;
}

} // namespace

} // namespace test
