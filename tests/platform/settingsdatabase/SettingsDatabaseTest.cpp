#include "DatabaseTest.h"
#include "Values.h"

#include <zorvan/platform/settingsdatabase/SettingsFolder.h>
#include <zorvan/platform/settingsdatabase/internal/SettingsMemory.h>

namespace {

using ADatabase = DatabaseTest;

mode_t modeOf(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

} // namespace

TEST_F(ADatabase, KeepsWhatItIsGiven) {
    path_ = folder_.path() / "inner/a.settings";
    std::mt19937 random(11);
    PropertyList::Dictionary model;
    // Opened again and again: what was written, replaced and removed before must be there, or not.
    for (int round = 0; round < 6; ++round) {
        const auto database = open();
        ASSERT_EQ(open(), database); // which all of the process share
        ASSERT_EQ(database->contents().size(), model.size());
        for (const auto& [key, value] : model) {
            const auto stored = database->value(key);
            ASSERT_TRUE(stored && internal::isIdentical(*stored, value)) << key;
        }
        for (int i = 0; i < 200; ++i) {
            const std::string key = "key\0é" + std::to_string(random() % 50);
            if (random() % 4 == 0) {
                ASSERT_TRUE(database->remove(key));
                model.erase(key);
            } else {
                const PropertyList value = randomValue(random, 3);
                ASSERT_TRUE(database->set(key, value));
                model.insert_or_assign(key, value);
            }
        }
        if (round == 3) {
            ASSERT_TRUE(database->removeAll());
            model.clear();
        }
        if (round == 4) {
            ASSERT_TRUE(database->synchronize());
        }
        ASSERT_EQ(database->problem(), std::nullopt);
    }
}

TEST_F(ADatabase, TellsOneFromTrueFromReal) {
    open()->set("k", 1);
    for (const PropertyList& value : {PropertyList(true), PropertyList(1.0), PropertyList(1),
                                      PropertyList(0.0), PropertyList(-0.0), PropertyList("")}) {
        ASSERT_TRUE(open()->set("k", value));
        EXPECT_TRUE(internal::isIdentical(*open()->value("k"), value));
    }
}

TEST_F(ADatabase, IsPrivate) {
    const std::string inner = folder_.path() / "inner";
    path_ = inner + "/a.settings";
    const mode_t old = ::umask(0);
    const auto database = open();
    ::umask(old);
    database->set("k", 1);
    EXPECT_EQ(modeOf(inner), 0700u);
    for (const char* ending : {"", "-wal", "-shm"})
        EXPECT_EQ(modeOf(path_ + ending), 0600u) << ending;
}

// But not the folders of others, such as that of a user's documents.
TEST_F(ADatabase, ClosesWhatStandsOpen) {
    ::setenv("XDG_CONFIG_HOME", folder_.path().c_str(), 1);
    for (const bool isOwn : {true, false}) {
        const std::string inner = folder_.path() / (isOwn ? "zorvan" : "documents");
        path_ = inner + "/a.settings";
        open()->set("k", 1);
        ::chmod(inner.c_str(), 0755);
        ::chmod(path_.c_str(), 0644);
        EXPECT_TRUE(open()->value("k"));
        EXPECT_EQ(modeOf(inner), isOwn ? 0700u : 0755u);
        EXPECT_EQ(modeOf(path_), 0600u);
        ::chmod(inner.c_str(), 0775);
        EXPECT_EQ(open()->set("k", 2), isOwn);
        EXPECT_EQ(modeOf(inner), isOwn ? 0700u : 0775u);
    }
}

TEST_F(ADatabase, ClearsRemovedKeysAway) {
    const auto database = open();
    database->set("stays", 1);
    for (int i = 0; i < 3000; ++i) {
        database->set("passing " + std::to_string(i), std::string(500, 'x'));
        database->remove("passing " + std::to_string(i));
    }
    ASSERT_TRUE(database->synchronize());
    EXPECT_LT(std::filesystem::file_size(path_), 500'000u); // 3,000 such keys take more
    EXPECT_EQ(database->contents(), (PropertyList::Dictionary{{"stays", 1}}));
}

TEST(SettingsFolder, NamesFiles) {
    ::setenv("XDG_CONFIG_HOME", "/c", 1);
    EXPECT_EQ(settingsPath("com.example.App-1_x"), "/c/zorvan/com.example.App-1_x.settings");
    EXPECT_EQ(settingsPath("../../evil"), "/c/zorvan/%2E.%2F..%2Fevil.settings");
    EXPECT_EQ(settingsPath(".hidden"), "/c/zorvan/%2Ehidden.settings");
    EXPECT_EQ(settingsPath("ä b%"), "/c/zorvan/%C3%A4%20b%25.settings");
    EXPECT_EQ(settingsPath(""), std::nullopt);
    EXPECT_EQ(settingsPath(std::string(200, 'a')),
              "/c/zorvan/" + std::string(200, 'a') + ".settings");
    EXPECT_EQ(settingsPath(std::string(201, 'a')), std::nullopt);
    ::setenv("HOME", "/h", 1);
    ::setenv("XDG_CONFIG_HOME", "relative", 1);
    EXPECT_EQ(settingsFolder(), "/h/.config/zorvan");
    ::unsetenv("XDG_CONFIG_HOME");
    EXPECT_EQ(settingsFolder(), "/h/.config/zorvan");
}
