#include "Process.h"

#include <zorvan/platform/messagebus/internal/WireFormat.h>

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <set>
#include <string>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <systemd/sd-bus.h>
#include <unistd.h>
#include <vector>

using namespace std::chrono_literals;
namespace fs = std::filesystem;

namespace {

enum class Way { bus, sockets };

/// A session of its own: an empty run-time directory, and a bus when the test is of that way.
class DistributedTest : public testing::TestWithParam<Way> {
protected:
    DistributedTest() {
        std::string pattern = (fs::temp_directory_path() / "zorvan-session-XXXXXX").string();
        if (!::mkdtemp(pattern.data()))
            throw std::runtime_error("mkdtemp");
        directory = pattern;
        environment = {{"XDG_RUNTIME_DIR", directory}, {"DBUS_SESSION_BUS_ADDRESS", ""}};
        if (GetParam() == Way::bus)
            startBus();
    }

    ~DistributedTest() override {
        bus = nullptr;
        fs::remove_all(directory);
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

    std::unique_ptr<Process> observer(const std::string& what) const {
        auto made = peer();
        made->tell("observe " + what);
        EXPECT_EQ(made->hear(), "observing");
        return made;
    }

    static void expectNumbered(Process& process, const std::string& start, int count) {
        for (int i = 0; i < count; ++i)
            ASSERT_EQ(process.hear(), start + std::to_string(i) + " 0");
    }

    std::string directory;
    Process::Environment environment;
    std::unique_ptr<Process> bus;
};

TEST_P(DistributedTest, AllProcessesAreToldInOrderTheSenderIncluded) {
    const auto a = observer("Changed");
    const auto b = observer("Changed doc1");
    const auto other = observer("Renamed");
    a->tell("post Changed doc1 200");
    EXPECT_EQ(a->hear(), "posted");
    expectNumbered(*a, "Changed doc1 ", 200);
    expectNumbered(*b, "Changed doc1 ", 200);
    b->tell("post Changed doc2 2");
    EXPECT_EQ(b->hear(), "posted");
    b->tell("post Changed - 1");
    EXPECT_EQ(b->hear(), "posted");
    expectNumbered(*a, "Changed doc2 ", 2);
    expectNumbered(*a, "Changed - ", 1);
    b->tell("post Changed doc1 1");
    EXPECT_EQ(b->hear(), "posted");
    expectNumbered(*b, "Changed doc1 ", 1);
    EXPECT_TRUE(other->hearAll(50ms).empty());
}

TEST_P(DistributedTest, ARemovedObserverIsToldNoMore) {
    const auto a = observer("Name");
    const auto b = peer();
    b->tell("post Name x 1");
    EXPECT_EQ(b->hear(), "posted");
    expectNumbered(*a, "Name x ", 1);
    a->tell("ignore");
    EXPECT_EQ(a->hear(), "ignoring");
    b->tell("post Name x 1");
    EXPECT_EQ(b->hear(), "posted");
    EXPECT_TRUE(a->hearAll(50ms).empty());
    a->tell("observe Name");
    EXPECT_EQ(a->hear(), "observing");
    b->tell("post Name x 1");
    expectNumbered(*a, "Name x ", 1);
}

// The main thread receives while it is idle, and hands that over when it is not.
TEST_P(DistributedTest, ABusyMainThreadHoldsUpNobodyElse) {
    const auto a = observer("Quick");
    const auto b = peer();
    for (int round = 0; round < 3; ++round) {
        b->tell("post Quick x 1");
        EXPECT_EQ(b->hear(), "posted");
        expectNumbered(*a, "Quick x ", 1);
        a->tell("occupy Slow 20");
        EXPECT_EQ(a->hear(), "observing");
        b->tell("post Slow x 20");
        EXPECT_EQ(b->hear(), "posted");
        std::set<std::string> heard; // in the background there is no order
        for (int i = 0; i < 20; ++i) {
            const auto line = a->hear();
            ASSERT_TRUE(line);
            heard.insert(*line);
        }
        EXPECT_EQ(heard.size(), 20U);
        EXPECT_EQ(a->hear(), "free");
    }
}

TEST_P(DistributedTest, NamesAndSendersMayBeAnyText) {
    for (const std::string& name : {std::string("it's"), std::string("a\\b"), std::string("é%,='"),
                                    std::string(3000, '\'')}) {
        const auto a = observer(name + " who's");
        const auto b = peer();
        b->tell("post " + name + "x who's 1");
        b->tell("post " + name + " who's 1");
        EXPECT_EQ(b->hear(), "posted");
        expectNumbered(*a, name + " who's ", 1);
    }
}

TEST_P(DistributedTest, LargeMessagesArrive) {
    const auto a = observer("Large");
    const auto b = peer();
    b->tell("large Large x 4000000");
    EXPECT_EQ(a->hear(), "Large x 0 4000000");
}

TEST_P(DistributedTest, AProcessKilledMidStreamHarmsNobody) {
    const auto survivor = observer("Stream");
    auto victim = observer("Stream");
    const auto sender = peer();
    auto flooder = peer();
    flooder->tell("flood Stream flood");
    for (int i = 0; i < 100; ++i)
        ASSERT_EQ(survivor->hear(), "Stream flood " + std::to_string(i) + " 100");
    ASSERT_TRUE(victim->hear());
    victim->end();
    const auto withoutVictim = survivor->hear();
    ASSERT_TRUE(withoutVictim);
    flooder->end();
    survivor->hearAll(300ms);
    sender->tell("post Stream after 50");
    EXPECT_EQ(sender->hear(), "posted");
    expectNumbered(*survivor, "Stream after ", 50);
    const auto newcomer = observer("Stream");
    sender->tell("post Stream late 3");
    EXPECT_EQ(sender->hear(), "posted");
    expectNumbered(*newcomer, "Stream late ", 3);
}

TEST_P(DistributedTest, APostDoesNotWaitForAProcessThatStandsStill) {
    const auto still = observer("Busy");
    const auto a = observer("Busy");
    still->kill(SIGSTOP);
    const auto b = peer();
    b->tell("post Busy x 3000");
    EXPECT_EQ(b->hear(), "posted");
    expectNumbered(*a, "Busy x ", 3000);
    still->kill(SIGCONT);
    expectNumbered(*still, "Busy x ", 3000);
}

INSTANTIATE_TEST_SUITE_P(Ways, DistributedTest, testing::Values(Way::bus, Way::sockets),
                         [](const auto& info) {
                             return info.param == Way::bus ? "Bus" : "Sockets";
                         });

class DistributedBusTest : public DistributedTest {};
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
    a->tell("post Name x 1");
    EXPECT_EQ(a->hear(), "posted");
    expectNumbered(*a, "Name x ", 1);
}

TEST_P(DistributedBusTest, ABusThatComesBackIsFoundAgain) {
    const auto a = observer("Again");
    bus = nullptr;
    a->tell("post Again x 1");
    EXPECT_EQ(a->hear(), "posted") << "lost, without harm";
    startBus();
    const auto b = peer();
    for (int i = 0; i < 100; ++i) {
        b->tell("post Again y 1");
        ASSERT_EQ(b->hear(), "posted");
        if (const auto heard = a->hear(100ms)) {
            EXPECT_EQ(heard, "Again y 0 0");
            return;
        }
    }
    FAIL() << "never came back";
}

class DistributedSocketTest : public DistributedTest {
protected:
    fs::path folder() const { return fs::path(directory) / "zorvan-notifications"; }

