#include <tests/Testing.h>
#include <tests/Variable.h>
#include <tests/waitUntil.h>

#include <zorvan/observation/DistributedNoteSubscriber.h>
#include <zorvan/observation/MultiNoteSubscriber.h>
#include <zorvan/observation/NoteSubscriber.h>
#include <zorvan/platform/dispatch/MainQueue.h>

namespace {

const NSNotificationName opened = "Opened";
const NSNotificationName closed = "Closed";

class NoteSubscriberTest : public testing::Test {
protected:
    NoteSubscriberTest() { subscriber->setName(opened); }

    static void note(const std::shared_ptr<std::string>& self, const Notification& told) {
        *self += told.name.rawValue().substr(0, 1);
    }
    void subscribe() { subscriber->subscribe(target, note); }

    std::shared_ptr<std::string> target = std::make_shared<std::string>();
    const std::shared_ptr<NSNotificationCenter> center = NSNotificationCenter::create();
    const std::shared_ptr<NoteSubscriber> subscriber = NoteSubscriber::create(center);
    std::shared_ptr<int> sender = std::make_shared<int>();
};

TEST_F(NoteSubscriberTest, ObservesBetweenSubscribeAndUnsubscribe) {
    EXPECT_EQ(subscriber->center(), center);
    EXPECT_FALSE(subscriber->queue() || subscriber->object() || subscriber->observer());
    subscriber->unsubscribe(); // nothing yet
    subscribe();
    center->post(opened, sender);
    // What is set takes effect at the next subscribe.
    subscriber->setName(closed);
    subscriber->setObject(sender);
    subscriber->setQueue(NSOperationQueue::main());
    center->post(closed, sender);
    center->post(opened);
    EXPECT_EQ(*target, "OO");
    subscriber->unsubscribe();
    EXPECT_FALSE(subscriber->observer());
    center->post(opened);
    subscribe();
    center->post(opened, sender);
    center->post(closed);
    center->post(closed, sender);
    EXPECT_EQ(*target, "OO");
    MainQueue::drain();
    EXPECT_EQ(*target, "OOC");
    center->removeObserver(subscriber->observer()); // at the center itself
    EXPECT_FALSE(subscriber->observer());
    sender = nullptr; // which means every sender
    EXPECT_FALSE(subscriber->object());
    subscriber->setQueue(nullptr);
    subscribe();
    center->post(closed);
    EXPECT_EQ(*target, "OOCC");
}

TEST_F(NoteSubscriberTest, KeepsNothingAliveAndMayBeReleased) {
    auto released = NoteSubscriber::create(center);
    released->setName(opened);
    released->setObject(sender);
    released->subscribe(target, note);
    EXPECT_TRUE(target.use_count() == 1 && sender.use_count() == 1);
    const std::weak_ptr registration = released->observer();
    released = nullptr;
    center->post(opened, sender);
    EXPECT_EQ(*target, "O") << "the observation goes on";
    target = nullptr;
    center->post(opened, sender);
    EXPECT_FALSE(registration.expired());
    // The target may be gone by the time of a queued delivery.
    subscriber->setQueue(NSOperationQueue::main());
    target = std::make_shared<std::string>();
    subscribe();
    center->post(opened);
    target = nullptr;
    MainQueue::drain();
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
    std::vector<std::shared_ptr<int>> senders{std::make_shared<int>(), std::make_shared<int>(),
                                              std::make_shared<int>()};
};

TEST_F(MultiNoteSubscriberTest, ObservesEveryPairByNameThenSender) {
    multi->setQueue(NSOperationQueue::main());
    multi->setNames({opened, closed});
    multi->setObjects({senders[0], OpaqueWeakValue({.value = senders[1]}), senders[2]});
    senders[2] = nullptr; // which means every sender
    subscribeToAll();
    ASSERT_EQ(multi->subscribers().size(), 6U);
    for (std::size_t i = 0; i < 6; ++i) {
        const NoteSubscriber& each = *multi->subscribers()[i];
        EXPECT_EQ(each.name(), i < 3 ? opened : closed);
        EXPECT_EQ(each.object(), senders[i % 3]);
        EXPECT_EQ(each.queue(), NSOperationQueue::main());
        EXPECT_EQ(each.center(), center);
    }
    center->post(opened, senders[1]);
    center->post(closed, sender);
    EXPECT_EQ(*target, "");
    MainQueue::drain();
    EXPECT_EQ(*target, "OOC");

    multi->unsubscribe();
    multi->unsubscribe();
    center->post(opened, senders[1]);
    MainQueue::drain();
    EXPECT_EQ(*target, "OOC");
    subscribeToAll();
    EXPECT_EQ(multi->subscribers().size(), 6U);
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

TEST(DistributedNoteSubscriberTest, KeepsASenderThatIsGivenAsText) {
    const Variable noBus("DBUS_SESSION_BUS_ADDRESS", nullptr),
        noSockets("XDG_RUNTIME_DIR", nullptr);
    const auto center = NSDistributedNotificationCenter::defaultCenter();
    const auto told = std::make_shared<std::string>();
    const auto subscriber = DistributedNoteSubscriber::create(center);
    subscriber->setName("Moved");
    subscriber->setObject("this one");
    ASSERT_TRUE(subscriber->object());
    EXPECT_EQ(*subscriber->object(), "this one");
    subscriber->subscribe(told, [](const auto& self, const Notification& note) {
        *self += *NSDistributedNotificationCenter::sender(note) + ';';
    });
    for (const char* sender : {"another", "this one", "another", "this one"})
        center->post("Moved", sender);
    EXPECT_TRUE(waitUntil([&] { return told->size() >= 18; }));
    EXPECT_EQ(*told, "this one;this one;");
    subscriber->unsubscribe();
    for (const bool isNull : {true, false}) { // which mean every sender
        isNull ? subscriber->setObject(nullptr)
               : subscriber->setObject(std::make_shared<const std::string>("gone by then"));
        EXPECT_FALSE(subscriber->object());
    }
}

} // namespace
