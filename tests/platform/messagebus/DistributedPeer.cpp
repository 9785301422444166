// A process of its own that posts and observes as it is told on standard input, one command a line:
//
//   observe NAME [SENDER]           prints "observing", and from then on each notification
//   occupy NAME COUNT               observes in the background, and holds the main thread up until
//                                   told COUNT times; then prints "free"
//   ignore                          ends the last observation and prints "ignoring"
//   post NAME SENDER COUNT [SIZE]   posts COUNT notifications of that many bytes, numbered from 0,
//                                   then prints "posted"
//
// What the library has to say is printed as "log", its category and its level. SENDER "-" stands
// for none. A notification is printed as NAME SENDER NUMBER and the size of its bytes.

#include <zorvan/platform/dispatch/DispatchQueue.h>
#include <zorvan/platform/dispatch/DispatchSemaphore.h>
#include <zorvan/platform/dispatch/MainQueue.h>
#include <zorvan/platform/foundation/LibraryLog.h>
#include <zorvan/platform/messagebus/NSDistributedNotificationCenter.h>

#include <iostream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

using namespace zorvan;

namespace {

NSDistributedNotificationCenter& center() {
    return *NSDistributedNotificationCenter::defaultCenter();
}

std::vector<std::shared_ptr<NotificationObserver>> observers;

// In one piece: several threads have something to say.
void say(const std::string& line) { std::cout << line + "\n" << std::flush; }

void report(const Notification& notification) {
    const std::string* sender = NSDistributedNotificationCenter::sender(notification);
    const auto* number = notification.value<PropertyList>("number");
    const auto* bytes = notification.value<PropertyList>("bytes");
    std::ostringstream line;
    line << notification.name.rawValue() << ' ' << (sender ? *sender : "-") << ' '
         << (number ? number->as<NSNumber>()->int64Value() : -1) << ' '
         << (bytes ? bytes->as<Data>()->size() : 0);
    say(line.str());
}

void occupy(const std::string& name, int count) {
    DispatchSemaphore told(0);
    const auto tell = [&](const Notification& notification) {
        report(notification);
        told.signal();
    };
    const auto queue = NSOperationQueue::create();
    const auto observer = center().addObserver(name, nullptr, queue, tell);
    say("observing");
    for (int i = 0; i < count; ++i)
        told.wait();
    center().removeObserver(observer);
    queue->waitUntilAllOperationsAreFinished();
    say("free");
}

void obey(const std::string& line) {
    std::istringstream words(line);
    std::string command;
    std::string name;
    std::string sender;
    std::int64_t count = 0;
    words >> command >> name >> sender >> count;
    if (command == "observe") {
        const auto object = sender.empty() ? nullptr : std::make_shared<const std::string>(sender);
        observers.push_back(center().addObserver(name, object, nullptr, report));
        say("observing");
    } else if (command == "occupy") {
        occupy(name, std::stoi(sender));
    } else if (command == "ignore") {
        center().removeObserver(observers.back());
        observers.pop_back();
        say("ignoring");
    } else if (command == "post") {
        std::size_t size = 0;
        words >> size;
        for (std::int64_t i = 0; i < count; ++i)
            center().post(name, sender == "-" ? std::nullopt : std::optional(sender),
                          PropertyList::Dictionary{{"number", i}, {"bytes", Data(size)}});
        say("posted");
    }
}

} // namespace

int main() {
    LibraryLog::setHandler([](const LibraryLog::Entry& entry) {
        const std::string line = "log " + std::string(entry.category) + " " +
                                 std::to_string(static_cast<int>(entry.level));
        DispatchQueue::main()->async([line] { say(line); });
    });
    std::thread([] {
        for (std::string line; std::getline(std::cin, line);)
            DispatchQueue::main()->async([line] { obey(line); });
        DispatchQueue::main()->async([] { MainQueue::stop(); });
    }).detach();
    MainQueue::run();
}
