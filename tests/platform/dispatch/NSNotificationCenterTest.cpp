#include <tests/Testing.h>

#include <zorvan/platform/dispatch/DispatchSemaphore.h>
#include <zorvan/platform/dispatch/MainQueue.h>
#include <zorvan/platform/dispatch/NSNotificationCenter.h>
#include <zorvan/platform/dispatch/NSThread.h>

#include <deque>
#include <new>

namespace {

const NSNotificationName opened = "Opened";
const NSNotificationName closed = "Closed";

class NSNotificationCenterTest : public testing::Test {
protected:
    std::shared_ptr<NotificationObserver> observe(std::optional<NSNotificationName> name,
                                                  std::shared_ptr<const void> sender, char mark) {
        return center->addObserver(name, std::move(sender), nullptr,
                                   [this, mark](const Notification&) { seen += mark; });
    }

    std::string told(NSNotificationName name, std::shared_ptr<const void> sender = {}) {
        seen.clear();
        center->post(name, std::move(sender));
        return seen;
    }

    const std::shared_ptr<NSNotificationCenter> center = NSNotificationCenter::create();
    const std::shared_ptr<int> one = std::make_shared<int>(1);
    const std::shared_ptr<int> two = std::make_shared<int>(2);
    std::string seen;
};

TEST(NSNotificationName, IsItsText) {
    EXPECT_EQ(NSNotificationName(std::string("Opened")), opened);
    EXPECT_GT(opened, closed);
    EXPECT_EQ((std::unordered_set<NSNotificationName>{opened, closed, "Opened"}).size(), 2U);
}

TEST_F(NSNotificationCenterTest, HandsOverTheNotification) {
    int told = 0;
    center->addObserver(opened, nullptr, nullptr, [&](const Notification& note) {
        ++told;
        EXPECT_EQ(note.name, opened);
        EXPECT_EQ(note.object, one);
        EXPECT_EQ(*note.value<int>("n"), 3);
        EXPECT_FALSE(note.value<char>("n")) << "of another type";
        EXPECT_FALSE(note.value<int>("other"));
    });
    center->post(opened, one, {{{"n", 3}}});
    center->post(Notification(opened, one, {{{"n", 3}}}));
    EXPECT_EQ(told, 2);
    const Notification bare(opened);
    EXPECT_FALSE(bare.value<int>("n"));
}

TEST_F(NSNotificationCenterTest, ObserversMayRemoveAndAddWhileBeingTold) {
    std::shared_ptr<NotificationObserver> self;
    std::shared_ptr<NotificationObserver> later;
    self = center->addObserver(opened, nullptr, nullptr, [&](const Notification&) {
        seen += 's';
        center->removeObserver(self);
        center->removeObserver(later);
        observe(opened, nullptr, 'n');
    });
    later = observe(opened, nullptr, 'l');
    observe(opened, nullptr, 'k');
    EXPECT_EQ(told(opened), "sk") << "neither the removed nor the new one";
    EXPECT_EQ(told(opened), "kn");
    // And post.
    observe("Nested", nullptr, 'c');
    center->addObserver(closed, nullptr, nullptr, [&](const Notification&) {
        seen += '(';
        center->post("Nested");
        seen += ')';
    });
    observe(closed, nullptr, 'o');
    EXPECT_EQ(told(closed), "(c)o");
}

TEST_F(NSNotificationCenterTest, AnObserverMayDropTheCenter) {
    for (const int postsBefore : {0, 1}) {
        auto dropped = NSNotificationCenter::create();
        int calls = 0;
        for (int i = 0; i < 2; ++i)
            dropped->addObserver(opened, nullptr, nullptr, [&](const Notification&) {
                if (++calls > 2 * postsBefore)
                    dropped = nullptr;
            });
        for (int post = 0; post <= postsBefore; ++post)
            dropped->post(opened);
        EXPECT_EQ(calls, 2 + 2 * postsBefore);
    }
}

TEST_F(NSNotificationCenterTest, ABlockMayUseTheCenterWhenItIsReleased) {
    struct Last {
        NSNotificationCenter& center;
        ~Last() { center.post(closed); }
    };
    observe(closed, nullptr, 'c');
    const std::weak_ptr<NotificationObserver> token = center->addObserver(
        opened, nullptr, nullptr,
        [last = std::shared_ptr<Last>(new Last{*center})](const Notification&) {});
    center->removeObserver(token.lock());
    EXPECT_EQ(seen, "c");
}

TEST_F(NSNotificationCenterTest, AnExceptionReachesThePosterAndEndsThePost) {
    observe(opened, nullptr, 'a');
    const auto thrower = center->addObserver(
        opened, nullptr, nullptr, [](const Notification&) { throw std::runtime_error("no"); });
    observe(opened, nullptr, 'b');
    EXPECT_THROW(center->post(opened), std::runtime_error);
    EXPECT_EQ(seen, "a");
    center->removeObserver(thrower);
    EXPECT_EQ(told(opened), "ab");
}

TEST_F(NSNotificationCenterTest, AnObjectAtTheAddressOfAGoneSenderIsNotTakenForIt) {
    alignas(int) std::byte place[sizeof(int)];
    const auto make = [&] { return std::shared_ptr<int>(new (place) int(0), [](int*) {}); };
    auto sender = make();
    const auto old = observe(opened, sender, 'o');
    EXPECT_EQ(told(opened, sender), "o");
    sender = nullptr;
    sender = make();
    EXPECT_EQ(told(opened, sender), "");
    const auto fresh = observe(opened, sender, 'f');
    EXPECT_EQ(told(opened, sender), "f");
    center->removeObserver(old);
    EXPECT_EQ(told(opened, sender), "f");
    center->removeObserver(fresh);
    EXPECT_EQ(told(opened, sender), "");

    // Nor is a living one of another owner.
    const std::shared_ptr<int> other(two, one.get());
    observe(opened, one, '1');
    observe(opened, nullptr, 'n');
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(told(opened, one), "1n");
        EXPECT_EQ(told(opened, other), "n");
    }
}

