// Two versions of the library use one store of settings and one of secrets at the same time:
// neither loses what the other has stored, and what a newer one has taken over is left alone.

#include "Stores.h"

#include <tests/platform/messagebus/Process.h>
#include <tests/sql.h>

#include <zorvan/platform/settingsdatabase/SettingsDatabase.h>

#include <sstream>

namespace {

/// One of them: its program, while it writes, and what it has told.
struct Version {
    std::string name, program;
    std::unique_ptr<Process> writer = nullptr;
    std::int64_t last = 0; // number that was stored
    struct Told {
        int promises = 0;
        std::vector<std::string> refusals{};
    };
    std::map<std::string, Told> told{}; // by store
};

class Versions : public testing::Test {
protected:
    std::unique_ptr<Process> run(const Version& version, std::vector<std::string> words) const {
        const std::string home = folder_.path();
        words.insert(words.begin(), {version.program, home});
        const Process::Environment environment{{"XDG_DATA_HOME", home},
                                               {"XDG_RUNTIME_DIR", home},
                                               {"HOME", home},
                                               {"DISPLAY", ""},
                                               {"DBUS_SESSION_BUS_ADDRESS", ""}};
        return std::make_unique<Process>(words, environment);
    }

    void start(Version& version) const {
        // The number after the last one may have been stored without a word.
        version.writer = run(version, {"write", version.name, std::to_string(version.last + 2)});
    }

    /// False when it tells nothing, within that time.
    bool hear(Version& version, std::chrono::milliseconds timeout) {
        const auto line = version.writer->hear(timeout);
        if (!line)
            return false;
        std::istringstream words(*line);
        std::string store, slot, rest;
        std::getline(words >> store >> slot >> std::ws, rest);
        if (rest.starts_with("refused")) {
            version.told[store].refusals.push_back(rest);
            return true;
        }
        ++version.told[store].promises;
        promised_[store + ' ' + slot][version.name] = version.last = std::stoll(rest);
        return true;
    }

    using Slots = std::map<std::string, std::pair<std::string, std::int64_t>>;

    Slots read(const Version& version) const {
        Slots found;
        const auto reader = run(version, {"read", versions_[0].name, versions_[1].name});
        while (const auto line = reader->hear(60s)) {
            std::istringstream words(*line);
            std::string store, slot, name;
            std::int64_t number = -1;
            words >> store >> slot >> name >> number;
            found[store + ' ' + slot] = {name, number};
        }
        return found;
    }

    /// Expects that version to find everything that was promised until now.
    void checkWith(Version& version) const {
        Slots found = read(version);
        for (const auto& [slot, numbers] : promised_) {
            const auto& [name, number] = found[slot];
            SCOPED_TRACE(version.name + " finds in " + slot + ": " + name);
            if (name == "refused" && !version.told[slot.substr(0, slot.find(' '))].refusals.empty())
                continue; // what it may not write
            const auto promise = numbers.find(name);
            if (promise != numbers.end()) {
                ASSERT_GE(number, promise->second);
            } else { // what a writer had no time to tell of, where both write
                ASSERT_TRUE(slot.ends_with("shared"));
                ASSERT_TRUE(name == versions_[0].name || name == versions_[1].name);
            }
        }
    }

    const TemporaryFolder folder_{TemporaryFolder::fastParent()};
    std::array<Version, 2> versions_{Version{"present", VERSIONS_PEER},
                                     Version{"older", std::getenv("ZORVAN_OLDER")
                                                          ? std::getenv("ZORVAN_OLDER")
                                                          : VERSIONS_PEER}};
    std::map<std::string, std::map<std::string, std::int64_t>> promised_; // by slot and version
};

} // namespace

// In a campaign the older one is; else both are of one version.
TEST_F(Versions, LoseNothingOfEachOther) {
    std::mt19937 random(7);
    const int rounds = tries("ZORVAN_KILLS", 12);
    int kills = 0;
    for (int round = 0; round < rounds; ++round) {
        for (Version& version : versions_) {
            if (!version.writer)
                start(version);
            if (round % 2 == 0) { // else some end while they open
                ASSERT_TRUE(hear(version, 60s)) << version.name << " ends in round " << round;
            }
        }
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 30'000));
        const auto ending = 1 + random() % 3; // one, the other or both
        for (unsigned i = 0; i < versions_.size(); ++i) {
            const bool ends = (ending >> i) % 2 != 0;
            if (ends)
                versions_[i].writer->end();
            while (hear(versions_[i], 0s)) {
            }
            if (ends)
                versions_[i].writer.reset();
            kills += ends;
        }
        checkWith(versions_[round % 4 < 2]);
        ASSERT_FALSE(HasFailure()) << "in round " << round;
    }
    std::cout << "two versions: " << kills << " kills";
    for (Version& version : versions_)
        for (const char* store : {"settings", "secrets"}) {
            const auto& [promises, refusals] = version.told[store];
            std::cout << ", " << promises << " promises of " << store << " by the " << version.name
                      << " one (" << refusals.size() << " refused)";
            // One that is too old may find its store taken over.
            EXPECT_TRUE(promises >= rounds / 2 ||
                        (&version != versions_.data() && !refusals.empty()));
        }
    std::cout << ", none broken\n";
}

namespace {

/// Of settings and of secrets.
using OpenStores = StoreTest;

INSTANTIATE_TEST_SUITE_P(Stores, OpenStores,
                         testing::ValuesIn(stores().begin(), stores().begin() + 2), nameOf);

/// Adds to the version that a database says it is of.
void raise(const fs::path& path, int by) {
    const int version = std::stoi(sqlIn(path, "PRAGMA user_version"));
    sqlIn(path, "PRAGMA user_version = " + std::to_string(version + by));
}

} // namespace

TEST_P(OpenStores, LeaveWhatIsNewer) {
    const bool isSettings = std::string_view(store_.name) == "settings";
    const fs::path path =
        before_ / (isSettings ? "a.settings" : "zorvan/secure-items/items.sqlite");
    const auto contents = [&] { return text(path) + text(path.string() + "-wal"); };
    const std::string problem =
        path.string() + ": it was written by a newer version; changes are kept in memory";
    const pid_t process = startChild([&] {
        store_.step(before_, 1);
        raise(path, 1000);
        EXPECT_FALSE(takeStep(store_, before_, 2));
        const std::string before = contents();
        for (int i = 0; i < 3; ++i)
            EXPECT_FALSE(takeStep(store_, before_, 2));
        EXPECT_TRUE(contents() == before);
        EXPECT_TRUE(!isSettings || SettingsDatabase::open(path)->problem() == problem);
        raise(path, -1000);
        goOn(store_, before_, 1);
    });
    EXPECT_EQ(exitStatus(process), 0);
}
