// What a user drags from another program, on desktops of X11: for a compositor's there is no such user here.

#include "DesktopTest.h"
#include "DragSource.h"

#include <string>
#include <vector>

namespace test
{

namespace
{

TEST_P(DesktopTest, FilesAndTextsAreDropped)
{
    const XServer::Window window = desktop().server().findWindow("Window");
    ASSERT_NE(window, 0U);
    const std::vector<std::string> textTypes{"UTF8_STRING", "text/plain;charset=utf-8", "text/plain"};
    const struct
    {
        DragSource::Content content;
        const char* line;
    } cases[] = {
        {{{"text/uri-list"}, "file:///tmp/a%20b.png\r\nfile:///tmp/%C3%BC\r\n"}, "drops /tmp/a b.png /tmp/ü at 60,50"},
        {{textTypes, "one ü\ntwo"}, "drops 'one ü\ntwo' at 60,50"},
    };
    xdo(at(60, 50));
    for (const auto& c : cases)
    {
        DragSource source(window, corner.x + 60, corner.y + 50, c.content);
        EXPECT_TRUE(waitInLoop([&source] { return source.isTaken(); })) << source.isWelcome();
        EXPECT_TRUE(view.hasHeard({c.line}));
    }
    DragSource strange(window, corner.x + 60, corner.y + 50, {{"application/x-nothing"}, "?"});
    EXPECT_FALSE(waitInLoop([&strange] { return strange.isTaken(); }, 0.3));
    EXPECT_FALSE(strange.isWelcome());
}

} // namespace

} // namespace test
