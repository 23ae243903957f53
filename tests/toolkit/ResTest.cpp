#include "support/CapturedLog.h"
#include "support/CaughtAsserts.h"

#include <gui/Res.h>
#include <gui/Texture.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;

std::string contentOf(const fs::path& path)
{
    std::ostringstream content;
    content << std::ifstream(path, std::ios::binary).rdbuf();
    return content.str();
}

/// Folders and files made for a test, gone after it.
class Scratch
{
public:
    ~Scratch()
    {
        unsetenv("GUIGL_RESOURCES");
        for (const fs::path& path : _made)
            fs::remove_all(path);
    }

    void write(const fs::path& path, const std::string& text)
    {
        // The topmost folder that was not there is what must go again.
        fs::path made = path;
        while (!fs::exists(made.parent_path()))
            made = made.parent_path();
        _made.push_back(made);
        fs::create_directories(path.parent_path());
        std::ofstream(path) << text;
    }

    const fs::path root = fs::temp_directory_path() / ("guigl-res-test-" + std::to_string(::getpid()));

private:
    std::vector<fs::path> _made;
};

TEST(Res, LooksInOneFolderAfterTheOther)
{
    Scratch scratch;
    const fs::path executable = fs::read_symlink("/proc/self/exe").parent_path();
    const fs::path folders[] = {
        scratch.root / "first",
        scratch.root / "second",
        scratch.root / "env 1",
        scratch.root / "env 2",
        executable,
        executable / "resources",
        executable / ".." / "share" / "guigl",
    };
    for (const fs::path& folder : folders)
        scratch.write(folder / "test" / "order.txt", folder.string());
    gui::Res::addSearchFolder(folders[0].c_str());
    gui::Res::addSearchFolder(folders[1].c_str());
    setenv("GUIGL_RESOURCES", (":" + folders[2].string() + ":" + folders[3].string()).c_str(), 1);

    for (const fs::path& folder : folders)
    {
        for (const char* const name : {":test/order.txt", "test/order.txt"})
        {
            td::StringBase file;
            ASSERT_TRUE(gui::Res::getFileName(name, file)) << folder;
            EXPECT_EQ(contentOf(file.c_str()), folder.string());
            EXPECT_EQ(std::string(gui::getResText(name).c_str()), folder.string());
        }
        fs::remove(folder / "test" / "order.txt");
    }
    EXPECT_EQ(std::string(gui::getResText(":test/order.txt").c_str()), "compiled in\n");
}

TEST(Res, NamesDoNotLeaveTheFolders)
{
    Scratch scratch;
    const fs::path secret = scratch.root / "secret.txt";
    scratch.write(secret, "secret");
    scratch.write(scratch.root / "folder" / "public.txt", "public");
    gui::Res::addSearchFolder((scratch.root / "folder").c_str());
    EXPECT_EQ(std::string(gui::getResText("public.txt").c_str()), "public");

    test::CapturedLog log;
    // What else there is to try, the fuzz target tries.
    const std::string names[] = {":../secret.txt", secret, ":/" + secret.string(), ""};
    for (const std::string& name : names)
    {
        td::StringBase file("before");
        EXPECT_FALSE(gui::Res::getFileName(name.c_str(), file)) << name;
        EXPECT_EQ(std::string(file.c_str()), "before");
        EXPECT_TRUE(gui::getResText(name.c_str()).isEmpty());
        EXPECT_TRUE(log.said("ERROR! getResText cannot load resource: " + name + " (not a resource name)"));
    }
    td::StringBase file;
    EXPECT_FALSE(gui::Res::getFileName(nullptr, file));
    EXPECT_FALSE(gui::Res::getFileName("folder", file)); // a folder is no file
    EXPECT_TRUE(gui::getResText("missing.txt").isEmpty());
    EXPECT_TRUE(log.said("ERROR! getResText cannot load resource: missing.txt (no such resource)"));
    test::CaughtAsserts asserts;
    gui::Res::addSearchFolder("");
    EXPECT_TRUE(asserts.caught("folder != nullptr && *folder != '\\0'"));
}

TEST(Res, CompiledInBytesAreThoseOfTheFile)
{
    std::span<const td::BYTE> bytes;
    ASSERT_TRUE(gui::Res::getCompiled(":test/bytes.bin", bytes));
    ASSERT_EQ(bytes.size(), 256u);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        EXPECT_EQ(bytes[i], i);
    ASSERT_TRUE(gui::Res::getCompiled("test/empty.txt", bytes));
    EXPECT_TRUE(bytes.empty());
    EXPECT_FALSE(gui::Res::getCompiled("test/missing", bytes));
    // The linker must not drop what nobody names.
    EXPECT_EQ(std::string(gui::getResText(":nested/a note.txt").c_str()), "from a static library\n");
    EXPECT_EQ(gui::getResText("test/bytes.bin").length(), 256u); // a zero in it does not end it

    gui::Texture texture;
    ASSERT_TRUE(texture.loadFromFile(":test/dots.png"));
    EXPECT_EQ(texture.getWidth(), 2);
    EXPECT_EQ(texture.getBytes()[1], 128);
}

// Plugins come and go; the one loaded last is asked first.
TEST(Res, CompiledInResourcesCanBeTakenAway)
{
    const td::BYTE text[] = {'1', '2'};
    const gui::CompiledResource one[] = {{"plugin/text", text, text + 1}};
    const gui::CompiledResource two[] = {{"plugin/text", text + 1, text + 2}};
    gui::Res::addCompiled(one);
    gui::Res::addCompiled(two);
    EXPECT_EQ(std::string(gui::getResText("plugin/text").c_str()), "2");
    gui::Res::removeCompiled(two);
    EXPECT_EQ(std::string(gui::getResText("plugin/text").c_str()), "1");
    gui::Res::removeCompiled(one);
    std::span<const td::BYTE> bytes;
    EXPECT_FALSE(gui::Res::getCompiled("plugin/text", bytes));
}

TEST(Res, ACompiledInResourceBecomesAPrivateFile)
{
    td::StringBase file, again;
    ASSERT_TRUE(gui::Res::getFileName(":test/bytes.bin", file));
    ASSERT_TRUE(gui::Res::getFileName("test/bytes.bin", again));
    EXPECT_EQ(std::string(file.c_str()), again.c_str());
    EXPECT_EQ(contentOf(file.c_str()).size(), 256u);
    struct stat status = {};
    ASSERT_EQ(stat(fs::path(file.c_str()).parent_path().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0700u);
    fs::remove(file.c_str()); // as somebody who tidies the temporary folder would
    ASSERT_TRUE(gui::Res::getFileName(":test/bytes.bin", again));
    EXPECT_EQ(contentOf(again.c_str()).size(), 256u);

    // A child process that ends takes its own files away, if it has any, and leaves its parent's.
    EXPECT_EXIT(std::exit(0), testing::ExitedWithCode(0), "");
    EXPECT_TRUE(fs::exists(again.c_str()));
    Scratch scratch;
    const fs::path note = scratch.root / "name";
    scratch.write(note, "");
    const auto child = [&]
    {
        td::StringBase own;
        const bool isFound = gui::Res::getFileName(":test/order.txt", own);
        std::ofstream(note) << own.c_str();
        std::exit(isFound && contentOf(own.c_str()) == "compiled in\n" ? 0 : 1);
    };
    EXPECT_EXIT(child(), testing::ExitedWithCode(0), "");
    EXPECT_NE(contentOf(note), "");
    EXPECT_FALSE(fs::exists(contentOf(note)));
    EXPECT_TRUE(fs::exists(again.c_str()));
}

} // namespace
