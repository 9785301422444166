// What takes how long at which size: one or two operations of each family, over sizes from a
// thousand on. scripts/growth.py judges how the time grows.

#include <zorvan/collections/FinderOrder.h>
#include <zorvan/collections/IndexSet.h>
#include <zorvan/collections/ManagedList.h>
#include <zorvan/colour/convertToLAB.h>
#include <zorvan/files/FileIterator.h>
#include <zorvan/interface/NSTableView.h>
#include <zorvan/media/CGImage.h>
#include <zorvan/numbers-geometry/CGPoint.h>
#include <zorvan/platform/dispatch/NSNotificationCenter.h>
#include <zorvan/platform/settingsdatabase/SettingsDatabase.h>
#include <zorvan/platform/textservices/Characters.h>

#include <benchmark/benchmark.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <unistd.h>
#include <vector>

using namespace zorvan;

namespace {

/// One for each row, emptied at the end.
class Folder {
public:
    Folder() { std::filesystem::create_directory(path_); }
    ~Folder() { std::filesystem::remove_all(path_); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::string path() const { return path_; }

private:
    const std::filesystem::path path_ =
        std::filesystem::current_path() / ("growth-bench-" + std::to_string(::getpid()));
};

void hullOfPoints(benchmark::State& state) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> place(0, 1000);
    std::vector<CGPoint> points(static_cast<std::size_t>(state.range(0)));
    for (CGPoint& point : points)
        point = CGPoint(place(random), place(random));
    for (auto _ : state)
        benchmark::DoNotOptimize(CGPoint::convexHull(points));
}

void coloursToLab(benchmark::State& state) {
    std::mt19937 random(1);
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(3 * state.range(0)));
    for (std::uint8_t& byte : bytes)
        byte = static_cast<std::uint8_t>(random());
    std::vector<LAB> labs(bytes.size() / 3);
    for (auto _ : state) {
        convertToLAB(bytes, labs);
        benchmark::DoNotOptimize(labs.data());
    }
}

void charactersOfText(benchmark::State& state) {
    std::string text;
    while (text.size() < static_cast<std::size_t>(state.range(0)))
        text += "Zu\u0308rich, \u00e9t\u00e9 ";
    for (auto _ : state)
        benchmark::DoNotOptimize(characterCount(text));
}

std::vector<std::string> shuffledNames(std::int64_t count) {
    std::mt19937 random(1);
    std::vector<std::string> names;
    for (std::int64_t i = 0; i < count; ++i)
        names.push_back("IMG " + std::to_string(random()));
    return names;
}

