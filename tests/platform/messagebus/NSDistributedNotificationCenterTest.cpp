#include "Process.h"
#include <tests/Testing.h>
#include <tests/files/TemporaryFolder.h>

#include <zorvan/platform/messagebus/internal/WireFormat.h>

#include <csignal>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <systemd/sd-bus.h>

namespace {

enum class Way { bus, sockets };

/// A session of its own: an empty run-time directory, and a bus when the test is of that way.
class DistributedTest : public testing::TestWithParam<Way> {
protected:
    DistributedTest() {
        environment = {{"XDG_RUNTIME_DIR", directory}, {"DBUS_SESSION_BUS_ADDRESS", ""}};
        if (GetParam() == Way::bus)
            startBus();
    }

    void startBus() {
        const std::string address = "unix:path=" + directory + "/test-bus";
        bus = std::make_unique<Process>(std::vector<std::string>{"dbus-daemon", "--session",
                                                                 "--nofork", "--print-address",
                                                                 "--address=" + address},
                                        Process::Environment{});
        if (!bus->hear())
            throw std::runtime_error("no dbus-daemon");
        environment["DBUS_SESSION_BUS_ADDRESS"] = address;
    }

    std::unique_ptr<Process> peer() const {
        return std::make_unique<Process>(std::vector<std::string>{PEER}, environment);
    }

    static void expectAnswer(Process& process, const std::string& line, const char* answer) {
        process.tell(line);
        EXPECT_EQ(process.hear(), answer);
    }

    std::unique_ptr<Process> observer(const std::string& what) const {
        auto made = peer();
        expectAnswer(*made, "observe " + what, "observing");
        return made;
    }

    static void post(Process& process, const std::string& what) {
        expectAnswer(process, "post " + what, "posted");
    }

    static void expectNumbered(Process& process, const std::string& start, int count) {
        for (int i = 0; i < count; ++i)
            ASSERT_EQ(process.hear(), start + std::to_string(i) + " 0");
    }

