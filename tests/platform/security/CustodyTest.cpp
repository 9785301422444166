#include "SecureItems.h"

#include <csignal>
#include <sys/socket.h>
#include <sys/un.h>

namespace {

using Clock = std::chrono::steady_clock;

/// A session with a bus of its own, and a real keyring when the test starts one.
class CustodyTest : public SecureItems {
protected:
    const std::string locked = std::to_string(errSecInteractionNotAllowed);

    ~CustodyTest() override {
        keyring = nullptr;
        bus = nullptr;
    }

    std::string address() const { return "unix:path=" + root + "/session-bus"; }

    /// Without the service files of the system, nothing is started by being spoken to.
    void startBus() {
        std::ofstream(root + "/bus.conf")
            << "<busconfig><type>session</type><listen>" << address()
            << "</listen><policy context='default'><allow send_destination='*' eavesdrop='true'/>"
               "<allow eavesdrop='true'/><allow own='*'/></policy></busconfig>";
        bus = std::make_unique<Process>(
            std::vector<std::string>{"dbus-daemon", "--config-file=" + root + "/bus.conf",
                                     "--nofork", "--nosyslog", "--print-address"},
            environment);
        ASSERT_TRUE(bus->hear()) << "no dbus-daemon";
        environment["DBUS_SESSION_BUS_ADDRESS"] = address();
    }

    enum class Password { given, withheld };

    void startKeyring(Password password) {
        std::ofstream(root + "/password") << "known";
        fs::create_directories(root + "/control");
        fs::permissions(root + "/control", fs::perms::owner_all);
        const std::string command =
            "exec gnome-keyring-daemon --foreground --components=secrets "
            "--control-directory=" +
            root + "/control " +
            (password == Password::given ? "--unlock < " + root + "/password" : "< /dev/null") +
            " 2> /dev/null";
        keyring =
            std::make_unique<Process>(std::vector<std::string>{"sh", "-c", command}, environment);
        const auto end = Clock::now() + 20s;
        while (!isKeyringThere()) {
            ASSERT_LT(Clock::now(), end) << "no gnome-keyring-daemon";
            std::this_thread::sleep_for(10ms);
        }
    }

    bool isKeyringThere() const {
        Process asking({"dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.DBus",
                        "/", "org.freedesktop.DBus.NameHasOwner", "string:org.freedesktop.secrets"},
                       environment);
        const auto first = asking.hear();
        const auto reply = asking.hear();
        return reply && reply->find("true") != std::string::npos;
    }

    void stopKeyring() { keyring = nullptr; } // as if it crashed

    bool hasKeyFile() const { return fs::exists(path("key")); }
    std::string keysInUse() const { return sql("SELECT count(DISTINCT sealing_key) FROM items"); }

    /// Asks a new process, which has to answer in time.
    std::string askNew(const std::string& line) const {
        const auto start = Clock::now();
        std::string answer = ask(*peer(), line);
        EXPECT_LT(Clock::now() - start, 6s) << line;
        return answer;
    }

    /// Asks a new process each.
    void expectNew(const std::vector<std::pair<std::string, std::string>>& answers) const {
        for (const auto& [question, answer] : answers)
            EXPECT_EQ(askNew(question), answer) << question;
    }

    std::unique_ptr<Process> bus;
    std::unique_ptr<Process> keyring;
};

} // namespace

TEST_F(CustodyTest, AnUnlockedKeyringKeepsTheKey) {
    startBus();
    startKeyring(Password::given);
    expectNew({{"set a 1", "0"}, {"get a", "1"}, {"set b 2", "0"}});
    EXPECT_FALSE(hasKeyFile());
    EXPECT_EQ(keysInUse(), "1\n");
}

TEST_F(CustodyTest, ItemsOutliveAKeyringThatCrashes) {
    startBus();
    startKeyring(Password::given);
    const auto running = peer();
    ASSERT_EQ(ask(*running, "set a 1"), "0");
    ASSERT_EQ(ask(*running, "set b 1"), "0");
    stopKeyring();
    EXPECT_EQ(ask(*running, "get a"), "1"); // it has the key
    EXPECT_EQ(ask(*running, "set a 2"), "0");
    expectNew({{"get a", locked},
               {"add a 3", std::to_string(errSecDuplicateItem)},
               {"set b 4", "0"}, // replaced, under a key that is there
               {"get b", "4"}});
    EXPECT_TRUE(hasKeyFile());
    startKeyring(Password::given);
    expectNew({{"get a", "2"}, {"get b", "4"}, {"set b 5", "0"}});
    EXPECT_EQ(keysInUse(), "1\n"); // both the keyring's again
}

