#include <tests/Testing.h>

#include <zorvan/platform/dispatch/DispatchSemaphore.h>
#include <zorvan/platform/dispatch/MainQueue.h>
#include <zorvan/platform/dispatch/NSNotificationCenter.h>
#include <zorvan/platform/dispatch/NSThread.h>

#include <new>

namespace {

const NSNotificationName opened = "Opened";
const NSNotificationName closed = "Closed";

struct Edition {
    int rows;
};

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
    EXPECT_NE(opened, closed);
    EXPECT_GT(opened, closed);
    EXPECT_EQ(opened.rawValue(), "Opened");
    EXPECT_EQ((std::unordered_set<NSNotificationName>{opened, closed, "Opened"}).size(), 2U);
}

TEST_F(NSNotificationCenterTest, HandsOverTheNotification) {
    const auto edition = std::make_shared<const Edition>(Edition{7});
    int told = 0;
    center->addObserver(opened, nullptr, nullptr, [&](const Notification& note) {
        ++told;
        EXPECT_EQ(note.name, opened);
        EXPECT_EQ(note.object, one);
        ASSERT_TRUE(note.value<Edition>("Edition"));
        EXPECT_EQ(note.value<Edition>("Edition")->rows, 3);
        EXPECT_EQ(*note.value<std::shared_ptr<const Edition>>("Shared"), edition);
        EXPECT_FALSE(note.value<int>("Edition")) << "of another type";
        EXPECT_FALSE(note.value<Edition>("Other"));
    });
    center->post(opened, one, {{{"Edition", Edition{3}}, {"Shared", edition}}});
    center->post(Notification(opened, one, {{{"Edition", Edition{3}}, {"Shared", edition}}}));
    EXPECT_EQ(told, 2);
    const Notification bare(opened);
    EXPECT_FALSE(bare.value<int>("Edition"));
    EXPECT_FALSE(bare.userInfo.has_value());
}

TEST_F(NSNotificationCenterTest, ARemovedObserverIsToldNoMore) {
    const auto a = observe(opened, nullptr, 'a');
    const auto b = observe(opened, one, 'b');
    center->removeObserver(a);
    EXPECT_EQ(told(opened, one), "b");
    center->removeObserver(a);
    center->removeObserver(nullptr);
    NSNotificationCenter::create()->removeObserver(b);
    EXPECT_EQ(told(opened, one), "b");
    center->removeObserver(b);
    EXPECT_EQ(told(opened, one), "");
}

TEST_F(NSNotificationCenterTest, RemovalReleasesTheBlockAndTheCenterKeepsTheRegistration) {
    auto held = std::make_shared<int>(0);
    const std::weak_ptr<int> watched = held;
    auto token = center->addObserver(opened, nullptr, nullptr, [held](const Notification&) {});
    held = nullptr;
    center->post(opened);
    const std::weak_ptr<NotificationObserver> registration = token;
    token = nullptr;
    EXPECT_FALSE(registration.expired());
    EXPECT_FALSE(watched.expired());
    center->removeObserver(registration.lock());
    EXPECT_TRUE(registration.expired());
    EXPECT_TRUE(watched.expired());
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
    seen.clear();
    center->post(closed);
    EXPECT_EQ(seen, "(c)o");
}

TEST_F(NSNotificationCenterTest, AnObserverMayDropTheCenter) {
    for (const int postsBefore : {0, 1}) {
        auto dropped = NSNotificationCenter::create();
        int posts = 0;
        for (int i = 0; i < 2; ++i)
            dropped->addObserver(opened, nullptr, nullptr, [&](const Notification&) {
                seen += 't';
                if (posts == postsBefore)
                    dropped = nullptr;
            });
        for (; posts < postsBefore; ++posts)
            dropped->post(opened);
        seen.clear();
        dropped->post(opened);
        EXPECT_EQ(seen, "tt") << postsBefore;
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

TEST_F(NSNotificationCenterTest, HundredsOfNamesAndSendersAreToldApart) {
    std::vector<std::shared_ptr<NotificationObserver>> tokens;
    std::vector<std::pair<NSNotificationName, std::shared_ptr<int>>> pairs;
    std::vector<int> calls(900);
    for (std::size_t i = 0; i < 900; ++i) {
        const auto sender = i % 3 ? std::make_shared<int>() : nullptr;
        pairs.emplace_back("Name" + std::to_string(i / 2), sender);
        tokens.push_back(center->addObserver(pairs.back().first, sender, nullptr,
                                             [&, i](const Notification&) { ++calls[i]; }));
    }
    const auto postEach = [&] {
        for (int twice = 0; twice < 2; ++twice)
            for (const auto& [name, sender] : pairs)
                center->post(name, sender);
    };
    postEach();
    for (std::size_t i = 0; i < 900; ++i) {
        EXPECT_EQ(calls[i], i % 3 ? 2 : 4) << "of its sender alone, or of its name: " << i;
        if (i % 5)
            center->removeObserver(tokens[i]);
    }
    calls.assign(900, 0);
    postEach();
    for (std::size_t i = 0; i < 900; ++i)
        EXPECT_EQ(calls[i], i % 5 ? 0 : i % 3 ? 2 : 4) << i;
}

TEST_F(NSNotificationCenterTest, AQueueIsRespectedAndNotWaitedFor) {
    std::thread::id ranOn;
    const auto token = center->addObserver(opened, nullptr, NSOperationQueue::main(),
                                           [&](const Notification& note) {
                                               EXPECT_TRUE(NSThread::isMainThread());
                                               EXPECT_EQ(*note.value<int>("n"), 5);
                                               seen += 'm';
                                           });
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
    const std::vector<std::optional<NSNotificationName>> names{opened, closed, std::nullopt};
    const std::vector<std::shared_ptr<int>> senders{one, two, nullptr};
    std::vector<Entry> model;
    for (int step = 0; step < 3000; ++step) {
        const auto name = names[random() % 3];
        const auto sender = senders[random() % 3];
        if (random() % 3 && model.size() < 40) {
            const char mark = static_cast<char>('A' + random() % 26);
            model.push_back({name, sender, mark, observe(name, sender, mark)});
        } else if (!model.empty()) {
            const auto victim = model.begin() + static_cast<long>(random() % model.size());
            center->removeObserver(victim->token);
            model.erase(victim);
        }
        const NSNotificationName posted = names[random() % 3].value_or("Other");
        const auto poster = senders[random() % 3];
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
    std::vector<std::thread> threads;
    for (int t = 0; t < 2; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 3000; ++i)
                center->post(opened, one);
        });
        threads.emplace_back([&, t] {
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
    threads[0].join();
    threads[2].join();
    stop = true;
    threads[1].join();
    threads[3].join();
    EXPECT_EQ(calls, 6000);

    // So often that the center has to count the posts afresh.
    const auto postOften = [&] {
        for (int i = 0; i < 50'000; ++i)
            center->post(opened, one);
    };
    std::thread other(postOften);
    postOften();
    other.join();
    EXPECT_EQ(calls, 106'000);
    EXPECT_FALSE(watched.expired());
    center->removeObserver(steady.lock());
    EXPECT_TRUE(watched.expired()) << "whatever was lent has come back";
}

} // namespace
