#pragma once

#include <tests/Testing.h>

#include "Process.h"

#include "storedItems.h"

#include <tests/files/TemporaryFolder.h>
#include <tests/sql.h>

#include <span>

/// A user without items, without a bus and without a keyring.
class SecureItems : public testing::Test {
protected:
    using Dictionary = PropertyList::Dictionary;

    SecureItems() {
        environment = {{"XDG_DATA_HOME", root + "/data"},
                       {"XDG_RUNTIME_DIR", root},
                       {"HOME", root},
                       {"XDG_CONFIG_HOME", root + "/config"},
                       {"XDG_CACHE_HOME", root + "/cache"},
                       {"DISPLAY", ""},
                       {"GNOME_KEYRING_CONTROL", ""},
                       {"DBUS_SESSION_BUS_ADDRESS", ""}};
        for (const auto& [name, value] : environment)
            value.empty() ? ::unsetenv(name.c_str()) : ::setenv(name.c_str(), value.c_str(), 1);
    }

    std::string folder() const { return root + "/data/zorvan/secure-items"; }
    std::string path(const std::string& name) const { return folder() + '/' + name; }

    /// A query, or an item, with an account and more.
    static Dictionary item(std::string_view account, const Dictionary& more = {}) {
        Dictionary result = more;
        result.insert({{kSecClass, kSecClassGenericPassword},
                       {kSecAttrService, "test"},
                       {kSecAttrAccount, account}});
        return result;
    }

    static OSStatus add(std::string_view account, std::string_view value,
                        const Dictionary& more = {}) {
        return SecItemAdd(with(item(account, more), kSecValueData, bytesOf(value)));
    }

    static std::string get(const Dictionary& query) { return valueOf(query); }

    static Data reference(const Dictionary& query) {
        return *SecItemCopyMatching(with(query, kSecReturnPersistentRef, true)).value->as<Data>();
    }

    std::unique_ptr<Process> peer() const {
        return std::make_unique<Process>(std::vector<std::string>{PEER}, environment);
    }

    static std::string ask(Process& process, const std::string& line) {
        process.tell(line);
        return process.hear().value_or("nothing");
    }

    /// Of the database, behind the store's back.
    std::string sql(const std::string& statements) const {
        return sqlIn(path("items.sqlite"), statements);
    }

    const TemporaryFolder home;
    const std::string root = home.path();
    const std::string absent = std::to_string(errSecItemNotFound);
    Process::Environment environment;
};
