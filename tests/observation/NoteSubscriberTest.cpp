#include <tests/Testing.h>

#include <zorvan/observation/MultiNoteSubscriber.h>
#include <zorvan/observation/NoteSubscriber.h>
#include <zorvan/platform/dispatch/MainQueue.h>

namespace {

const NSNotificationName opened = "Opened";
const NSNotificationName closed = "Closed";

struct Target {
    std::string seen;
};

class NoteSubscriberTest : public testing::Test {
protected:
    NoteSubscriberTest() { subscriber->setName(opened); }

    static void note(const std::shared_ptr<Target>& self, const Notification& told) {
        self->seen += told.name.rawValue().substr(0, 1);
    }
    void subscribe() { subscriber->subscribe(target, note); }

    std::shared_ptr<Target> target = std::make_shared<Target>();
    const std::shared_ptr<NSNotificationCenter> center = NSNotificationCenter::create();
    const std::shared_ptr<NoteSubscriber> subscriber = NoteSubscriber::create(center);
    std::shared_ptr<int> sender = std::make_shared<int>();
};

TEST_F(NoteSubscriberTest, ObservesBetweenSubscribeAndUnsubscribe) {
    EXPECT_EQ(subscriber->center(), center);
    EXPECT_FALSE(subscriber->queue() || subscriber->object() || subscriber->observer());
    subscriber->unsubscribe();
    center->post(opened);
    subscribe();
    EXPECT_TRUE(subscriber->observer());
    center->post(opened, sender);
    center->post(closed);
    EXPECT_EQ(target->seen, "O");
    subscriber->unsubscribe();
    EXPECT_FALSE(subscriber->observer());
    subscriber->unsubscribe();
    center->post(opened);
    EXPECT_EQ(target->seen, "O");
    subscribe();
    center->post(opened);
    EXPECT_EQ(target->seen, "OO");
}

TEST_F(NoteSubscriberTest, SettingsTakeEffectAtTheNextSubscribe) {
    subscribe();
    subscriber->setName(closed);
    subscriber->setObject(sender);
    subscriber->setQueue(NSOperationQueue::main());
    center->post(closed, sender);
    center->post(opened);
    EXPECT_EQ(target->seen, "O");
    subscriber->unsubscribe();
    subscribe();
    center->post(opened);
    center->post(closed);
    center->post(closed, sender);
    EXPECT_EQ(target->seen, "O");
    MainQueue::drain();
    EXPECT_EQ(target->seen, "OC");
}

TEST_F(NoteSubscriberTest, ASenderThatIsGoneMeansEverySender) {
    subscriber->setObject(sender);
    EXPECT_EQ(subscriber->object(), sender);
    sender = nullptr;
    EXPECT_FALSE(subscriber->object());
    subscribe();
    center->post(opened);
    EXPECT_EQ(target->seen, "O");
}

TEST_F(NoteSubscriberTest, KeepsNeitherTargetNorSenderAlive) {
    int calls = 0;
    subscriber->setObject(sender);
    subscriber->subscribe(target,
                          [&](const std::shared_ptr<Target>&, const Notification&) { ++calls; });
    EXPECT_EQ(target.use_count(), 1);
    EXPECT_EQ(sender.use_count(), 1);
    center->post(opened, sender);
    target = nullptr;
    center->post(opened, sender);
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(subscriber->observer()) << "still registered";
    // The target may be gone by the time of a queued delivery.
    subscriber->unsubscribe();
    subscriber->setQueue(NSOperationQueue::main());
    target = std::make_shared<Target>();
    subscribe();
    center->post(opened, sender);
    target = nullptr;
    MainQueue::drain();
}

TEST_F(NoteSubscriberTest, ReleasingTheSubscriberDoesNotEndTheObservation) {
    auto released = NoteSubscriber::create(center);
    released->setName(opened);
    released->subscribe(target, [](const auto& self, const Notification&) { self->seen += 'x'; });
    const auto observer = released->observer();
    released = nullptr;
    center->post(opened);
    EXPECT_EQ(target->seen, "x");
    center->removeObserver(observer);
}

TEST_F(NoteSubscriberTest, ATokenRemovedAtTheCenterEndsTheObservation) {
    subscribe();
    center->removeObserver(subscriber->observer());
    EXPECT_FALSE(subscriber->observer());
    subscribe();
    center->post(opened);
    EXPECT_EQ(target->seen, "O");
}

using NoteSubscriberDeathTest = NoteSubscriberTest;

TEST_F(NoteSubscriberDeathTest, ChecksInOrder) {
    const auto nameless = NoteSubscriber::create(center);
    EXPECT_FALSE(nameless->name());
    EXPECT_DEATH(nameless->subscribe(target, [](const auto&, const Notification&) {}),
                 "^Notification name has not been set.\n$");
    subscribe();
    EXPECT_DEATH(subscribe(), "^Subcriber is already observing.\n$");
    subscriber->setName(std::nullopt);
    EXPECT_DEATH(subscribe(), "^Subcriber is already observing.\n$");
}

class MultiNoteSubscriberTest : public NoteSubscriberTest {
protected:
    void subscribeToAll() { multi->subscribe(target, note); }

