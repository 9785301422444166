#include <tests/Testing.h>

#include <zorvan/platform/dispatch/DispatchQueue.h>
#include <zorvan/platform/dispatch/MainQueue.h>
#include <zorvan/platform/dispatch/NSThread.h>

#include <tests/files/ChildProcess.h>

#include <poll.h>

using Clock = std::chrono::steady_clock;

namespace {

bool isReadable(int descriptor, std::chrono::milliseconds timeout) {
    pollfd entry{descriptor, POLLIN, 0};
    return ::poll(&entry, 1, static_cast<int>(timeout.count())) == 1;
}

TEST(MainQueue, DrainRunsWhatIsQueuedAndNotWhatThatQueues) {
    std::string seen;
    DispatchQueue::main()->async([&] {
        seen += 'a';
        DispatchQueue::main()->async([&] { seen += 'c'; });
    });
    DispatchQueue::main()->async([&] { seen += 'b'; });
    EXPECT_EQ(MainQueue::drain(), 2U);
    EXPECT_EQ(seen, "ab");
    EXPECT_EQ(MainQueue::drain(), 1U);
    EXPECT_EQ(seen, "abc");
    EXPECT_EQ(MainQueue::drain(), 0U);
    // A nested drain goes on with the blocks behind.
    seen.clear();
    DispatchQueue::main()->async([&] {
        seen += '(';
        EXPECT_EQ(MainQueue::drain(), 2U);
        seen += ')';
    });
    DispatchQueue::main()->async([&] { seen += 'a'; });
    DispatchQueue::main()->async([&] { seen += 'b'; });
    EXPECT_EQ(MainQueue::drain(), 1U) << "the nested drain took the others";
    EXPECT_EQ(seen, "(ab)");
}

TEST(MainQueue, StopEndsTheInnermostRunAndLeavesTheRestQueued) {
    std::string seen;
    DispatchQueue::main()->async([&] {
        DispatchQueue::main()->async([&] {
            seen += "inner ";
            MainQueue::stop();
        });
        MainQueue::run();
        seen += "outer ";
        MainQueue::stop();
        DispatchQueue::main()->async([&] { seen += "rest"; });
    });
    MainQueue::run();
    EXPECT_EQ(seen, "inner outer ");
    MainQueue::stop();
    EXPECT_TRUE(MainQueue::runUntil(Clock::now() + 10s)) << "a stop before is not lost";
    EXPECT_EQ(seen, "inner outer ");
    EXPECT_FALSE(MainQueue::runUntil(Clock::now() + 20ms));
    EXPECT_EQ(seen, "inner outer rest");
}

TEST(MainQueue, RunEndsAtTheDeadlineEvenWhenWorkNeverEnds) {
    std::function<void()> again = [&] { DispatchQueue::main()->async(again); };
    again();
    EXPECT_FALSE(MainQueue::runUntil(Clock::now() + 20ms));
    again = [] {};
    MainQueue::drain();
    MainQueue::drain();
}

TEST(MainQueue, DescriptorIsReadableExactlyWhileWorkIsQueued) {
    const int descriptor = MainQueue::fileDescriptor();
    EXPECT_EQ(MainQueue::fileDescriptor(), descriptor);
    EXPECT_FALSE(isReadable(descriptor, 0ms));
    DispatchQueue::main()->async([] {});
    DispatchQueue::main()->async([] { DispatchQueue::main()->async([] {}); });
    EXPECT_TRUE(isReadable(descriptor, 0ms));
    EXPECT_EQ(MainQueue::drain(), 2U);
    EXPECT_TRUE(isReadable(descriptor, 0ms)) << "a block has queued another";
    EXPECT_EQ(MainQueue::drain(), 1U);
    EXPECT_FALSE(isReadable(descriptor, 0ms));
    // So an event loop of any kind can serve the queue.
    int served = 0;
    std::thread other([&] {
        for (int i = 0; i < 500; ++i)
            DispatchQueue::main()->sync([&] { ++served; });
        DispatchQueue::main()->asyncAfter(20ms, [&] { served = -served; });
    });
    for (; served >= 0; MainQueue::drain())
        ASSERT_TRUE(isReadable(descriptor, 10'000ms)) << served;
    other.join();
    EXPECT_EQ(served, -500);
}

// Its only thread is its main one, and what it queues is no concern of the parent, which waits.
TEST(MainQueue, IsTheChildsOwnInAFork) {
    const int descriptor = MainQueue::fileDescriptor();
    std::thread forking([&] {
        EXPECT_FALSE(NSThread::isMainThread());
        std::this_thread::sleep_for(20ms); // until the main thread waits
        const pid_t child = startChild([&] {
            EXPECT_TRUE(NSThread::isMainThread());
            std::thread other([] {
                std::this_thread::sleep_for(20ms);
                MainQueue::stop();
            });
            EXPECT_TRUE(MainQueue::runUntil(Clock::now() + 10s));
            other.join();
            DispatchQueue::main()->async([] {});
            EXPECT_TRUE(isReadable(descriptor, 0ms));
        });
        EXPECT_EQ(exitStatus(child), 0);
        EXPECT_FALSE(isReadable(descriptor, 0ms));
        MainQueue::stop();
    });
    MainQueue::run();
    forking.join();
}

TEST(MainQueueDeathTest, StopsOffTheMainThread) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    for (const auto work :
         {+[] { MainQueue::drain(); }, +[] { MainQueue::runUntil(Clock::now()); }})
        EXPECT_DEATH(std::thread(work).join(),
                     "^The main queue can only be drained on the main thread.\n$");
    EXPECT_DEATH(
        {
            DispatchQueue::main()->async([] { throw std::runtime_error("unheard"); });
            MainQueue::drain();
        },
        "unheard");
}

} // namespace
