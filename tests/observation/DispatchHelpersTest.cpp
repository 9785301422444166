#include <tests/Testing.h>

#include <zorvan/observation/DispatchQueue.h>
#include <zorvan/observation/StoppableState.h>
#include <zorvan/observation/WeakValue.h>
#include <zorvan/platform/dispatch/DispatchSemaphore.h>
#include <zorvan/platform/dispatch/MainQueue.h>

namespace {

TEST(DispatchHelpers, ExecuteWaitsOnlyWhenSynchronized) {
    const auto queue = DispatchQueue::create("execute");
    const auto gate = DispatchSemaphore::create(0);
    std::string seen;
    execute(*queue, false, [&] {
        gate->wait();
        seen += 'a';
    });
    EXPECT_EQ(seen, "");
    gate->signal();
    execute(*queue, true, [&] { seen += 's'; });
    EXPECT_EQ(seen, "as");
    EXPECT_THROW(execute(*queue, true, [] { throw std::runtime_error("no"); }), std::runtime_error);
}

TEST(DispatchHelpers, SafeSyncInMainComesToTheMainThreadFromAnywhere) {
    EXPECT_TRUE(safeSyncInMain([] { return NSThread::isMainThread(); }));
    EXPECT_THROW(safeSyncInMain([] { throw std::runtime_error("no"); }), std::runtime_error);
    std::thread other([] {
        EXPECT_TRUE(safeSyncInMain([] { return NSThread::isMainThread(); }));
        EXPECT_THROW(safeSyncInMain([]() -> int { throw std::runtime_error("no"); }),
                     std::runtime_error);
        MainQueue::stop();
    });
    MainQueue::run();
    other.join();
}

TEST(DispatchHelpers, AsyncUntilRunsAtTheDate) {
    const auto queue = DispatchQueue::create("dates");
    const auto now = std::chrono::system_clock::now();
    const auto start = std::chrono::steady_clock::now();
    const auto ran = DispatchSemaphore::create(0);
    async(*queue, {.until = Date::max()}, [] { FAIL() << "at the end of time"; });
    async(*queue, {.until = now + 150ms}, [=] { ran->signal(); });
    EXPECT_FALSE(ran->wait(50ms));
    EXPECT_TRUE(ran->wait(10s));
    EXPECT_GE(std::chrono::steady_clock::now() - start, 149ms);
    for (const Date past : {now - 1s, now, Date::min()}) {
        async(*queue, {.until = past}, [=] { ran->signal(); });
        EXPECT_TRUE(ran->wait(10s));
    }
    bool inMain = false;
    async(*DispatchQueue::main(), {.until = now - 1h}, [&] { inMain = true; });
    EXPECT_FALSE(inMain) << "even in the past it is not run at once";
    MainQueue::drain();
    EXPECT_TRUE(inMain);
}

TEST(WeakValue, ReadsAbsentOnceTheObjectIsGone) {
    auto object = std::make_shared<int>(1);
    WeakValue typed(object);
    const WeakValue<int> labelled({.value = object});
    OpaqueWeakValue opaque(object);
    EXPECT_TRUE(typed.value() == object && labelled.value() == object && opaque.value() == object);
    EXPECT_EQ(object.use_count(), 1);
    object = nullptr;
    EXPECT_FALSE(typed.value() || labelled.value() || opaque.value());
    object = std::make_shared<int>(2);
    typed.setValue(object);
    opaque.setValue(object);
    EXPECT_TRUE(typed.value() == object && opaque.value() == object);
    EXPECT_FALSE(OpaqueWeakValue().value());
}

TEST(StoppableState, StopPrevails) {
    using enum StoppableState;
    EXPECT_EQ(pursue || pursue, pursue);
    EXPECT_EQ(pursue || stop, stop);
    EXPECT_EQ(stop || pursue, stop);
}

} // namespace
