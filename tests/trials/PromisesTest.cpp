// What is stored by a call that promises so is there after the end of the process, or of the power,
// at any moment; and what is found is always what there was at one moment.

#include "DiskRecord.h"

#include <tests/Testing.h>
#include <tests/files/ChildProcess.h>
#include <tests/files/TemporaryFolder.h>

#include <zorvan/files/NSFileManager.h>
#include <zorvan/platform/foundation/internal/writeFile.h>
#include <zorvan/platform/security/SecItem.h>
#include <zorvan/platform/settingsdatabase/SettingsDatabase.h>

#include <csignal>

namespace {

constexpr std::int64_t nothing = -1, damaged = -2;

/// Something with a number of slots that is written step by step: step i puts i into the slot i
/// modulo that number.
struct Store {
    const char* name;
    int slotCount;
    /// Throws when it does not succeed. Whether it withstands a power failure from now on, with all
    /// before it.
    bool (*step)(const fs::path& folder, std::int64_t i);
    /// The number in each slot, `nothing` or `damaged`.
    std::vector<std::int64_t> (*found)(const fs::path& folder);
};

void PrintTo(const Store& store, std::ostream* out) { *out << store.name; }

/// Texts of many lengths that begin with a number.
std::string content(std::int64_t i) {
    return std::to_string(i) + ' ' + std::string(static_cast<std::size_t>(i * 700 % 9'000), 'x');
}

std::int64_t numberOf(std::string_view text) {
    const std::int64_t i = std::atoll(std::string(text.substr(0, text.find(' '))).c_str());
    return text == content(i) ? i : damaged;
}

std::span<const std::byte> bytes(std::string_view text) { return std::as_bytes(std::span(text)); }

void require(bool isDone) {
    if (!isDone)
        throw std::runtime_error("not stored");
}

// Settings: every write outlives the process, `synchronize` makes them outlive the power.

constexpr int settingCount = 24;

std::shared_ptr<SettingsDatabase> settings(const fs::path& folder) {
    static std::shared_ptr<SettingsDatabase> kept;
    return kept = SettingsDatabase::open(folder / "a.settings");
}

bool changeSetting(const fs::path& folder, std::int64_t i) {
    const auto database = settings(folder);
    require(database->set(std::to_string(i % settingCount), content(i)));
    return i % 5 == 4 && database->synchronize();
}

std::vector<std::int64_t> foundSettings(const fs::path& folder) {
    const auto database = settings(folder);
    EXPECT_EQ(database->problem(), std::nullopt);
    EXPECT_FALSE(fs::exists(folder / "a.settings.damaged"));
    std::vector<std::int64_t> found;
    for (int i = 0; i < settingCount; ++i) {
        const auto value = database->value(std::to_string(i));
        found.push_back(value ? numberOf(*value->as<std::string>()) : nothing);
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
    const std::string text = content(i);
    const Data value(bytes(text).begin(), bytes(text).end());
    auto added = secret(folder, i);
    added.insert_or_assign(kSecValueData, value);
    const OSStatus status = SecItemAdd(added);
    require(status == errSecSuccess ||
            (status == errSecDuplicateItem &&
             SecItemUpdate(secret(folder, i), {{kSecValueData, value}}) == errSecSuccess));
    return true;
}

std::vector<std::int64_t> foundSecrets(const fs::path& folder) {
    std::vector<std::int64_t> found;
    for (int i = 0; i < secretCount; ++i) {
        auto query = secret(folder, i);
        query.insert_or_assign(kSecReturnData, true);
        const SecItemResult result = SecItemCopyMatching(query);
        const Data* data = result.value ? result.value->as<Data>() : nullptr;
        if (result.status == errSecSuccess && data)
            found.push_back(numberOf({reinterpret_cast<const char*>(data->data()), data->size()}));
        else
            found.push_back(result.status == errSecItemNotFound ? nothing : damaged);
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
    for (const char* name : copiedFiles)
        source.file(name, content(i));
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

constexpr Store stores[] = {
    {"settings", settingCount, changeSetting, foundSettings},
    {"secrets", secretCount, changeSecret, foundSecrets},
    {"file", 1, changeFile, foundFile},
    {"copy", 1, changeCopy, foundCopy},
};

/// What is found after the last step, `nothing` for none, and which of the steps that is: what was
/// promised, or later, and no step left out.
std::int64_t check(const Store& store, const fs::path& folder, std::int64_t promised) {
    const std::vector<std::int64_t> found = store.found(folder);
    const std::int64_t last = std::ranges::max(found);
    for (int slot = 0; slot < store.slotCount; ++slot) {
        const std::int64_t wanted = last - (last - slot + store.slotCount) % store.slotCount;
        EXPECT_EQ(found[static_cast<std::size_t>(slot)], last < slot ? nothing : wanted) << slot;
    }
    EXPECT_GE(last, promised);
    return last;
}

/// A campaign asks for more.
int count(const char* variable, int unlessAsked) {
    const char* asked = std::getenv(variable);
    return asked ? std::atoi(asked) : unlessAsked;
}

} // namespace

class Promises : public testing::TestWithParam<Store> {};

INSTANTIATE_TEST_SUITE_P(Stores, Promises, testing::ValuesIn(stores),
                         [](const auto& info) { return std::string(info.param.name); });

// Tries every moment, and at each one disks where everything, nothing and something has survived of
// what was not waited for.
TEST_P(Promises, outliveThePower) {
    const Store& store = GetParam();
    std::vector<DiskEvent> events;
    {
        const TemporaryFolder folder(TemporaryFolder::fastParent());
        events = recordDisk(folder.path(), [&] {
            for (int i = 0; i < std::max(6, store.slotCount * 3 / 2); ++i)
                if (store.step(folder.path(), i))
                    sayToRecorder(i);
        });
    }
    const auto seeds = static_cast<std::uint32_t>(2 + count("ZORVAN_DISKS", 2));
    std::int64_t promised = nothing;
    for (std::size_t after = 0; after <= events.size(); ++after) {
        if (after > 0 && events[after - 1].kind == DiskEvent::Kind::say)
            promised = static_cast<std::int64_t>(events[after - 1].offset);
        if (promised == nothing && store.found == foundCopy)
            continue;
        for (std::uint32_t seed = 0; seed < seeds; ++seed) {
            const TemporaryFolder left(TemporaryFolder::fastParent());
            restoreDisk(events, {.after = after, .seed = seed}, left.path());
            const pid_t child = startChild(
                [&] { store.step(left.path(), check(store, left.path(), promised) + 1); });
            ASSERT_EQ(exitStatus(child), 0) << "after " << after << " of " << events.size()
                                            << ", disk " << seed << ", promised " << promised;
        }
    }
    EXPECT_GT(promised, 3);
    std::cout << store.name << ": " << events.size() << " moments, " << events.size() * seeds
              << " disks, " << promised + 1 << " promises, none broken\n";
}

TEST_P(Promises, outliveTheProcess) {
    const Store& store = GetParam();
    const TemporaryFolder folder(TemporaryFolder::fastParent());
    std::mt19937 random(7);
    std::int64_t said = nothing;
    const int kills = count("ZORVAN_KILLS", 60);
    for (int round = 0; round < kills; ++round) {
        int ends[2];
        ASSERT_EQ(::pipe(ends), 0);
        const pid_t writer = startChild([&] {
            for (std::int64_t i = check(store, folder.path(), said) + 1;; ++i) {
                store.step(folder.path(), i);
                require(::write(ends[1], &i, sizeof i) == sizeof i);
            }
        });
        ::close(ends[1]);
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 16'000));
        ::kill(writer, SIGKILL);
        ASSERT_EQ(exitStatus(writer), -1) << "round " << round << ", promised " << said;
        for (std::int64_t i; ::read(ends[0], &i, sizeof i) == sizeof i;)
            said = i;
        ::close(ends[0]);
        // A hidden list of what is unfinished is all that may be left beside.
        const pid_t checker = startChild([&] { check(store, folder.path(), said); });
        ASSERT_EQ(exitStatus(checker), 0) << "round " << round << ", promised " << said;
    }
    EXPECT_GT(said, 10);
    std::cout << store.name << ": " << kills << " kills, " << said + 1
              << " promises, none broken\n";
}
