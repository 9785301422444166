#include "Stores.h"

#include <tests/platform/security/storedItems.h>

#include <zorvan/files/NSFileManager.h>
#include <zorvan/platform/foundation/internal/writeFile.h>
#include <zorvan/platform/settingsdatabase/SettingsDatabase.h>

namespace {

/// Texts of many lengths that begin with a number.
std::string content(std::int64_t i) {
    return std::to_string(i) + ' ' + std::string(static_cast<std::size_t>(i * 700 % 9'000), 'x');
}

std::int64_t numberOf(std::string_view text) {
    const std::int64_t i = std::atoll(std::string(text.substr(0, text.find(' '))).c_str());
    return i >= 0 && text == content(i) ? i : damaged;
}

std::span<const std::byte> bytes(std::string_view text) { return std::as_bytes(std::span(text)); }

void require(bool isDone) {
    if (!isDone)
        throw std::runtime_error("not stored");
}

// Settings, one or two in a step: every write outlives the process, `synchronize` makes them
// outlive the power.

constexpr int settingCount = 24;

std::shared_ptr<SettingsDatabase> settings(const fs::path& folder) {
    static std::shared_ptr<SettingsDatabase> kept;
    return kept = SettingsDatabase::open(folder / "a.settings");
}

bool changeSetting(const fs::path& folder, std::int64_t i) {
    const auto database = settings(folder);
    const std::string key = std::to_string(i % settingCount);
    // One by one: what a braced list held is cleared away wrongly by g++ 12 when memory runs out.
    std::vector<SettingsDatabase::Change> changes;
    changes.emplace_back(key, content(i));
    if (i % 2 != 0)
        changes.emplace_back(key + " as well", content(i));
    require(database->apply(std::move(changes)));
    return i % 5 == 4 && database->synchronize();
}

std::vector<std::int64_t> foundSettings(const fs::path& folder) {
    const auto database = settings(folder);
    EXPECT_EQ(database->problem(), std::nullopt);
    EXPECT_FALSE(fs::exists(folder / "a.settings.damaged"));
    std::vector<std::int64_t> found;
    for (int i = 0; i < settingCount; ++i) {
        const auto value = database->value(std::to_string(i));
        const auto twin = database->value(std::to_string(i) + " as well");
        const bool isWhole = i % 2 == 0 || (value ? twin && *value == *twin : !twin);
        found.push_back(!isWhole ? damaged : value ? numberOf(*value->as<std::string>()) : nothing);
    }
    return found;
}

// Secrets: every write outlives the power.

constexpr int secretCount = 8;

PropertyList::Dictionary secret(const fs::path& folder, std::int64_t i) {
    for (const char* name : {"DBUS_SESSION_BUS_ADDRESS", "DISPLAY"})
        ::unsetenv(name);
    for (const char* name : {"XDG_DATA_HOME", "XDG_RUNTIME_DIR", "HOME"})
        ::setenv(name, folder.c_str(), 1);
    return {{kSecClass, kSecClassGenericPassword},
            {kSecAttrAccount, std::to_string(i % secretCount)}};
}

bool changeSecret(const fs::path& folder, std::int64_t i) {
    require(setValue(secret(folder, i), content(i)) == errSecSuccess);
    return true;
}

std::vector<std::int64_t> foundSecrets(const fs::path& folder) {
    std::vector<std::int64_t> found;
    for (int i = 0; i < secretCount; ++i) {
        const std::string value = valueOf(secret(folder, i));
        found.push_back(value == std::to_string(errSecItemNotFound) ? nothing : numberOf(value));
    }
    return found;
}

// Files that are written in one step.

bool changeFile(const fs::path& folder, std::int64_t i) {
    require(!internal::writeFile(folder / "file", bytes(content(i))));
    return true;
}

std::vector<std::int64_t> foundFile(const fs::path& folder) {
    return {fs::exists(folder / "file") ? numberOf(text(folder / "file")) : nothing};
}

// Folders that are copied over others.

constexpr std::array copiedFiles{"a", "sub/b", "sub/deep/c"};

bool changeCopy(const fs::path& folder, std::int64_t i) {
    static const TemporaryFolder source;
    for (const char* name : copiedFiles) {
        source.file(name, content(i));
        require(numberOf(text(source.path() / name)) == i);
    }
    NSFileManager::defaultManager()->overwritingCopy(
        source.url(), URL({.fileURLWithPath = (folder / "copy").string()}));
    // Where nothing was the copy is not waited for.
    if (i == 0)
        ::sync();
    return true;
}

std::vector<std::int64_t> foundCopy(const fs::path& folder) {
    if (!fs::exists(folder / "copy"))
        return {nothing};
    const std::int64_t i = numberOf(text(folder / "copy/a"));
    for (const char* name : copiedFiles)
        if (numberOf(text(folder / "copy" / name)) != i)
            return {damaged};
    return {i};
}

constexpr Store allStores[] = {
    {"settings", settingCount, changeSetting, foundSettings},
    {"secrets", secretCount, changeSecret, foundSecrets},
    {"file", 1, changeFile, foundFile},
    {"copy", 1, changeCopy, foundCopy},
};

} // namespace

void PrintTo(const Store& store, std::ostream* out) { *out << store.name; }

std::span<const Store> stores() { return allStores; }

int tries(const char* variable, int unlessAsked) {
    const char* asked = std::getenv(variable);
    return asked ? std::atoi(asked) : unlessAsked;
}

std::int64_t checkStore(const Store& store, const fs::path& folder, std::int64_t promised) {
    const std::vector<std::int64_t> found = store.found(folder);
    const std::int64_t last = std::ranges::max(found);
    for (int slot = 0; slot < store.slotCount; ++slot) {
        const std::int64_t wanted = last - (last - slot + store.slotCount) % store.slotCount;
        EXPECT_EQ(found[static_cast<std::size_t>(slot)], last < slot ? nothing : wanted) << slot;
    }
    EXPECT_GE(last, promised);
    return last;
}

void goOn(const Store& store, const std::filesystem::path& folder, std::int64_t promised) {
    // Settings that could not be opened, or stored, are tried again.
    if (std::string_view(store.name) == "settings") {
        EXPECT_TRUE(settings(folder)->synchronize());
    }
    const std::int64_t next = checkStore(store, folder, promised) + 1;
    store.step(folder, next);
    EXPECT_EQ(checkStore(store, folder, next), next);
}

bool takeStep(const Store& store, const fs::path& folder, std::int64_t i) {
    try {
        store.step(folder, i);
        return true;
    } catch (const std::runtime_error&) {
        return false;
    }
}
