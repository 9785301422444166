#include <tests/Testing.h>

#include <zorvan/platform/dispatch/DispatchSemaphore.h>

namespace {

TEST(DispatchSemaphore, CountsSignals) {
    const auto semaphore = DispatchSemaphore::create(2);
    EXPECT_TRUE(semaphore->wait(0s));
    EXPECT_TRUE(semaphore->wait(std::chrono::nanoseconds::min()));
    EXPECT_FALSE(semaphore->wait(0s));
    semaphore->signal();
    EXPECT_TRUE(semaphore->wait(std::chrono::steady_clock::time_point::min()));
    EXPECT_FALSE(semaphore->wait(std::chrono::steady_clock::time_point::min()));
    // It gives up after the time-out, and takes nothing.
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(semaphore->wait(20ms));
    EXPECT_GE(std::chrono::steady_clock::now() - start, 20ms);
    semaphore->signal();
    EXPECT_TRUE(semaphore->wait(std::chrono::nanoseconds::max()));
    EXPECT_DEATH(DispatchSemaphore::create(-1),
                 "^A semaphore cannot start with the count -1, which must be at least 0.\n$");
}

} // namespace
