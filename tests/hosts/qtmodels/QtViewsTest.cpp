// Qt's own views over a list, without a screen.

#include "tests/Testing.h"

#include <zorvan/hosts/qtmodels/QtListModel.h>
#include <zorvan/hosts/qtmodels/QtMainQueue.h>
#include <zorvan/platform/dispatch/DispatchQueue.h>

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QHeaderView>
#include <QListView>
#include <QSortFilterProxyModel>
#include <QTableView>
#include <QTest>
#include <QTreeView>

namespace {

class QtViews : public testing::Test {
protected:
    static void SetUpTestSuite() {
        ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
        static int count = 1;
        static char name[] = "test";
        static char* arguments[] = {name, nullptr};
        application = new QApplication(count, arguments);
    }
    static void TearDownTestSuite() { delete application; }

    QtViews() {
        std::vector<int> numbers(200);
        std::iota(numbers.begin(), numbers.end(), 0);
        list->append(numbers);
        for (QAbstractItemView* view : views) {
            view->setModel(&model);
            view->setSelectionModel(model.selectionModel());
            view->setSelectionBehavior(QAbstractItemView::SelectRows);
            view->setSelectionMode(QAbstractItemView::ExtendedSelection);
            view->resize(300, 400);
            view->show();
        }
    }
    /// The numbers that a view shows one below the other, from the top.
    static std::vector<int> laidOut(const QAbstractItemView& view, std::size_t most) {
        for (int i = 0; i < 5; ++i)
            QCoreApplication::processEvents();
        std::vector<int> numbers;
        for (int y = 0; y < view.viewport()->height() && numbers.size() < most; ++y) {
            const QModelIndex index = view.indexAt(QPoint(5, y));
            if (index.isValid() && (numbers.empty() || numbers.back() != index.data().toInt()))
                numbers.push_back(index.data().toInt());
        }
        return numbers;
    }

    inline static QApplication* application = nullptr;
    std::shared_ptr<ManagedList<int>> list = ManagedList<int>::create();
    QtListModel<int> model{list,
                           QtListModel<int>::Roles{{Qt::DisplayRole, [](int i) { return i; }}}};
    QListView listView;
    QTableView tableView;
    QTreeView treeView;
    const std::array<QAbstractItemView*, 3> views{&listView, &tableView, &treeView};
};

TEST_F(QtViews, ShowAndSelectWhatTheListDoes) {
    for (QAbstractItemView* view : views) {
        list->sort(std::less<>());
        list->setSelection({3, 50, 199});
        list->setFilter([](int i) { return i % 50 == 0; });
        EXPECT_THAT(laidOut(*view, 200), ElementsAre(0, 50, 100, 150));
        EXPECT_THAT(view->selectionModel()->selectedRows(), ElementsAre(model.index(1, 0)));
        EXPECT_EQ(tableView.verticalHeader()->count(), 4);
        list->setFilter({});
        EXPECT_THAT(laidOut(*view, 3), ElementsAre(0, 1, 2));
        EXPECT_EQ(tableView.verticalHeader()->count(), 200);
        EXPECT_EQ(list->selection(), IndexSet({50}));
        const auto click = [view, this](int row, Qt::KeyboardModifiers keys) {
            QTest::mouseClick(view->viewport(), Qt::LeftButton, keys,
                              view->visualRect(model.index(row, 0)).center());
        };
        click(1, {});
        click(4, Qt::ShiftModifier);
        click(2, Qt::ControlModifier);
        click(3, Qt::ControlModifier);
        EXPECT_EQ(list->selection(), IndexSet({1, 4}));
        const std::unique_ptr<QMimeData> rows(
            model.mimeData(view->selectionModel()->selectedRows()));
        EXPECT_TRUE(model.canDropMimeData(rows.get(), Qt::MoveAction, 8, 0, {}));
        model.dropMimeData(rows.get(), Qt::MoveAction, 8, 0, {});
        EXPECT_THAT(laidOut(*view, 8), ElementsAre(0, 2, 3, 5, 6, 7, 1, 4));
        EXPECT_EQ(list->selection(), IndexSet({6, 7}));
    }
}

TEST_F(QtViews, StandBehindOtherModelsOfQt) {
    QSortFilterProxyModel proxy;
    proxy.setSourceModel(&model);
    const QAbstractItemModelTester tester(&proxy,
                                          QAbstractItemModelTester::FailureReportingMode::Fatal);
    list->setFilter([](int i) { return i % 7 == 3; });
    list->reverseOrder();
    list->remove({0, 2, 3});
    list->setFilter({});
    list->insert({-1}, 100);
    ASSERT_EQ(proxy.rowCount(), list->count());
    for (int i = 0; i < proxy.rowCount(); ++i)
        ASSERT_EQ(proxy.index(i, 0).data().toInt(), list->items()[static_cast<std::size_t>(i)]);
}

TEST_F(QtViews, TheMainQueueRunsOnTheLoopOfQt) {
    QtMainQueue::attach();
    QtMainQueue::attach();
    bool hasRun = false;
    DispatchQueue::main()->async([&] { hasRun = true; });
    EXPECT_TRUE(QTest::qWaitFor([&] { return hasRun; }, 10000));
}

} // namespace
