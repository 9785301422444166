// Filters over lists with a selection, beside the proxy model of Qt; block moves and removals,
// beside std::stable_partition.

#include <zorvan/collections/ManagedList.h>

#include <QItemSelectionModel>
#include <QSortFilterProxyModel>
#include <QStringListModel>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <string>
#include <vector>

using namespace zorvan;

namespace {

std::vector<std::string> names(std::int64_t count) {
    std::vector<std::string> items;
    for (std::int64_t i = 0; i < count; ++i)
        items.push_back("item " + std::to_string(i));
    return items;
}

/// A thousand positions, evenly spread.
std::vector<std::int64_t> selected(std::int64_t count) {
    std::vector<std::int64_t> positions;
    for (std::int64_t i = 0; i < 1000; ++i)
        positions.push_back(i * count / 1000);
    return positions;
}

/// Sets a filter, changes it and removes it, with a thousand items selected.
void filterOurs(benchmark::State& state) {
    const auto list = ManagedList<std::string>::create(names(state.range(0)));
    for (auto _ : state) {
        list->setSelection(IndexSet::of(selected(state.range(0))));
        list->setFilter([](const std::string& item) { return item.back() < '5'; });
        list->setFilter([](const std::string& item) { return item.back() > '2'; });
        list->setFilter({});
    }
}

class DigitFilter : public QSortFilterProxyModel {
public:
    using QSortFilterProxyModel::QSortFilterProxyModel;
    void setAccepted(bool (*accepts)(QChar)) {
        accepts_ = accepts;
        invalidateFilter();
    }

protected:
    bool filterAcceptsRow(int row, const QModelIndex& parent) const override {
        if (!accepts_)
            return true;
        const QString text = sourceModel()->index(row, 0, parent).data().toString();
        return accepts_(text.back());
    }

private:
    bool (*accepts_)(QChar) = nullptr;
};

void filterQt(benchmark::State& state) {
    QStringList list;
    for (const std::string& name : names(state.range(0)))
        list << QString::fromStdString(name);
    QStringListModel model(list);
    DigitFilter proxy;
    proxy.setSourceModel(&model);
    QItemSelectionModel selection(&proxy);
    for (auto _ : state) {
        QItemSelection rows;
        for (const std::int64_t row : selected(state.range(0))) {
            const QModelIndex index = proxy.index(static_cast<int>(row), 0);
            rows.append(QItemSelectionRange(index));
        }
        selection.select(rows, QItemSelectionModel::ClearAndSelect);
        proxy.setAccepted([](QChar c) { return c < u'5'; });
        proxy.setAccepted([](QChar c) { return c > u'2'; });
        proxy.setAccepted(nullptr);
    }
}

void duplicatesUnderFilter(benchmark::State& state) {
    std::vector<std::int64_t> items(static_cast<std::size_t>(state.range(0)));
    for (std::size_t i = 0; i < items.size(); ++i)
        items[i] = static_cast<std::int64_t>(i % 10);
    const auto list = ManagedList<std::int64_t>::create(std::move(items));
    for (auto _ : state) {
        list->setFilter([](std::int64_t item) { return item < 5; });
        list->insert({3}, 0); // through the filter: every shown item is found in the full list
        list->remove({0});
        list->setFilter({});
    }
}

void insertThousandUnderFilter(benchmark::State& state) {
    const auto list = ManagedList<std::string>::create(names(state.range(0)));
    list->setFilter([](const std::string& item) { return item.back() < '5'; });
    const std::vector<std::string> added = names(1000);
    for (auto _ : state) {
        list->insert(added, 500);
        list->remove(IndexSet({.loc = 500, .len = 500}));
    }
}

std::int64_t item(std::int64_t i, std::int64_t) { return i; }
std::string item(std::int64_t i, const std::string&) { return "item " + std::to_string(i); }

/// A million items; the filter lets every other one through. One in the middle of them is removed.
template <class Item, bool isFiltered>
void removeOne(benchmark::State& state) {
    std::vector<Item> items;
    for (std::int64_t i = 0; i < 1'000'000; ++i)
        items.push_back(item(i, Item()));
    const auto list = ManagedList<Item>::create(std::move(items));
    if constexpr (isFiltered)
        list->setFilter([even = true](const Item&) mutable { return even = !even; });
    for (auto _ : state)
        list->remove({list->count() / 2});
}

IndexSet scattered(std::int64_t among) {
    std::mt19937 random(1);
    IndexSet positions;
    for (std::int64_t i = 0; i < among; ++i)
        if (random() % 10 == 0)
            positions.insert(i);
    return positions;
}

std::vector<std::int64_t> numbers() {
    std::vector<std::int64_t> list(1'000'000);
    std::iota(list.begin(), list.end(), 0);
    return list;
}

void removeScattered(benchmark::State& state) {
    const IndexSet positions = scattered(1'000'000);
    const std::vector<std::int64_t> original = numbers();
    for (auto _ : state) {
        state.PauseTiming();
        std::vector<std::int64_t> list = original;
        state.ResumeTiming();
        zorvan::remove(list, positions);
        benchmark::DoNotOptimize(list.data());
    }
}

void moveScattered(benchmark::State& state) {
    const IndexSet positions = scattered(1'000'000);
    const std::vector<std::int64_t> original = numbers();
    for (auto _ : state) {
        state.PauseTiming();
        std::vector<std::int64_t> list = original;
        state.ResumeTiming();
        zorvan::move(list, positions, 1'000'000);
        benchmark::DoNotOptimize(list.data());
    }
}

void stablePartition(benchmark::State& state) {
    std::vector<char> isChosen(1'000'000);
    for (const std::int64_t position : scattered(1'000'000))
        isChosen[static_cast<std::size_t>(position)] = 1;
    const std::vector<std::int64_t> original = numbers();
    for (auto _ : state) {
        state.PauseTiming();
        std::vector<std::int64_t> list = original;
        state.ResumeTiming();
        std::stable_partition(list.begin(), list.end(), [&isChosen](std::int64_t item) {
            return !isChosen[static_cast<std::size_t>(item)];
        });
        benchmark::DoNotOptimize(list.data());
    }
}

BENCHMARK(filterOurs)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK(filterQt)->Arg(100'000)->Unit(benchmark::kMillisecond);
BENCHMARK(duplicatesUnderFilter)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK(insertThousandUnderFilter)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(removeOne, std::int64_t, true)
    ->Name("remove one number under a filter, ours")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(removeOne, std::int64_t, false)
    ->Name("remove one number under a filter, without")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(removeOne, std::string, true)
    ->Name("remove one text under a filter, ours")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(removeOne, std::string, false)
    ->Name("remove one text under a filter, without")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(removeScattered)->Name("remove scattered, ours")->Unit(benchmark::kMillisecond);
BENCHMARK(moveScattered)->Name("move scattered, ours")->Unit(benchmark::kMillisecond);
BENCHMARK(stablePartition)
    ->Name("remove scattered, stable_partition")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(stablePartition)->Name("move scattered, stable_partition")->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
