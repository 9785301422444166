// Tables in a window, without a screen: ours behind a managed list, beside Qt's table on a bare
// model and on its proxy that filters.

#include "settle.h"

#include <zorvan/collections/ManagedList.h>
#include <zorvan/hosts/QtWindowHost.h>
#include <zorvan/interface/ManagedListViewReloader.h>
#include <zorvan/platform/appkit/NSScrollView.h>
#include <zorvan/platform/dispatch/NSNotificationCenter.h>

#include <benchmark/benchmark.h>

#include <QHeaderView>
#include <QMainWindow>
#include <QSortFilterProxyModel>
#include <QTableView>

#include <memory>
#include <numeric>
#include <string>
#include <vector>

using namespace zorvan;

namespace {

std::string nameOf(int item) { return "picture " + std::to_string(item); }

std::vector<int> numbers(std::int64_t count) {
    std::vector<int> all(static_cast<std::size_t>(count));
    std::iota(all.begin(), all.end(), 0);
    return all;
}

IndexSet everyNth(std::int64_t count, std::int64_t step) {
    IndexSet rows;
    for (std::int64_t row = 0; row < count; row += step)
        rows.insert(row);
    return rows;
}

/// A list in a table in a window.
class Ours : NSTableViewDataSource, public std::enable_shared_from_this<Ours> {
public:
    static std::shared_ptr<Ours> show(std::int64_t count) {
        const std::shared_ptr<Ours> shown(new Ours(count));
        shown->table->setNumberOfColumns(2);
        const auto scrollView = NSScrollView::create();
        scrollView->setDocumentView(shown->table);
        shown->window->setContentView(scrollView);
        shown->table->setDataSource(std::shared_ptr<NSTableViewDataSource>(shown, shown.get()));
        shown->host = QtWindowHost::show(shown->window);
        settle();
        return shown;
    }
    ~Ours() override { NSNotificationCenter::defaultCenter()->removeObserver(observer); }

    void select(const IndexSet& rows) {
        list->setSelection(rows);
        settle();
    }
    /// One more digit was typed into the search field.
    void filter(int digit) {
        list->setFilter([digit](int item) { return item % 10 != digit; });
        settle();
    }

    const std::shared_ptr<ManagedList<int>> list;
    const std::shared_ptr<NSTableView> table = NSTableView::create();

private:
    explicit Ours(std::int64_t count) : list(ManagedList<int>::create(numbers(count))) {
        observer = NSNotificationCenter::defaultCenter()->addObserver(
            NSNotificationName(ManagedList<int>::didReloadNotification), list, nullptr,
            [this](const Notification& note) {
                ManagedList<int>::ViewReloader(*ManagedList<int>::edition(note)).reload(*table);
            });
    }
    std::int64_t numberOfRows(const NSTableView&) const override { return list->count(); }
    std::string text(const NSTableView&, std::int64_t, std::int64_t row) const override {
        return row < list->count() ? nameOf(list->items()[static_cast<std::size_t>(row)]) : "";
    }

    const std::shared_ptr<NSWindow> window = NSWindow::create({600, 400});
    std::shared_ptr<QtWindowHost> host;
    std::shared_ptr<NotificationObserver> observer;
};

class BareModel : public QAbstractTableModel {
public:
    explicit BareModel(std::int64_t count) : items_(numbers(count)) {}
    int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : static_cast<int>(items_.size());
    }
    int columnCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : 2;
    }
    QVariant data(const QModelIndex& index, int role) const override {
        if (role == Qt::UserRole)
            return items_[static_cast<std::size_t>(index.row())];
        return role == Qt::DisplayRole
                   ? QString::fromStdString(nameOf(items_[static_cast<std::size_t>(index.row())]))
                   : QVariant();
    }

private:
    std::vector<int> items_;
};

class Filter : public QSortFilterProxyModel {
public:
    void set(int digit) {
        digit_ = digit;
        invalidateFilter();
    }

protected:
    bool filterAcceptsRow(int row, const QModelIndex& parent) const override {
        return sourceModel()->index(row, 0, parent).data(Qt::UserRole).toInt() % 10 != digit_;
    }

private:
    int digit_ = -1;
};

/// The same with Qt's own.
class Peer {
public:
    static std::shared_ptr<Peer> show(std::int64_t count, bool filters = false) {
        return std::make_shared<Peer>(count, filters);
    }
    Peer(std::int64_t count, bool filters) : model_(count) {
        if (filters)
            filter_.setSourceModel(&model_);
        table_.setModel(filters ? static_cast<QAbstractItemModel*>(&filter_) : &model_);
        table_.setSelectionBehavior(QAbstractItemView::SelectRows);
        table_.setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
        table_.verticalHeader()->hide();
        window_.setCentralWidget(&table_);
        window_.resize(600, 400);
        window_.show();
        settle();
    }
    ~Peer() { table_.setParent(nullptr); }

    void select(const IndexSet& rows) {
        QItemSelection items;
        for (const std::int64_t row : rows)
            items.select(filter_.index(static_cast<int>(row), 0),
                         filter_.index(static_cast<int>(row), 1));
        table_.selectionModel()->select(items, QItemSelectionModel::ClearAndSelect);
        settle();
    }
    void filter(int digit) {
        filter_.set(digit);
        settle();
    }

private:
    BareModel model_;
    Filter filter_;
    QTableView table_;
    QMainWindow window_;
};

/// A table in a window from nothing.
template <class Shown>
void showRows(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(Shown::show(state.range(0)));
    settle();
}
BENCHMARK(showRows<Ours>)
    ->Name("showRows/ours")
    ->Arg(10)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(showRows<Peer>)
    ->Name("showRows/qt")
    ->Arg(10)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond);

template <class Shown>
void filterKeystroke(benchmark::State& state, const std::shared_ptr<Shown>& shown) {
    constexpr std::int64_t count = 100000, selected = 1000;
    shown->select(everyNth(count, count / selected));
    int digit = 1; // so that what is selected stays
    for (auto _ : state) {
        shown->filter(digit);
        digit = digit % 9 + 1;
    }
}
void filterOurs(benchmark::State& state) { filterKeystroke(state, Ours::show(100000)); }
void filterQt(benchmark::State& state) { filterKeystroke(state, Peer::show(100000, true)); }
BENCHMARK(filterOurs)->Name("filterKeystroke/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(filterQt)->Name("filterKeystroke/qt")->Unit(benchmark::kMillisecond)->Iterations(1);

/// A quarter of the rows, scattered, to the middle.
void moveScatteredRows(benchmark::State& state) {
    const std::int64_t count = state.range(0);
    const auto shown = Ours::show(count);
    const IndexSet rows = everyNth(count, 4);
    for (auto _ : state) {
        shown->table->moveRows(rows, count / 2);
        settle();
    }
}
BENCHMARK(moveScatteredRows)->Arg(40000)->Arg(80000)->Unit(benchmark::kMillisecond);

/// As many as there were, between them; and out again.
void insertScatteredRows(benchmark::State& state) {
    const std::int64_t count = state.range(0);
    const auto shown = Ours::show(count);
    const IndexSet rows = everyNth(2 * count, 2);
    for (auto _ : state) {
        shown->table->insertRows(rows, {});
        shown->table->removeRows(rows, {});
        settle();
    }
}
BENCHMARK(insertScatteredRows)->Arg(40000)->Arg(80000)->Unit(benchmark::kMillisecond);

} // namespace