TEST_F(NSNotificationCenterTest, AQueueIsRespectedAndNotWaitedFor) {
    const auto mark = [&](const Notification& note) {
        seen += NSThread::isMainThread() && *note.value<int>("n") == 5 ? 'm' : '?';
    };
    const auto token = center->addObserver(opened, nullptr, NSOperationQueue::main(), mark);
    std::thread([&] { center->post(opened, nullptr, {{{"n", 5}}}); }).join();
    EXPECT_EQ(seen, "");
    MainQueue::drain();
    EXPECT_EQ(seen, "m");
    center->post(opened, nullptr, {{{"n", 5}}});
    center->removeObserver(token);
    MainQueue::drain();
    EXPECT_EQ(seen, "m") << "removed before its turn came";
}

// By name and sender, in the order of registration.
TEST_F(NSNotificationCenterTest, RandomRegistrationsMatchAPlainList) {
    struct Entry {
        std::optional<NSNotificationName> name;
        std::shared_ptr<int> sender;
        char mark;
        std::shared_ptr<NotificationObserver> token;
    };
    std::mt19937 random(20);
    // Three of either that meet often, and hundreds besides.
    std::vector<std::optional<NSNotificationName>> names{opened, closed, std::nullopt};
    std::vector<std::shared_ptr<int>> senders{one, two, nullptr};
    for (int i = 0; i < 300; ++i) {
        names.emplace_back("Name" + std::to_string(i));
        senders.push_back(std::make_shared<int>());
    }
    const auto anyOf = [&](const auto& all) { return all[random() % (random() % 3 ? 3 : 303)]; };
    std::vector<Entry> model;
    const auto elsewhere = NSNotificationCenter::create();
    center->removeObserver(nullptr);
    for (int step = 0; step < 3000; ++step) {
        const auto name = anyOf(names);
        const auto sender = anyOf(senders);
        if (random() % 3 && model.size() < 900) {
            const char mark = static_cast<char>('A' + random() % 26);
            model.push_back({name, sender, mark, observe(name, sender, mark)});
        } else if (!model.empty()) {
            const auto victim = model.begin() + static_cast<long>(random() % model.size());
            elsewhere->removeObserver(victim->token);
            for (int twice = 0; twice < 2; ++twice)
                center->removeObserver(victim->token);
            model.erase(victim);
        }
        const NSNotificationName posted = anyOf(names).value_or("Other");
        const auto poster = anyOf(senders);
        std::string expected;
        for (const Entry& entry : model) {
            if ((!entry.name || *entry.name == posted) && (!entry.sender || entry.sender == poster))
                expected += entry.mark;
        }
        ASSERT_EQ(told(posted, poster), expected) << step;
    }
}

TEST_F(NSNotificationCenterTest, ThreadsMayPostWhileOthersRegisterAndRemove) {
    std::atomic<int> calls = 0;
    std::atomic<bool> stop = false;
    auto held = std::make_shared<int>(0);
    const std::weak_ptr<int> watched = held;
    const std::weak_ptr<NotificationObserver> steady =
        center->addObserver(opened, nullptr, nullptr, [&, held](const Notification&) { ++calls; });
    held = nullptr;
    std::vector<std::jthread> posters, others;
    for (int t = 0; t < 2; ++t) {
        posters.emplace_back([&] {
            for (int i = 0; i < 3000; ++i)
                center->post(opened, one);
        });
        others.emplace_back([&, t] {
            const NSNotificationName ownName = "Own" + std::to_string(t);
            while (!stop) {
                int mine = 0;
                const auto shared =
                    center->addObserver(t ? std::optional(opened) : std::nullopt, t ? one : nullptr,
                                        nullptr, [](const Notification&) {});
                const auto own = center->addObserver(ownName, nullptr, nullptr,
                                                     [&](const Notification&) { ++mine; });
                center->post(ownName);
                center->removeObserver(shared);
                center->removeObserver(own);
                center->post(ownName);
                EXPECT_EQ(mine, 1);
            }
        });
    }
    posters.clear();
    stop = true;
    others.clear();
    EXPECT_EQ(calls, 6000);

    // So often that the center has to count the posts afresh.
    for (int t = 0; t < 2; ++t)
        posters.emplace_back([&] {
            for (int i = 0; i < 50'000; ++i)
                center->post(opened, one);
        });
    posters.clear();
    EXPECT_EQ(calls, 106'000);
    EXPECT_FALSE(watched.expired());
    center->removeObserver(steady.lock());
    EXPECT_TRUE(watched.expired()) << "whatever was lent has come back";
}

} // namespace