    std::vector<fs::path> sockets() const {
        return {fs::directory_iterator(folder()), fs::directory_iterator()};
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
    ASSERT_EQ(::stat(folder().c_str(), &status), 0);
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
    std::ofstream(folder() / "not-one.socket") << "a plain file";
    fs::create_directory(folder() / "folder.socket");
    a->tell("post Name x 1");
    EXPECT_EQ(a->hear(), "posted");
    expectNumbered(*a, "Name x ", 1);
}

TEST_P(DistributedSocketTest, WhatAKilledProcessLeftIsRemoved) {
    auto a = observer("Name");
    const auto left = sockets().at(0);
    a->end();
    EXPECT_TRUE(fs::exists(left));
    const auto b = observer("Name");
    b->tell("post Name x 1");
    EXPECT_EQ(b->hear(), "posted");
    expectNumbered(*b, "Name x ", 1);
    EXPECT_FALSE(fs::exists(left));
    EXPECT_EQ(sockets().size(), 1U);
}

TEST_P(DistributedSocketTest, AFolderThatOthersCanEnterIsNotUsed) {
    fs::create_directory(folder());
    fs::permissions(folder(), fs::perms(0755));
    const auto a = observer("Name");
    const auto b = observer("Name");
    EXPECT_TRUE(fs::is_empty(folder()));
    a->tell("post Name x 1");
    EXPECT_EQ(a->hear(), "posted");
    expectNumbered(*a, "Name x ", 1);
    EXPECT_TRUE(b->hearAll(50ms).empty()) << "within the process only";
}

} // namespace