void sortNames(benchmark::State& state) {
    const std::vector<std::string> names = shuffledNames(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(finderSorted(names).data());
}

void openSettings(benchmark::State& state) {
    const Folder folder;
    const std::string path = folder.path() + "/a.settings";
    std::vector<SettingsDatabase::Change> changes;
    for (std::int64_t i = 0; i < state.range(0); ++i)
        changes.emplace_back("setting " + std::to_string(i), i);
    SettingsDatabase::open(path)->apply(std::move(changes));
    for (auto _ : state)
        benchmark::DoNotOptimize(SettingsDatabase::open(path)->value("setting 77"));
}

IndexSet scatteredRanges(unsigned seed, std::int64_t count) {
    std::mt19937 random(seed);
    IndexSet set;
    std::int64_t position = 0;
    for (std::int64_t i = 0; i < count; ++i) {
        position += 1 + random() % 199;
        const std::int64_t upper = position + 1 + random() % 199;
        set.insert(IndexSet::Range{position, upper});
        position = upper + 1;
    }
    return set;
}

void uniteSets(benchmark::State& state) {
    const IndexSet a = scatteredRanges(1, state.range(0)), b = scatteredRanges(2, state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(a.union_(b));
}

std::vector<std::int64_t> numbers(std::int64_t count) {
    std::vector<std::int64_t> items(static_cast<std::size_t>(count));
    for (std::size_t i = 0; i < items.size(); ++i)
        items[i] = static_cast<std::int64_t>(i) * 7919 % count;
    return items;
}

/// A filter comes, an item of the shown ones goes, a block of them moves, and all come back.
void filterAndChangeList(benchmark::State& state) {
    const auto list = ManagedList<std::int64_t>::create(numbers(state.range(0)));
    for (auto _ : state) {
        list->setFilter([](std::int64_t item) { return item % 2 == 0; });
        list->remove({list->count() / 2});
        list->insert({0}, 0);
        list->move(IndexSet({.loc = 0, .len = list->count() / 4}), list->count());
        list->setFilter({});
    }
}

void tellObservers(benchmark::State& state) {
    const auto center = NSNotificationCenter::create();
    const NSNotificationName name = "GrowthNotification";
    std::int64_t told = 0;
    for (std::int64_t i = 0; i < state.range(0); ++i)
        center->addObserver(name, nullptr, nullptr, [&](const Notification&) { ++told; });
    for (auto _ : state)
        center->post(name);
    benchmark::DoNotOptimize(told);
}

void comeAndGoObservers(benchmark::State& state) {
    const NSNotificationName name = "GrowthNotification";
    for (auto _ : state) {
        const auto center = NSNotificationCenter::create();
        std::vector<std::shared_ptr<NotificationObserver>> observers;
        for (std::int64_t i = 0; i < state.range(0); ++i)
            observers.push_back(
                center->addObserver(name, nullptr, nullptr, [](const Notification&) {}));
        for (const auto& observer : observers)
            center->removeObserver(observer);
    }
}

void walkFolder(benchmark::State& state) {
    const Folder folder;
    for (std::int64_t i = 0; i < state.range(0); ++i)
        std::ofstream(folder.path() + "/" + std::to_string(i) + ".jpg");
    for (auto _ : state) {
        const auto files = FileIterator::create({URL({.fileURLWithPath = folder.path()})});
        std::int64_t count = 0;
        while (files->next())
            ++count;
        if (count != state.range(0))
            state.SkipWithError("a file was missed");
    }
}

void halvePicture(benchmark::State& state) {
    const auto side = static_cast<std::int64_t>(std::sqrt(static_cast<double>(state.range(0))));
    const CGImage::Pointer picture = CGImage::create(Bitmap::make(side, side).value());
    const double half = std::floor(static_cast<double>(side) / 2);
    for (auto _ : state)
        benchmark::DoNotOptimize(picture->fitting({half, half}));
}

class Rows : public NSTableViewDataSource {
public:
    explicit Rows(std::int64_t count) : count_(count) {}
    std::int64_t numberOfRows(const NSTableView&) const override { return count_; }
    std::string text(const NSTableView&, std::int64_t, std::int64_t row) const override {
        return std::to_string(row);
    }

private:
    const std::int64_t count_;
};

void reloadTable(benchmark::State& state) {
    const auto table = NSTableView::create();
    table->setNumberOfColumns(2);
    const auto rows = std::make_shared<Rows>(state.range(0));
    table->setDataSource(rows);
    IndexSet everyOther;
    for (std::int64_t row = 0; row < state.range(0); row += 2)
        everyOther.insert(row);
    for (auto _ : state) {
        table->reloadData();
        table->selectRowIndexes(everyOther, false);
        table->selectRowIndexes({}, false);
    }
}

constexpr std::int64_t million = 1'000'000;

/// The family's name goes before that of the operation.
void add(const char* name, void (*operation)(benchmark::State&), std::int64_t largest) {
    benchmark::RegisterBenchmark(name, operation)->RangeMultiplier(10)->Range(1000, largest);
}

const bool areAdded = [] {
    add("numbers and geometry: hull of points", hullOfPoints, 10 * million);
    add("colour: bytes to Lab", coloursToLab, 10 * million);
    add("text: characters of a text", charactersOfText, 10 * million);
    add("text: names sorted", sortNames, million);
    add("settings: a domain opened", openSettings, million / 10);
    add("collections: union of index sets", uniteSets, 10 * million);
    add("collections: list filtered and changed", filterAndChangeList, 10 * million);
    add("observation: observers told", tellObservers, million);
    add("observation: observers come and go", comeAndGoObservers, million);
    add("files: a folder walked", walkFolder, million / 10);
    add("media: a picture halved", halvePicture, 10 * million);
    add("interface: table loaded and selected", reloadTable, 10 * million);
    return true;
}();

} // namespace

BENCHMARK_MAIN();
