// Secrets of a keychain beside rows of a bare SQLite table in the same mode: a write-ahead log that
// is on the disk when a commit returns. Both in the temporary folder, both with 1,000 entries.

#include <zorvan/settings/UserKeychain.h>

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace {

using namespace zorvan;

constexpr std::int64_t entryCount = 1000;
std::filesystem::path folder;

/// Another one each time: SQLite does not write what is there already.
std::string newSecret() {
    static std::int64_t count = 0;
    std::string text = std::to_string(++count);
    text.resize(40, 's');
    return text;
}

std::string name(std::int64_t index) { return "token-" + std::to_string(index); }

class Ours {
public:
    void write(const std::string& key) {
        if (!keychain_->set(newSecret(), UserKeychain::Key(key)))
            std::abort();
    }
    std::size_t read(const std::string& key) {
        return keychain_->data(UserKeychain::Key(key)).value().size();
    }
    void empty() { keychain_->removeAllKeys(); }

private:
    std::shared_ptr<UserKeychain> keychain_ = UserKeychain::create({.serviceName = "bench"});
};

class Bare {
public:
    Bare() {
        if (sqlite3_open((folder / "bare.sqlite").c_str(), &database_) != SQLITE_OK)
            std::abort();
        run("PRAGMA journal_mode=WAL");
        run("PRAGMA synchronous=FULL");
        run("CREATE TABLE IF NOT EXISTS items (key TEXT PRIMARY KEY, value BLOB)");
        write_ = prepared(
            "INSERT INTO items VALUES (?, ?) ON CONFLICT DO UPDATE SET value = excluded.value");
        read_ = prepared("SELECT value FROM items WHERE key = ?");
    }
    ~Bare() {
        sqlite3_finalize(write_);
        sqlite3_finalize(read_);
        sqlite3_close(database_);
    }
    Bare(const Bare&) = delete;
    Bare& operator=(const Bare&) = delete;

    void write(const std::string& key) {
        const std::string secret = newSecret();
        bind(write_, 1, key);
        bind(write_, 2, secret);
        if (sqlite3_step(write_) != SQLITE_DONE)
            std::abort();
        sqlite3_reset(write_);
    }
    std::size_t read(const std::string& key) {
        bind(read_, 1, key);
        if (sqlite3_step(read_) != SQLITE_ROW)
            std::abort();
        const auto* bytes = static_cast<const std::byte*>(sqlite3_column_blob(read_, 0));
        const Data value(bytes, bytes + sqlite3_column_bytes(read_, 0));
        sqlite3_reset(read_);
        return value.size();
    }
    void empty() { run("DELETE FROM items"); }

private:
    void run(const char* text) {
        if (sqlite3_exec(database_, text, nullptr, nullptr, nullptr) != SQLITE_OK)
            std::abort();
    }
    sqlite3_stmt* prepared(const char* text) {
        sqlite3_stmt* statement = nullptr;
        if (sqlite3_prepare_v2(database_, text, -1, &statement, nullptr) != SQLITE_OK)
            std::abort();
        return statement;
    }
    static void bind(sqlite3_stmt* statement, int parameter, const std::string& text) {
        sqlite3_bind_text(statement, parameter, text.data(), static_cast<int>(text.size()),
                          SQLITE_STATIC);
    }

    sqlite3* database_ = nullptr;
    sqlite3_stmt* write_ = nullptr;
    sqlite3_stmt* read_ = nullptr;
};

template <class Store>
void fill(Store& store) {
    store.empty();
    for (std::int64_t i = 0; i < entryCount; ++i)
        store.write(name(i));
}

template <class Store>
void addSecret(benchmark::State& state) {
    Store store;
    fill(store);
    std::int64_t i = entryCount;
    for (auto _ : state)
        store.write(name(i++));
}

template <class Store>
void changeSecret(benchmark::State& state) {
    Store store;
    fill(store);
    std::int64_t i = 0;
    for (auto _ : state)
        store.write(name(i++ * 7 % entryCount));
}

template <class Store>
void readSecret(benchmark::State& state) {
    Store store;
    fill(store);
    std::int64_t i = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(store.read(name(i++ * 7 % entryCount)));
}

/// As an application that renews a token and uses it.
template <class Store>
void changeAndReadSecret(benchmark::State& state) {
    Store store;
    fill(store);
    std::int64_t i = 0;
    for (auto _ : state) {
        const std::string key = name(i++ * 7 % entryCount);
        store.write(key);
        benchmark::DoNotOptimize(store.read(key));
    }
}

BENCHMARK(addSecret<Ours>)->UseRealTime();
BENCHMARK(addSecret<Bare>)->UseRealTime();
BENCHMARK(changeSecret<Ours>)->UseRealTime();
BENCHMARK(changeSecret<Bare>)->UseRealTime();
BENCHMARK(changeAndReadSecret<Ours>)->UseRealTime();
BENCHMARK(changeAndReadSecret<Bare>)->UseRealTime();
BENCHMARK(readSecret<Ours>)->UseRealTime();
BENCHMARK(readSecret<Bare>)->UseRealTime();

} // namespace

int main(int argc, char** argv) {
    folder =
        std::filesystem::temp_directory_path() / ("zorvan-bench-" + std::to_string(::getpid()));
    std::filesystem::create_directory(folder);
    ::setenv("XDG_DATA_HOME", folder.c_str(), 1);
    ::setenv("XDG_RUNTIME_DIR", folder.c_str(), 1);
    ::unsetenv("DBUS_SESSION_BUS_ADDRESS");
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    std::filesystem::remove_all(folder);
}