    const TemporaryFolder folder;
    const std::string directory = folder.path();
    Process::Environment environment;
    std::unique_ptr<Process> bus;
};

TEST_P(DistributedTest, AllProcessesAreToldInOrderTheSenderIncluded) {
    const auto a = observer("Changed");
    const auto b = observer("Changed doc1");
    const auto other = observer("Renamed");
    post(*a, "Changed doc1 200");
    expectNumbered(*a, "Changed doc1 ", 200);
    expectNumbered(*b, "Changed doc1 ", 200);
    post(*b, "Changed doc2 2");
    post(*b, "Changed - 1");
    expectNumbered(*a, "Changed doc2 ", 2);
    expectNumbered(*a, "Changed - ", 1);
    post(*b, "Changed doc1 1");
    expectNumbered(*b, "Changed doc1 ", 1);
    expectAnswer(*other, "ignore", "ignoring");
    post(*b, "Renamed - 1");
    EXPECT_TRUE(other->isSilent(50ms));
    expectAnswer(*other, "observe Renamed", "observing");
    post(*b, "Renamed - 2");
    expectNumbered(*other, "Renamed - ", 2);
}

// The main thread receives while it is idle, and hands that over when it is not.
TEST_P(DistributedTest, ABusyMainThreadHoldsUpNobodyElse) {
    const auto a = observer("Quick");
    const auto b = peer();
    for (int round = 0; round < 3; ++round) {
        post(*b, "Quick x 1");
        expectNumbered(*a, "Quick x ", 1);
        expectAnswer(*a, "occupy Slow 20", "observing");
        post(*b, "Slow x 20");
        std::set<std::string> heard; // in the background there is no order
        for (int i = 0; i < 20; ++i)
            heard.insert(a->hear().value_or(""));
        EXPECT_EQ(heard.size(), 20U);
        EXPECT_EQ(a->hear(), "free");
    }
}

TEST_P(DistributedTest, NamesAndSendersMayBeAnyTextAndDataLarge) {
    for (const std::string& name : {std::string("it's"), std::string("a\\b"), std::string("é%,='"),
                                    std::string(3000, '\'')}) {
        const auto a = observer(name + " who's");
        post(*a, name + "x who's 1");
        post(*a, name + " who's 1");
        expectNumbered(*a, name + " who's ", 1);
    }
    const auto a = observer("Large");
    const auto b = peer();
    post(*b, "Large x 1 4000000");
    EXPECT_EQ(a->hear(), "Large x 0 4000000");
}

TEST_P(DistributedTest, AProcessKilledMidStreamHarmsNobody) {
    const auto survivor = observer("Stream");
    auto victim = observer("Stream");
    const auto sender = peer();
    auto flooder = peer();
    flooder->tell("post Stream flood 1000000000 100"); // without end
    for (int i = 0; i < 100; ++i)
        ASSERT_EQ(survivor->hear(), "Stream flood " + std::to_string(i) + " 100");
    ASSERT_TRUE(victim->hear());
    victim->end();
    EXPECT_TRUE(survivor->hear());
    flooder->end();
    survivor->isSilent(300ms);
    post(*sender, "Stream after 50");
    expectNumbered(*survivor, "Stream after ", 50);
}

TEST_P(DistributedTest, APostDoesNotWaitForAProcessThatStandsStill) {
    const auto still = observer("Busy");
    const auto a = observer("Busy");
    still->kill(SIGSTOP);
    const auto b = peer();
    post(*b, "Busy x 3000");
    expectNumbered(*a, "Busy x ", 3000);
    still->kill(SIGCONT);
    expectNumbered(*still, "Busy x ", 3000);
}

INSTANTIATE_TEST_SUITE_P(Ways, DistributedTest, testing::Values(Way::bus, Way::sockets),
                         [](const auto& info) {
                             return info.param == Way::bus ? "Bus" : "Sockets";
                         });

class DistributedBusTest : public DistributedTest {
protected:
    /// Whether the observer is told again of what another process posts.
    bool comesToHear(Process& observer, const std::string& name) const {
        const auto b = peer();
        for (int i = 0; i < 100; ++i) {
            post(*b, name + " y 1");
            if (observer.hear(100ms) == name + " y 0 0")
                return true;
        }
        return false;
    }
};
INSTANTIATE_TEST_SUITE_P(Bus, DistributedBusTest, testing::Values(Way::bus));

TEST_P(DistributedBusTest, MessagesOfHostilePeersAreIgnored) {
    const auto a = observer("Name");
    ::setenv("DBUS_SESSION_BUS_ADDRESS", environment["DBUS_SESSION_BUS_ADDRESS"].c_str(), 1);
    sd_bus* connection = nullptr;
    ASSERT_GE(sd_bus_open_user(&connection), 0);
    const auto send = [&](const char* types, auto... values) {
        EXPECT_GE(sd_bus_emit_signal(connection, "/any/path", "org.zorvan.Notifications1", "Posted",
                                     types, values...),
                  0);
    };
    send("");
    send("s", "Name");
    send("ss", "Name", "text");
    send("sai", "Name", 2, 1, 2);
    send("say", "Name", 0);
    send("say", "Name", 3, 1, 255, 255);
    sd_bus_flush_close_unref(connection);
    post(*a, "Name x 1");
    expectNumbered(*a, "Name x ", 1);
}

TEST_P(DistributedBusTest, ABusThatComesBackIsFoundAgain) {
    const auto a = observer("Again");
    bus = nullptr;
    EXPECT_EQ(a->hear(), "log messagebus 1");
    post(*a, "Again x 1"); // lost, without harm
    startBus();
    EXPECT_EQ(a->hear(), "log messagebus 0");
    EXPECT_TRUE(comesToHear(*a, "Again"));
}

// What a busy process has not delivered yet is bounded.
TEST_P(DistributedBusTest, ABusyProcessMissesWhatIsTooMuch) {
    constexpr int count = 40; // of 4 MB each
    const auto a = observer("Large");
    const auto b = peer();
    expectAnswer(*a, "occupy Slow 1", "observing");
    post(*b, "Large x " + std::to_string(count) + " 4000000");
    post(*b, "Slow x 1");
    EXPECT_EQ(a->hear(), "Slow x 0 0");
    EXPECT_EQ(a->hear(), "free");
    int heard = 0, told = 0;
    for (auto line = a->hear(); line && told + heard < count; line = a->hear(500ms))
        ++(*line == "log messagebus 1" ? told : heard);
    EXPECT_EQ(heard, 16); // 64 MiB
    EXPECT_EQ(told, 1);
    post(*b, "Large x 1");
    expectNumbered(*a, "Large x ", 1);
}

TEST_P(DistributedBusTest, ABusThatHangsIsAskedAgain) {
    const auto a = observer("Early");
    bus->kill(SIGSTOP);
    expectAnswer(*a, "observe Late", "observing"); // after a while, without the bus
    bus->kill(SIGCONT);
    EXPECT_TRUE(comesToHear(*a, "Late"));
}

class DistributedSocketTest : public DistributedTest {
protected:
    const fs::path notifications = fs::path(directory) / "zorvan-notifications";

