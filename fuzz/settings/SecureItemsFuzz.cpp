// A database of secure items that somebody else has written to: another file altogether, a good one
// with bytes exchanged, or rows with other values. What is read then is the secret, or nothing.

#include <fuzz/Fuzzing.h>
#include <fuzz/ScratchFolder.h>
#include <tests/platform/security/storedItems.h>
#include <zorvan/platform/security/internal/ItemStore.h>

#include <fstream>
#include <iterator>
#include <sqlite3.h>
#include <string>

using namespace zorvan;

namespace {

const Data secret(40, std::byte{'s'});

PropertyList::Dictionary item(const char* account) {
    return {{kSecClass, kSecClassGenericPassword},
            {kSecAttrService, "service"},
            {kSecAttrAccount, account}};
}

/// The database of two items, as a file; made once.
struct Template {
    Template() {
        for (const char* name : {"DBUS_SESSION_BUS_ADDRESS", "DISPLAY"})
            ::unsetenv(name);
        for (const char* name : {"XDG_DATA_HOME", "XDG_RUNTIME_DIR", "HOME"})
            ::setenv(name, folder.path().c_str(), 1);
        for (const char* account : {"a", "b"})
            require(SecItemAdd(with(item(account), kSecValueData, secret)) == errSecSuccess);
        security::ItemStore::close();
        execute("PRAGMA journal_mode = DELETE");
        std::ifstream file(path, std::ios::binary);
        bytes.assign(std::istreambuf_iterator<char>(file), {});
    }

    void execute(const std::string& statements) const {
        sqlite3* database = nullptr;
        require(sqlite3_open(path.c_str(), &database) == SQLITE_OK);
        sqlite3_exec(database, statements.c_str(), nullptr, nullptr, nullptr);
        sqlite3_close(database);
    }

    void write(std::string_view content) const {
        for (const char* ending : {"-wal", "-shm", "-journal"})
            std::filesystem::remove(path.string() + ending);
        std::ofstream(path, std::ios::binary | std::ios::trunc) << content;
    }

    const ScratchFolder folder;
    const std::filesystem::path path = folder.path() / "zorvan/secure-items/items.sqlite";
    std::string bytes;
};

/// Each four bytes: where, two of them, and what there is added to how many bytes.
std::string changed(std::string bytes, std::span<const std::uint8_t> changes) {
    for (; changes.size() >= 4; changes = changes.subspan(4)) {
        const std::size_t at = (changes[0] * 256u + changes[1]) % bytes.size();
        for (std::size_t i = at; i < std::min(bytes.size(), at + 1 + changes[3] % 8); ++i)
            bytes[i] = static_cast<char>(bytes[i] + changes[2]);
    }
    return bytes;
}

/// A value of any kind for a column of an item.
std::string columnChange(std::span<const std::uint8_t> input) {
    constexpr const char* columns[] = {"reference", "service",  "account",    "access_group",
                                       "label",     "generic",  "accessible", "synchronizable",
                                       "created",   "modified", "revision",   "sealing_key",
                                       "sealed"};
    constexpr const char* kinds[] = {"x'", "CAST(x'", "length(x'", "zeroblob(1 << length(x'"};
    constexpr const char* ends[] = {"'", "' AS TEXT)", "') - 9223372036854775807", "'))"};
    std::string hexadecimal;
    for (const std::uint8_t byte : input.subspan(2, std::min<std::size_t>(input.size() - 2, 24)))
        for (const int digit : {byte / 16, byte % 16})
            hexadecimal += "0123456789abcdef"[digit];
    return std::string("UPDATE items SET ") + columns[input[0] % 13] + " = " + kinds[input[1] % 4] +
           hexadecimal + ends[input[1] % 4] + (input[1] & 64 ? " WHERE account = 'a'" : "");
}

void use() {
    for (const char* account : {"a", "b"}) {
        const auto found = SecItemCopyMatching(with(item(account), kSecReturnData, true));
        const Data* value = found.value ? found.value->as<Data>() : nullptr;
        require(!value || *value == secret || *value == Data{std::byte{'n'}});
    }
    (void)SecItemCopyMatching({{kSecClass, kSecClassGenericPassword},
                               {kSecMatchLimit, kSecMatchLimitAll},
                               {kSecReturnAttributes, true},
                               {kSecReturnPersistentRef, true}});
    (void)SecItemUpdate(item("b"), {{kSecValueData, Data{std::byte{'n'}}}});
    (void)SecItemUpdate(item("b"), {{kSecAttrLabel, "label"}});
    (void)SecItemAdd(with(item("c"), kSecValueData, secret));
    (void)SecItemDelete(item("a"));
}

} // namespace

void tryOut(std::span<const std::uint8_t> input) {
    static const Template original;
    if (input.size() < 4)
        return;
    const std::span changes = input.subspan(1);
    const unsigned kind = input[0] % 8;
    original.write(kind == 0  ? std::string(textOf(changes))
                   : kind < 4 ? changed(original.bytes, changes)
                              : original.bytes);
    if (kind >= 4)
        original.execute(columnChange(changes));
    use();
    security::ItemStore::close();
}
