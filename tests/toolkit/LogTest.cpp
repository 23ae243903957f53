#include "support/CapturedLog.h"

#include <vo/Log.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace
{

// A message longer than the file's line buffer: the file gets its head, the sink must not lose the tail.
TEST(Log, LongMessagesAreCutInTheFileOnly)
{
    const std::filesystem::path path = std::filesystem::temp_directory_path() / "guigl-log-test.txt";
    std::filesystem::remove(path);
    const std::string text(3000, 'x'), tooLongByOne(2048, 'y');
    test::CapturedLog log;
    ASSERT_TRUE(vo::setLogFile(path.c_str()));
    vo::dbgLog("%s", text.c_str());
    vo::dbgLog("%s", tooLongByOne.c_str());
    vo::dbgLog("plain");
    EXPECT_FALSE(vo::setLogFile("/no-such-folder/log.txt"));
    vo::dbgLog("still open");
    vo::dbgLog(nullptr);
    ASSERT_TRUE(vo::setLogFile(nullptr));
    vo::dbgLog("sink only");
    EXPECT_EQ(log.take(), (std::vector<std::string>{text, tooLongByOne, "plain", "still open", "sink only"}));
    std::ostringstream content;
    content << std::ifstream(path).rdbuf();
    EXPECT_EQ(content.str(), text.substr(0, 2047) + "\n" + tooLongByOne.substr(0, 2047) + "\nplain\nstill open\n");
    std::filesystem::remove(path);
}

TEST(Log, PercentSignsInArgumentsArePrintedAsTheyAre)
{
    test::CapturedLog log;
    vo::dbgLog("name=%s", "100%d%n");
    EXPECT_TRUE(log.said("name=100%d%n"));
}

} // namespace
