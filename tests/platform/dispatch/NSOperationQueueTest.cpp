#include <tests/Testing.h>

#include <zorvan/platform/dispatch/DispatchSemaphore.h>
#include <zorvan/platform/dispatch/MainQueue.h>
#include <zorvan/platform/dispatch/NSOperationQueue.h>
#include <zorvan/platform/dispatch/NSThread.h>

namespace {

TEST(NSOperationQueue, StartsInOrderAndOverlapsNoMoreThanItMay) {
    for (const int limit : {1, 3}) {
        const auto queue = NSOperationQueue::create();
        queue->setMaxConcurrentOperationCount(limit);
        std::atomic<int> running = 0, done = 0;
        std::vector<int> order; // only looked at for the serial queue
        for (int i = 0; i < 200; ++i) {
            queue->addOperation([&, i] {
                EXPECT_LE(++running, limit);
                if (limit == 1)
                    order.push_back(i);
                std::this_thread::yield();
                --running;
                ++done;
            });
        }
        queue->waitUntilAllOperationsAreFinished();
        EXPECT_EQ(done, 200);
        EXPECT_EQ(queue->operationCount(), 0U);
        EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
    }
}

TEST(NSOperationQueue, RaisingTheLimitStartsWhatWaits) {
    const auto queue = NSOperationQueue::create();
    queue->setMaxConcurrentOperationCount(1);
    const auto gate = DispatchSemaphore::create(0);
    const auto started = DispatchSemaphore::create(0);
    for (int i = 0; i < 3; ++i)
        queue->addOperation([=] {
            started->signal();
            gate->wait();
        });
    EXPECT_TRUE(started->wait(10s));
    EXPECT_FALSE(started->wait(20ms));
    EXPECT_EQ(queue->operationCount(), 3U);
    queue->setMaxConcurrentOperationCount(NSOperationQueue::defaultMaxConcurrentOperationCount);
    EXPECT_TRUE(started->wait(10s));
    EXPECT_TRUE(started->wait(10s));
    for (int i = 0; i < 3; ++i)
        gate->signal();
    queue->waitUntilAllOperationsAreFinished();
}

TEST(NSOperationQueue, MainQueueRunsOnTheMainThreadInOrder) {
    const auto& queue = NSOperationQueue::main();
    std::vector<int> order;
    for (int i = 0; i < 5; ++i)
        queue->addOperation([&, i] { order.push_back(NSThread::isMainThread() ? i : -1); });
    queue->setMaxConcurrentOperationCount(8);
    EXPECT_EQ(queue->maxConcurrentOperationCount(), 1);
    EXPECT_TRUE(order.empty());
    std::thread other([&] {
        queue->waitUntilAllOperationsAreFinished();
        MainQueue::stop();
    });
    MainQueue::run();
    other.join();
    EXPECT_EQ(order, (std::vector{0, 1, 2, 3, 4}));
}

TEST(NSOperationQueueDeathTest, StopsOnMisuse) {
    EXPECT_DEATH(NSOperationQueue::create()->setMaxConcurrentOperationCount(0),
                 "^An operation queue must let at least 1 operation run at a time, not 0.\n$");
    EXPECT_DEATH(NSOperationQueue::main()->waitUntilAllOperationsAreFinished(),
                 "^The main operation queue cannot be waited for on the main thread.\n$");
}

} // namespace
