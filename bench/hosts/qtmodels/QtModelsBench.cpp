// A filter typed over a list with a selection, in a table of Qt, beside Qt's own proxy model; and
// what a view asks a model, beside an adapter written by hand.

#include <zorvan/hosts/qtmodels/QtListModel.h>

#include <QApplication>
#include <QSortFilterProxyModel>
#include <QStringListModel>
#include <QTableView>
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

using namespace zorvan;

namespace {

constexpr int rowCount = 100'000;
constexpr int selectedCount = 1000;

std::vector<std::string> names() {
    std::vector<std::string> names;
    for (int i = 0; i < rowCount; ++i)
        names.push_back("item " + std::to_string(i));
    return names;
}
QString text(const std::string& name) {
    return QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
}

class Ours {
public:
    Ours() : list_(ManagedList<std::string>::create(names())), model_(list_, roles()) {}

    QAbstractItemModel& model() { return model_; }
    QItemSelectionModel& selection() { return *model_.selectionModel(); }
    void type(const std::string& letters) {
        list_->setFilter(
            [letters](const std::string& name) { return name.find(letters) != std::string::npos; });
    }
    void clear() { list_->setFilter({}); }

private:
    static QtListModel<std::string>::Roles roles() { return {{Qt::DisplayRole, text}}; }

    const std::shared_ptr<ManagedList<std::string>> list_;
    QtListModel<std::string> model_;
};

class QtProxy {
public:
    QtProxy() : list_(strings()) { proxy_.setSourceModel(&list_); }

    QAbstractItemModel& model() { return proxy_; }
    QItemSelectionModel& selection() { return selection_; }
    void type(const std::string& letters) { proxy_.setFilterFixedString(text(letters)); }
    void clear() { proxy_.setFilterFixedString({}); }

private:
    static QStringList strings() {
        QStringList strings;
        for (const std::string& name : names())
            strings << text(name);
        return strings;
    }

    QStringListModel list_;
    QSortFilterProxyModel proxy_;
    QItemSelectionModel selection_{&proxy_};
};

void settle() {
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
}

/// "1", "12", and nothing again, with what the view does about it.
template <class Side>
void keystrokes(benchmark::State& state) {
    Side side;
    QTableView view;
    view.setSelectionBehavior(QAbstractItemView::SelectRows);
    view.setModel(&side.model());
    view.setSelectionModel(&side.selection());
    view.resize(400, 600);
    view.show();
    for (auto _ : state) {
        state.PauseTiming();
        QItemSelection rows;
        for (int i = 0; i < selectedCount; ++i)
            rows.append(QItemSelectionRange(side.model().index(i * (rowCount / selectedCount), 0)));
        side.selection().select(rows, QItemSelectionModel::ClearAndSelect);
        settle();
        state.ResumeTiming();
        side.type("1");
        settle();
        side.type("12");
        settle();
        side.clear();
        settle();
    }
}

/// What one writes who has no bridge: the calls of a view are the same.
class ByHand : public QAbstractListModel {
public:
    explicit ByHand(std::shared_ptr<ManagedList<std::string>> list) : list_(std::move(list)) {}

    int rowCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : static_cast<int>(list_->count());
    }
    QVariant data(const QModelIndex& index, int role) const override {
        if (!index.isValid() || role != Qt::DisplayRole)
            return {};
        return text(list_->items()[static_cast<std::size_t>(index.row())]);
    }

private:
    const std::shared_ptr<ManagedList<std::string>> list_;
};

class Bridged : public QtListModel<std::string> {
public:
    explicit Bridged(const std::shared_ptr<ManagedList<std::string>>& list)
        : QtListModel(list, Roles{{Qt::DisplayRole, text}}) {}
};

/// What a view asks of a cell to draw it, for every row.
template <class Model>
void cells(benchmark::State& state) {
    const Model model(ManagedList<std::string>::create(names()));
    const QAbstractItemModel& asked = model;
    for (auto _ : state)
        for (int row = 0; row < asked.rowCount(); ++row) {
            const QModelIndex index = asked.index(row, 0);
            benchmark::DoNotOptimize(asked.flags(index));
            for (const int role :
                 {Qt::FontRole, Qt::TextAlignmentRole, Qt::ForegroundRole, Qt::CheckStateRole,
                  Qt::DecorationRole, Qt::DisplayRole, Qt::BackgroundRole})
                benchmark::DoNotOptimize(asked.data(index, role));
        }
}

BENCHMARK(keystrokes<Ours>)->Name("keystrokes, ours")->Unit(benchmark::kMillisecond);
BENCHMARK(keystrokes<QtProxy>)
    ->Name("keystrokes, QSortFilterProxyModel")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK(cells<Bridged>)->Name("cells, ours")->Unit(benchmark::kMillisecond);
BENCHMARK(cells<ByHand>)->Name("cells, by hand")->Unit(benchmark::kMillisecond);

} // namespace

int main(int count, char** arguments) {
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    const QApplication application(count, arguments);
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
}
