#include <tests/Testing.h>

#include <tests/Variable.h>
#include <tests/waitUntil.h>

#include <zorvan/observation/DistributedNoteSubscriber.h>

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
