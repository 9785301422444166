#include <tests/Testing.h>
#include <tests/waitUntil.h>

#include <zorvan/observation/ValueLoader.h>
#include <zorvan/platform/dispatch/MainQueue.h>

namespace {

using Loader = ValueLoader<std::string>;
using State = Loader::State;

/// A loader on a serial queue that the test can hold shut.
class ValueLoaderTest : public testing::Test {
protected:
    ValueLoaderTest() { queue->setMaxConcurrentOperationCount(1); }

    void holdQueue() {
        queue->addOperation([gate = gate] { gate->wait(); });
    }

    bool runUntilQueueIsEmpty() {
        return waitUntil([this] { return queue->operationCount() == 0; });
    }

    std::function<void()> mark(char c) {
        return [this, c] {
            EXPECT_TRUE(NSThread::isMainThread());
            seen += c;
        };
    }

    const std::shared_ptr<NSOperationQueue> queue = NSOperationQueue::create();
    const std::shared_ptr<DispatchSemaphore> gate = DispatchSemaphore::create(0);
    std::atomic<int> loads = 0;
    std::optional<std::string> produced = "value";
    std::shared_ptr<Loader> loader = Loader::create(queue, [this] {
        EXPECT_FALSE(NSThread::isMainThread());
        ++loads;
        return produced;
    });
    std::string seen;
};

TEST_F(ValueLoaderTest, SeveralRequestsShareOneLoad) {
    EXPECT_EQ(loader->state(), State::isNotLoaded);
    EXPECT_FALSE(loader->value());
    EXPECT_EQ(loader->operationQueue(), queue);
    holdQueue();
    const std::vector<std::shared_ptr<ValueRequest<std::string>>> requests{
        loader->request(mark('a')), loader->request(mark('b')), loader->request()};
    EXPECT_EQ(loader->state(), State::isLoading);
    EXPECT_EQ(loader->requestsCount(), 3);
    EXPECT_EQ(loader->requests().at(2), requests[2]);
    EXPECT_EQ(requests[2]->index(), 2);
    gate->signal();
    ASSERT_TRUE(runUntilQueueIsEmpty());
    EXPECT_EQ(loads, 1);
    EXPECT_TRUE(seen == "ab" || seen == "ba") << seen;
    EXPECT_EQ(loader->state(), State::isLoaded);
    EXPECT_EQ(loader->value(), "value");
    EXPECT_EQ(loader->requestsCount(), 0);
    EXPECT_TRUE(loader->requests().empty());
    for (const auto& request : requests) {
        EXPECT_FALSE(request->index());
        EXPECT_FALSE(request->wait()) << "absent at once when it is no longer pending";
    }
}

TEST_F(ValueLoaderTest, ALoadedValueIsAnsweredAtOnce) {
    for (const auto& value : {std::optional<std::string>("value"), {}}) {
        auto each = Loader::create(queue, [value] { return value; });
        each->request();
        ASSERT_TRUE(runUntilQueueIsEmpty());
        EXPECT_EQ(each->state(), State::isLoaded);
        EXPECT_EQ(each->value(), value);
        for (const auto& answered :
             {each->request(), each->request(static_cast<void (*)()>(nullptr)),
              each->request(std::function<int()>()), each->request([] { return 1; })})
            EXPECT_FALSE(answered);
        bool calledThere = false;
        std::thread([&] { each->request([&] { calledThere = true; }); }).join();
        EXPECT_TRUE(calledThere);
        seen.clear();
        EXPECT_FALSE(each->request([&, held = std::make_shared<char>('h')] {
            each = nullptr;
            seen += *held;
        }));
        EXPECT_EQ(seen, "h");
    }
}

TEST_F(ValueLoaderTest, CancellingEveryRequestBeforeTheStartSkipsTheWork) {
    holdQueue();
    const auto first = loader->request(mark('a')), second = loader->request(mark('b'));
    for (const auto& each : {first, second, second})
        each->cancel();
    EXPECT_TRUE(first->index()) << "it takes effect in the main queue's turn";
    MainQueue::drain();
    EXPECT_FALSE(first->index());
    EXPECT_EQ(loader->state(), State::isLoading);
    gate->signal();
    ASSERT_TRUE(runUntilQueueIsEmpty());
    EXPECT_EQ(loads, 0);
    EXPECT_EQ(loader->state(), State::isNotLoaded);

    // One of several leaves the others.
    holdQueue();
    const auto dropped = loader->request(mark('c'));
    EXPECT_EQ(dropped->index(), 2) << "keys go on after a skipped load";
    const auto kept = loader->request(mark('d'));
    dropped->cancel();
    MainQueue::drain();
    gate->signal();
    ASSERT_TRUE(runUntilQueueIsEmpty());
    EXPECT_EQ(loads, 1);
    EXPECT_EQ(seen, "d");
}

TEST_F(ValueLoaderTest, ARequestIsDoneBeforeItsCompletionRuns) {
    std::shared_ptr<ValueRequest<std::string>> first, second;
    holdQueue();
    const auto completion = [&] {
        seen += first->index() ? 'p' : 'd';
        EXPECT_EQ(loader->value(), "value");
        EXPECT_FALSE(loader->request());
        // By whichever completes first; the queue is run before the other's turn.
        first->cancel();
        second->cancel();
        MainQueue::drain();
    };
    first = loader->request(completion);
    second = loader->request(completion);
    gate->signal();
    ASSERT_TRUE(runUntilQueueIsEmpty());
    EXPECT_EQ(seen.size(), 1U) << "the other was cancelled in time";
    EXPECT_TRUE(loader->requests().empty());
}

TEST_F(ValueLoaderTest, TheLoadKeepsTheLoaderAliveAndTheRequestDoesNot) {
    holdQueue();
    const auto request = loader->request(mark('a'));
    const std::weak_ptr<Loader> watched = loader;
    loader = nullptr;
    gate->signal();
    ASSERT_TRUE(runUntilQueueIsEmpty());
    EXPECT_EQ(seen, "a");
    EXPECT_TRUE(watched.expired());
    EXPECT_FALSE(request->wait());
}

TEST_F(ValueLoaderTest, AMainOperationQueueWillDo) {
    const auto onMain = Loader::create(NSOperationQueue::main(), [] { return "m"; });
    onMain->request(mark('m'));
    EXPECT_EQ(onMain->state(), State::isLoading);
    MainQueue::drain();
    EXPECT_EQ(onMain->value(), "m");
    EXPECT_EQ(seen, "m");
}

using ValueLoaderDeathTest = ValueLoaderTest;

TEST_F(ValueLoaderDeathTest, StopsOnTheWrongThread) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(loader->request()->wait(),
                 "^The main thread cannot wait for a value that it must complete.\n$");
    EXPECT_DEATH(std::thread([&] { loader->request(); }).join(),
                 "^A value that is not loaded can only be requested on the main thread.\n$");
}

