// The settings store beside QSettings, a bare SQLite commit in the same mode, and a hash map.

#include <zorvan/platform/settingsdatabase/SettingsDatabase.h>
#include <zorvan/settings/NSUserDefaults.h>
#include <zorvan/settings/NumberCoders.h>

#include <QSettings>
#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <filesystem>
#include <string>
#include <unordered_map>
#include <vector>

using namespace zorvan;

namespace {

constexpr int keys = 10'000;
constexpr int writes = 1'000;

struct Ours {};
struct Map {};
struct Qt {};
struct SQLite {};

/// A folder on the disk that settings are on, emptied at the end.
struct Folder {
    std::string path = std::filesystem::current_path() / "settings-bench.tmp";
    Folder() {
        std::filesystem::remove_all(path);
        std::filesystem::create_directory(path);
        ::setenv("XDG_CONFIG_HOME", path.c_str(), 1);
    }
    ~Folder() { std::filesystem::remove_all(path); }
};

std::vector<std::string> names() {
    std::vector<std::string> result;
    for (int i = 0; i < keys; ++i)
        result.push_back("window.panel.setting number " + std::to_string(i));
    return result;
}

const std::vector<std::string> name = names();

template <class>
void typedRead(benchmark::State& state);

template <>
void typedRead<Ours>(benchmark::State& state) {
    const Folder folder;
    const auto store = NSUserDefaults::create({.suiteName = "bench"});
    for (int i = 0; i < 1000; ++i)
        store->setInteger(i, name[static_cast<std::size_t>(i)]);
    const EvaluedUserDefaultsKey<IntUDC> key({.name = name[500], .value = 0});
    for (auto _ : state)
        benchmark::DoNotOptimize(store->value(key));
}
template <>
void typedRead<Map>(benchmark::State& state) {
    std::unordered_map<std::string, PropertyList> map;
    for (int i = 0; i < 1000; ++i)
        map.emplace(name[static_cast<std::size_t>(i)], i);
    const std::string key = name[500];
    for (auto _ : state) {
        const auto found = map.find(key);
        const auto* number = found == map.end() ? nullptr : found->second.as<NSNumber>();
        benchmark::DoNotOptimize(number ? number->int64Value() : 0);
    }
}
BENCHMARK(typedRead<Ours>);
BENCHMARK(typedRead<Map>);

QString qt(const std::string& text) { return QString::fromStdString(text); }

template <class>
void openDomain(benchmark::State& state);

template <>
void openDomain<Ours>(benchmark::State& state) {
    const Folder folder;
    const std::string path = folder.path + "/a.settings";
    std::vector<SettingsDatabase::Change> changes;
    for (int i = 0; i < keys; ++i)
        changes.emplace_back(name[static_cast<std::size_t>(i)], i);
    SettingsDatabase::open(path)->apply(std::move(changes));
    for (auto _ : state)
        benchmark::DoNotOptimize(SettingsDatabase::open(path)->value(name[77]));
}
template <>
void openDomain<Qt>(benchmark::State& state) {
    const Folder folder;
    const QString path = qt(folder.path + "/a.ini");
    {
        QSettings settings(path, QSettings::IniFormat);
        for (int i = 0; i < keys; ++i)
            settings.setValue(qt(name[static_cast<std::size_t>(i)]), i);
    }
    // Otherwise QSettings keeps the file parsed: every opening is made that of another file.
    int copy = 0;
    for (auto _ : state) {
        state.PauseTiming();
        const std::string other = folder.path + "/" + std::to_string(copy++) + ".ini";
        std::filesystem::copy_file(path.toStdString(), other);
        state.ResumeTiming();
        QSettings settings(qt(other), QSettings::IniFormat);
        benchmark::DoNotOptimize(settings.value(qt(name[77])).toInt());
    }
}
BENCHMARK(openDomain<Ours>)->Unit(benchmark::kMillisecond);
BENCHMARK(openDomain<Qt>)->Unit(benchmark::kMillisecond);

/// A thousand writes of single keys, each of which lasts when it returns.
template <class>
void thousandWrites(benchmark::State& state);

template <>
void thousandWrites<Ours>(benchmark::State& state) {
    const Folder folder;
    const auto store = NSUserDefaults::create({.suiteName = "bench"});
    std::int64_t value = 0;
    for (auto _ : state)
        for (int i = 0; i < writes; ++i)
            store->setInteger(++value, name[static_cast<std::size_t>(i)]);
}
template <>
void thousandWrites<Qt>(benchmark::State& state) {
    const Folder folder;
    QSettings settings(qt(folder.path + "/a.ini"), QSettings::IniFormat);
    int value = 0;
    for (auto _ : state)
        for (int i = 0; i < writes; ++i) {
            settings.setValue(qt(name[static_cast<std::size_t>(i)]), ++value);
            settings.sync();
        }
}
BENCHMARK(thousandWrites<Ours>)->Unit(benchmark::kMillisecond);
BENCHMARK(thousandWrites<Qt>)->Unit(benchmark::kMillisecond)->Iterations(2);

template <class>
void oneWrite(benchmark::State& state);

template <>
void oneWrite<Ours>(benchmark::State& state) {
    const Folder folder;
    const auto store = NSUserDefaults::create({.suiteName = "bench"});
    std::int64_t value = 0;
    for (auto _ : state)
        store->setInteger(++value, name[0]);
}
template <>
void oneWrite<SQLite>(benchmark::State& state) {
    const Folder folder;
    sqlite3* database = nullptr;
    sqlite3_stmt* statement = nullptr;
    sqlite3_open((folder.path + "/a.db").c_str(), &database);
    sqlite3_exec(database,
                 "PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL;"
                 "CREATE TABLE settings(key TEXT PRIMARY KEY, value)",
                 nullptr, nullptr, nullptr);
    sqlite3_prepare_v2(database, "INSERT OR REPLACE INTO settings VALUES (?1, ?2)", -1, &statement,
                       nullptr);
    std::int64_t value = 0;
    for (auto _ : state) {
        sqlite3_bind_text(statement, 1, name[0].c_str(), -1, SQLITE_STATIC);
        sqlite3_bind_int64(statement, 2, ++value);
        sqlite3_step(statement);
        sqlite3_reset(statement);
    }
    sqlite3_finalize(statement);
    sqlite3_close(database);
}
BENCHMARK(oneWrite<Ours>);
BENCHMARK(oneWrite<SQLite>);

} // namespace

BENCHMARK_MAIN();