    const std::shared_ptr<MultiNoteSubscriber> multi = MultiNoteSubscriber::create(center);
    const std::vector<std::shared_ptr<int>> senders{
        std::make_shared<int>(), std::make_shared<int>(), std::make_shared<int>()};
};

TEST_F(MultiNoteSubscriberTest, ObservesEveryPairByNameThenSender) {
    multi->setQueue(NSOperationQueue::main());
    multi->setNames({opened, closed});
    multi->setObjects({senders[0], senders[1], OpaqueWeakValue({.value = senders[2]})});
    subscribeToAll();
    ASSERT_EQ(multi->subscribers().size(), 6U);
    for (std::size_t i = 0; i < 6; ++i) {
        const NoteSubscriber& each = *multi->subscribers()[i];
        EXPECT_EQ(each.name(), i < 3 ? opened : closed);
        EXPECT_EQ(each.object(), senders[i % 3]);
        EXPECT_EQ(each.queue(), NSOperationQueue::main());
        EXPECT_EQ(each.center(), center);
        EXPECT_TRUE(each.observer());
    }
    center->post(opened, senders[1]);
    center->post(closed, senders[2]);
    center->post(closed, sender);
    EXPECT_EQ(target->seen, "");
    MainQueue::drain();
    EXPECT_EQ(target->seen, "OC");

    multi->unsubscribe();
    EXPECT_TRUE(multi->subscribers().empty());
    multi->unsubscribe();
    center->post(opened, senders[1]);
    MainQueue::drain();
    EXPECT_EQ(target->seen, "OC");
    subscribeToAll();
    EXPECT_EQ(multi->subscribers().size(), 6U);
}

TEST_F(MultiNoteSubscriberTest, AnEmptyBoxMeansEverySender) {
    multi->setNames({opened});
    multi->setObjects({OpaqueWeakValue(sender)});
    sender = nullptr;
    subscribeToAll();
    center->post(opened, senders[0]);
    center->post(opened);
    EXPECT_EQ(target->seen, "OO");
}

using MultiNoteSubscriberDeathTest = MultiNoteSubscriberTest;

TEST_F(MultiNoteSubscriberDeathTest, ChecksInOrder) {
    EXPECT_DEATH(subscribeToAll(), "^Notification names have not been set.\n$");
    multi->setNames({opened});
    EXPECT_DEATH(subscribeToAll(), "^Notification objects have not been set.\n$");
    multi->setObjects({OpaqueWeakValue()});
    subscribeToAll();
    multi->setNames({});
    EXPECT_DEATH(subscribeToAll(), "^Subcribers are already observing.\n$");
}

} // namespace
