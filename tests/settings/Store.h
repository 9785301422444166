#pragma once

#include <tests/Testing.h>

#include <zorvan/platform/dispatch/NSNotificationCenter.h>
#include <zorvan/settings/NSUserDefaults.h>

#include <tests/files/TemporaryFolder.h>

/// A store in a configuration folder of its own.
class Store : public testing::Test {
protected:
    Store() {
        ::setenv("XDG_CONFIG_HOME", folder_.path().c_str(), 1);
        store_ = zorvan::NSUserDefaults::create({.suiteName = "suite"});
        observer_ = zorvan::NSNotificationCenter::defaultCenter()->addObserver(
            zorvan::NSUserDefaults::didSetKeyNotification(), {}, {},
            [this](const zorvan::Notification& note) { notes_.push_back(note); });
    }
    ~Store() override { zorvan::NSNotificationCenter::defaultCenter()->removeObserver(observer_); }

    zorvan::NSUserDefaults& store() { return *store_; }

    /// The store as another start of the application would find it.
    void reopen() {
        store_.reset();
        store_ = zorvan::NSUserDefaults::create({.suiteName = "suite"});
    }

    /// The names of the keys of which was told since the last call.
    std::vector<std::string> told() {
        std::vector<std::string> names;
        for (const auto& note : notes_)
            names.push_back(zorvan::NSUserDefaults::editedKeyName(note).value_or("?"));
        notes_.clear();
        return names;
    }

    TemporaryFolder folder_;
    std::shared_ptr<zorvan::NSUserDefaults> store_;
    std::shared_ptr<zorvan::NotificationObserver> observer_;
    std::vector<zorvan::Notification> notes_;
};
