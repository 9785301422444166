#pragma once

#include "HostTest.h"

#include <tests/collections/RandomEditions.h>

#include <QAbstractItemModelTester>
#include <QAbstractItemView>
#include <QScrollBar>

/// Whose view is shown by an item view of Qt.
class ItemViewTest : public HostTest {
protected:
    using Tester = QAbstractItemModelTester;

    /// The one that there is in the window.
    template <class ItemView = QAbstractItemView>
    ItemView& shown() const {
        return *top().findChild<ItemView*>();
    }
    QAbstractItemModel& model() const { return *shown().model(); }
    QModelIndex at(int row, int column = 0) const { return model().index(row, column); }
    std::string text(int row, int column = 0) const {
        return at(row, column).data().toString().toStdString();
    }
    QPoint middleOf(int row) const { return shown().visualRect(at(row)).center(); }
    void click(int row, Qt::KeyboardModifiers modifiers = {},
               Qt::MouseButton button = Qt::LeftButton) {
        QTest::mouseClick(shown().viewport(), button, modifiers, middleOf(row));
        settle();
    }
    IndexSet selectedInWidget() const {
        IndexSet rows;
        for (const QModelIndex& index : shown().selectionModel()->selectedIndexes())
            rows.insert(index.row());
        return rows;
    }
    /// What both the view and its widget have selected; nothing when they differ.
    virtual IndexSet selected() const = 0;

    using KeyStep = std::tuple<Qt::Key, Qt::KeyboardModifiers, IndexSet>;
    void expectSelections(const std::vector<KeyStep>& steps) {
        for (const auto& [key, modifiers, selection] : steps) {
            press(key, modifiers);
            EXPECT_EQ(selected(), selection) << key;
        }
    }

    /// Random editions of a list of numbers, shown by `edited`: indexes that are held stay with
    /// their numbers, and the widget ends up with what the list has.
    template <class Edited>
    void expectExactEditions(std::vector<int>& numbers, const Edited& edited) {
        const QAbstractItemModel& rows = model();
        const Tester tester(&model(), Tester::FailureReportingMode::Fatal);
        RandomEditions random(4);
        const auto list = SelectableArray<int>::create();
        list->setEditionHandler([&](const SelectableArray<int>::Action& action) {
            std::vector<std::pair<QPersistentModelIndex, int>> held;
            for (const int number : numbers)
                held.emplace_back(rows.index(static_cast<int>(held.size()), 0), number);
            const SelectableArrayEdition edition = action();
            numbers = list->elements();
            edited(edition);
            if (edition.as<SelectableArrayEdition::Replace>())
                return;
            for (const auto& [index, number] : held) {
                ASSERT_TRUE(index.isValid() || !edition.as<SelectableArrayEdition::Move>());
                ASSERT_TRUE(!index.isValid() ||
                            numbers[static_cast<std::size_t>(index.row())] == number);
            }
        });
        for (int step = 0; step < 400; ++step) {
            random.edit(*list);
            ASSERT_EQ(rows.rowCount(), list->count());
            for (int row = 0; row < rows.rowCount(); ++row)
                ASSERT_EQ(rows.index(row, 0).data().toString().toStdString(),
                          "item " + std::to_string(numbers[static_cast<std::size_t>(row)]));
            ASSERT_EQ(selected(), list->selection());
        }
    }
};
