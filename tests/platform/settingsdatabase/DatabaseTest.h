#pragma once

#include <tests/Testing.h>

#include "Processes.h"

#include <tests/files/TemporaryFolder.h>

#include <zorvan/platform/settingsdatabase/SettingsDatabase.h>

/// A database in a folder of its own, and what is told to be wrong with it.
class DatabaseTest : public testing::Test {
protected:
    DatabaseTest() {
        SettingsDatabase::setProblemHandler(
            [this](const std::string& text) { told_.push_back(text); });
    }
    ~DatabaseTest() override { SettingsDatabase::setProblemHandler({}); }

    std::shared_ptr<SettingsDatabase> open() const { return SettingsDatabase::open(path_); }
    /// As when somebody tidies up.
    void removeFiles() const {
        for (const char* ending : {"", "-wal", "-shm"})
            fs::remove(path_ + ending);
    }
    /// Lets another process do it.
    void elsewhere(const std::function<bool(SettingsDatabase&)>& action) const {
        EXPECT_TRUE(inChild([&] { return action(*SettingsDatabase::open(path_)); }));
    }
    static std::int64_t integer(SettingsDatabase& database, std::string_view key) {
        const auto value = database.value(key);
        const auto* number = value ? value->as<NSNumber>() : nullptr;
        return number ? number->int64Value() : -1;
    }

    TemporaryFolder folder_;
    std::string path_ = folder_.path() / "a.settings";
    std::vector<std::string> told_;
};