    std::vector<fs::path> sockets() const {
        return {fs::directory_iterator(notifications), fs::directory_iterator()};
    }

    int connectTo(const fs::path& socket) const {
        const int made = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, socket.c_str(), sizeof address.sun_path - 1);
        EXPECT_EQ(::connect(made, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        return made;
    }
};
INSTANTIATE_TEST_SUITE_P(Sockets, DistributedSocketTest, testing::Values(Way::sockets));

TEST_P(DistributedSocketTest, OnlyTheUserCanReachTheSockets) {
    const auto a = observer("Name");
    struct stat status;
    ASSERT_EQ(::stat(notifications.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0700U);
    ASSERT_EQ(sockets().size(), 1U);
    ASSERT_EQ(::stat(sockets()[0].c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0600U);
}

TEST_P(DistributedSocketTest, WhatHostilePeersSendIsIgnored) {
    const auto a = observer("Name");
    const auto socket = sockets().at(0);
    const std::string header("\x04\x00\x00\x00", 4);
    for (const std::string& bytes :
         {std::string("\xFF\xFF\xFF\xFF", 4), std::string("\x01\x00\x40\x00", 4), header + "abcd",
          header + "ab", std::string(4, '\0'), std::string(100'000, 'x')}) {
        const int made = connectTo(socket);
        ::send(made, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        ::close(made);
    }
    std::vector<int> idle;
    for (int i = 0; i < 300; ++i)
        idle.push_back(connectTo(socket));
    for (const int made : idle)
        ::close(made);
    std::ofstream(notifications / "not-one.socket") << "a plain file";
    fs::create_directory(notifications / "folder.socket");
    post(*a, "Name x 1");
    expectNumbered(*a, "Name x ", 1);
}

// Others want to connect meanwhile.
TEST_P(DistributedSocketTest, AProcessWithoutDescriptorsWaitsForThem) {
    rusage before{}, after{};
    ::getrusage(RUSAGE_CHILDREN, &before);
    Process a({"sh", "-c", "ulimit -n 24; exec " PEER}, environment);
    expectAnswer(a, "observe Name", "observing");
    // By then it is at rest: a sanitizer that looks at types wants a descriptor for that.
    std::this_thread::sleep_for(300ms);
    std::vector<int> many;
    for (int i = 0; i < 40; ++i)
        many.push_back(connectTo(sockets().at(0)));
    std::this_thread::sleep_for(2s);
    for (const int made : many)
        ::close(made);
    const auto b = peer();
    post(*b, "Name x 1");
    expectNumbered(a, "Name x ", 1);
    a.end();
    ::getrusage(RUSAGE_CHILDREN, &after);
    const auto busy = [](const rusage& use) {
        return std::chrono::seconds(use.ru_utime.tv_sec + use.ru_stime.tv_sec) +
               std::chrono::microseconds(use.ru_utime.tv_usec + use.ru_stime.tv_usec);
    };
    EXPECT_LT(busy(after) - busy(before), 400ms);
}

TEST_P(DistributedSocketTest, WhatAKilledProcessLeftIsRemoved) {
    auto a = observer("Name");
    const auto left = sockets().at(0);
    a->end();
    EXPECT_TRUE(fs::exists(left));
    const auto b = observer("Name");
    post(*b, "Name x 1");
    expectNumbered(*b, "Name x ", 1);
    EXPECT_FALSE(fs::exists(left));
    EXPECT_EQ(sockets().size(), 1U);
}

TEST_P(DistributedSocketTest, AFolderThatOthersCanEnterIsNotUsed) {
    fs::create_directory(notifications);
    fs::permissions(notifications, fs::perms(0755));
    const auto a = observer("Name");
    const auto b = observer("Name");
    EXPECT_TRUE(fs::is_empty(notifications));
    post(*a, "Name x 1");
    expectNumbered(*a, "Name x ", 1);
    EXPECT_TRUE(b->isSilent(50ms)) << "within the process only";
}

} // namespace