TEST_F(ValueLoaderTest, ThousandsOfLoadersUnderRacingCancellationsAndWaits) {
    struct Case {
        std::shared_ptr<ValueLoader<int>> loader;
        std::shared_ptr<ValueRequest<int>> request;
        std::atomic<int> completions = 0;
        bool cancelled = false;
    };
    constexpr int count = 3000;
    const auto many = NSOperationQueue::create(), waits = NSOperationQueue::create();
    std::vector<Case> cases(count);
    std::atomic<int> wrong = 0, right = 0; // of the values that were waited for
    std::mt19937 random(6);
    for (int i = 0; i < count; ++i) {
        Case& each = cases[static_cast<std::size_t>(i)];
        each.loader = ValueLoader<int>::create(many, [i] { return i; });
        each.request = each.loader->request([&each] { ++each.completions; });
        each.cancelled = random() % 2;
        waits->addOperation([&, i, request = each.request] {
            if (const std::optional<int> value = request->wait())
                ++(*value == i ? right : wrong);
        });
        if (each.cancelled)
            waits->addOperation([request = each.request] { request->cancel(); });
        if (each.cancelled && i % 2)
            each.request->cancel();
        if (random() % 4 == 0)
            each.loader = nullptr;
        if (i % 64 == 0)
            MainQueue::drain();
    }
    ASSERT_TRUE(
        waitUntil([&] { return many->operationCount() == 0 && waits->operationCount() == 0; }));
    MainQueue::drain();
    EXPECT_EQ(wrong, 0);
    EXPECT_GT(right, 0);
    for (const Case& each : cases) {
        EXPECT_FALSE(each.request->index());
        EXPECT_LE(each.completions, 1);
        EXPECT_TRUE(each.cancelled || each.completions == 1);
        EXPECT_TRUE(!each.loader || !each.completions || each.loader->value());
    }
}

} // namespace
