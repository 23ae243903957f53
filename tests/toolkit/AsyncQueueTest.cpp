#include "toolkit/src/AsyncQueue.h"
#include "support/CaughtAsserts.h"

#include <gui/ZavObject.h>

#include <atomic>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace
{

void post(std::function<void()> fn, bool wake = true)
{
    gui::ZavObject::asyncCall(new std::function<void()>(std::move(fn)), wake);
}

gui::AsyncQueue& queue() { return gui::AsyncQueue::instance(); }

TEST(AsyncQueue, RunsLaterInOrderAndOnce)
{
    std::string order;
    const auto guard = std::make_shared<int>();
    post(
        [&, guard]
        {
            order += 'a';
            post([&] { order += 'd'; });
        });
    post([&] { order += 'b'; });
    post([&] { order += 'c'; });
    EXPECT_EQ(order, "");
    queue().runPending();
    EXPECT_EQ(order, "abc"); // what was posted meanwhile waits, or a function that posts itself would never end
    EXPECT_EQ(guard.use_count(), 1);
    queue().runPending();
    queue().runPending();
    EXPECT_EQ(order, "abcd");
    EXPECT_TRUE(queue().isEmpty());
}

TEST(AsyncQueue, AnExceptionLosesOneFunctionOnly)
{
    std::string order;
    post([] { throw std::runtime_error("thrown"); });
    post([&] { order += 'a'; });
    post(nullptr); // an empty function throws when it is called
    post([&] { order += 'b'; });
    EXPECT_THROW(queue().runPending(), std::runtime_error);
    EXPECT_EQ(order, "");
    EXPECT_THROW(queue().runPending(), std::bad_function_call);
    queue().runPending();
    EXPECT_EQ(order, "ab");
    EXPECT_TRUE(queue().isEmpty());
    test::CaughtAsserts asserts;
    gui::ZavObject::asyncCall(nullptr, true);
    EXPECT_TRUE(asserts.caught("pFn != nullptr"));
    EXPECT_TRUE(queue().isEmpty());
}

// A function that runs a loop of its own, for a dialog say.
TEST(AsyncQueue, AnInnerLoopKeepsTheOrder)
{
    std::string order;
    post(
        [&]
        {
            post([&] { order += 'c'; });
            queue().runPending();
            order += '|';
        });
    post([&] { order += 'a'; });
    post([&] { order += 'b'; });
    queue().runPending();
    EXPECT_EQ(order, "abc|");
    EXPECT_TRUE(queue().isEmpty());
}

TEST(AsyncQueue, WakesTheLoopThatIsSet)
{
    int nWakes = 0;
    post([] {}, false);
    queue().setWakeUp([&] { ++nWakes; });
    EXPECT_EQ(nWakes, 1); // something waited for the loop already
    post([] {}, false);
    EXPECT_EQ(nWakes, 1);
    post([] {});
    EXPECT_EQ(nWakes, 2);
    queue().setWakeUp({});
    post([] {});
    EXPECT_EQ(nWakes, 2);
    queue().runPending();
}

TEST(AsyncQueue, TakesFromAllThreadsWithoutLoss)
{
    constexpr int cThreads = 4, cPosts = 2000;
    std::vector<int> last(cThreads, -1);
    int nRun = 0;
    bool isInOrder = true;
    std::atomic<int> nWakes = 0;
    queue().setWakeUp([&] { ++nWakes; });
    std::vector<std::thread> threads;
    for (int thread = 0; thread < cThreads; ++thread)
        threads.emplace_back(
            [&, thread]
            {
                for (int i = 0; i < cPosts; ++i)
                    post(
                        [&, thread, i]
                        {
                            isInOrder = isInOrder && last[std::size_t(thread)] == i - 1;
                            last[std::size_t(thread)] = i;
                            ++nRun;
                        });
            });
    while (nWakes < cThreads * cPosts)
        queue().runPending();
    for (std::thread& thread : threads)
        thread.join();
    queue().runPending();
    queue().setWakeUp({});
    EXPECT_EQ(nRun, cThreads * cPosts);
    EXPECT_TRUE(isInOrder);
}

} // namespace