TEST_F(CustodyTest, ItemsOfTheKeyFileStayWhenAKeyringComes) {
    ASSERT_EQ(askNew("set a 1"), "0");
    ASSERT_TRUE(hasKeyFile());
    startBus();
    EXPECT_EQ(askNew("get a"), "1");  // a bus without a keyring
    startKeyring(Password::withheld); // no collection, and none is made, since that would prompt
    EXPECT_EQ(askNew("set b 2"), "0");
    EXPECT_EQ(keysInUse(), "1\n");
    stopKeyring();
    startKeyring(Password::given);
    expectNew({{"get a", "1"}, {"set c 3", "0"}});
    EXPECT_EQ(keysInUse(), "2\n");
    const auto running = peer();
    for (const char* command : {"get a", "get b", "get c"})
        EXPECT_EQ(ask(*running, command), std::to_string(command[4] - 'a' + 1));
    // A writer who knew only the file takes up the keyring too.
    expectNew({{"set a 4", "0"}, {"set b 5", "0"}});
    EXPECT_EQ(keysInUse(), "1\n");
    fs::permissions(path("key"), fs::perms(0644));
    EXPECT_EQ(askNew("get a"), "4"); // the file is refused, but nothing needs it
    fs::permissions(path("key"), fs::perms(0600));
    environment["DBUS_SESSION_BUS_ADDRESS"] = "";
    expectNew({{"get a", locked}, {"delete a", "0"}}); // which needs no key
}

TEST_F(CustodyTest, ALockedKeyringIsNotAskedToOpen) {
    startBus();
    startKeyring(Password::given);
    ASSERT_EQ(askNew("set a 1"), "0");
    stopKeyring();
    startKeyring(Password::withheld);
    expectNew({{"get a", locked}, {"set b 2", "0"}, {"get b", "2"}});
    EXPECT_TRUE(hasKeyFile());
    stopKeyring();
    startKeyring(Password::given);
    expectNew({{"get a", "1"}, {"get b", "2"}});
}

TEST_F(CustodyTest, AKeyringThatHangsCostsLittle) {
    startBus();
    startKeyring(Password::given);
    ASSERT_EQ(askNew("set a 1"), "0");
    keyring->kill(SIGSTOP);
    const auto running = peer();
    EXPECT_EQ(ask(*running, "get a"), locked);
    const auto start = Clock::now();
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(ask(*running, "set b 2"), "0");
        EXPECT_EQ(ask(*running, "get a"), locked);
    }
    EXPECT_LT(Clock::now() - start, 4s); // it is not asked again each time
    keyring->kill(SIGCONT);
    expectNew({{"get a", "1"}, {"get b", "2"}});
}

TEST_F(CustodyTest, ABusThatHangsOrRefusesCostsLittle) {
    sockaddr_un place{};
    place.sun_family = AF_UNIX;
    const std::string silent = root + "/silent";
    silent.copy(place.sun_path, sizeof place.sun_path - 1);
    const int listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_EQ(::bind(listener, reinterpret_cast<const sockaddr*>(&place), sizeof place), 0);
    ASSERT_EQ(::listen(listener, 8), 0); // takes connections and says nothing
    for (const std::string& where :
         {"unix:path=" + silent, "unix:path=" + root + "/missing", std::string("nonsense"),
          std::string("autolaunch:"), std::string("unix:path=/dev/null;tcp:host=,port=0")}) {
        environment["DBUS_SESSION_BUS_ADDRESS"] = where;
        SCOPED_TRACE(where);
        expectNew({{"set a 1", "0"}, {"get a", "1"}});
    }
    ::close(listener);
}

TEST_F(CustodyTest, TheProcessOutlivesTheBus) {
    startBus();
    startKeyring(Password::given);
    const auto running = peer();
    ASSERT_EQ(ask(*running, "set a 1"), "0");
    bus = nullptr;
    stopKeyring();
    std::this_thread::sleep_for(100ms);
    EXPECT_EQ(ask(*running, "get a"), "1");
    EXPECT_EQ(ask(*running, "set a 2"), "0");
    EXPECT_EQ(ask(*running, "get a"), "2");
}

TEST_F(CustodyTest, ProcessesThatMeetAnEmptyKeyringAtOnceAllReadEverything) {
    startBus();
    startKeyring(Password::given);
    std::vector<std::unique_ptr<Process>> peers;
    for (int i = 0; i < 6; ++i) {
        peers.push_back(peer());
        peers.back()->tell("set item" + std::to_string(i) + " 1");
    }
    for (const auto& process : peers)
        EXPECT_EQ(process->hear(), "0");
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(askNew("get item" + std::to_string(i)), "1");
}

TEST_F(CustodyTest, NoItemIsLostWhenTheKeyringDiesAtAnyMoment) {
    startBus();
    std::mt19937 random(3);
    constexpr int rounds = 12;
    for (int i = 0; i < rounds; ++i) {
        startKeyring(Password::given);
        const auto writer = peer();
        writer->tell("set item" + std::to_string(i) + " 1");
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 25000));
        keyring->kill(SIGKILL);
        EXPECT_EQ(writer->hear(6s), "0");
        EXPECT_EQ(ask(*writer, "get item" + std::to_string(i)), "1");
        stopKeyring();
    }
    startKeyring(Password::given);
    for (int i = 0; i < rounds; ++i)
        EXPECT_EQ(askNew("get item" + std::to_string(i)), "1");
}
