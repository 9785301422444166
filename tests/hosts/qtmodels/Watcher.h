#pragma once

#include "tests/Testing.h"

#include <zorvan/hosts/qtmodels/QtListModel.h>

#include <QAbstractItemModelTester>
#include <QItemSelectionModel>
#include <QSignalSpy>

using Tester = QAbstractItemModelTester;

inline IndexSet rowsOf(const QItemSelectionModel& model) {
    IndexSet rows;
    for (const QItemSelectionRange& range : model.selection())
        for (int row = range.top(); row <= range.bottom(); ++row)
            rows.insert(row);
    return rows;
}

/// Keeps by the signals alone what a model of numbers shows, as a view would, and fails when the
/// model says anything else at any moment at which it speaks.
class Watcher : public QObject {
public:
    /// Whether rows that are about to be removed have their data still.
    enum class Removed { stillThere, gone };

    Watcher(const QAbstractItemModel& model, Removed removed) : model_(model), removed_(removed) {
        using Model = QAbstractItemModel;
        readAll();
        connect(&model, &Model::rowsAboutToBeInserted, this, [this] { expectAll(); });
        connect(
            &model, &Model::rowsInserted, this, [this](const QModelIndex&, int first, int last) {
                ++insertions;
                rows_.insert(rows_.begin() + first, static_cast<std::size_t>(last - first + 1), {});
                read(first, last + 1);
                expectAll();
            });
        connect(&model, &Model::rowsAboutToBeRemoved, this, [this] { expectAll(); });
        connect(&model, &Model::rowsRemoved, this, [this](const QModelIndex&, int first, int last) {
            ++removals;
            rows_.erase(rows_.begin() + first, rows_.begin() + last + 1);
            expectAll();
        });
        connect(&model, &Model::layoutAboutToBeChanged, this, [this] { expectAll(); });
        connect(&model, &Model::layoutChanged, this, [this] { ++layouts, readAll(); });
        connect(&model, &Model::modelReset, this, [this] { ++resets, readAll(); });
        connect(&model, &Model::dataChanged, this,
                [this](const QModelIndex& first, const QModelIndex& last) {
                    read(first.row(), last.row() + 1);
                });
    }

    std::vector<int> shown() const {
        std::vector<int> numbers;
        for (const Row& row : rows_)
            numbers.push_back(row.number);
        return numbers;
    }
    IndexSet selectedRoles() const {
        IndexSet selected;
        for (std::size_t i = 0; i < rows_.size(); ++i)
            if (rows_[i].isSelected)
                selected.insert(static_cast<std::int64_t>(i));
        return selected;
    }

    int insertions = 0, removals = 0, layouts = 0, resets = 0;

private:
    struct Row {
        int number = 0;
        bool isSelected = false;
    };

    void readAll() {
        rows_.assign(static_cast<std::size_t>(model_.rowCount()), {});
        read(0, model_.rowCount());
    }
    void read(int first, int end) {
        for (int i = first; i < end; ++i) {
            const QModelIndex index = model_.index(i, 0);
            rows_[static_cast<std::size_t>(i)] = {index.data().toInt(),
                                                  index.data(QtRowModel::selectedRole).toBool()};
        }
    }
    void expectAll() const {
        ASSERT_EQ(model_.rowCount(), std::ssize(rows_));
        for (int i = 0; i < model_.rowCount(); ++i) {
            const QVariant data = model_.index(i, 0).data();
            if (data.isValid() || removed_ == Removed::stillThere) {
                ASSERT_EQ(data.toInt(), rows_[static_cast<std::size_t>(i)].number) << "row " << i;
            }
        }
    }

    const QAbstractItemModel& model_;
    const Removed removed_;
    std::vector<Row> rows_;
};
