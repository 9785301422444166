#pragma once

#include <QAbstractItemView>
#include <QStyledItemDelegate>

namespace zorvan::internal {

/// Leaves the text out where a view of its own stands in the cell, and gives that all of the cell.
class CellDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void updateEditorGeometry(QWidget* view, const QStyleOptionViewItem& option,
                              const QModelIndex&) const override {
        view->setGeometry(option.rect);
    }

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        const auto* const view = qobject_cast<const QAbstractItemView*>(option->widget);
        if (view && view->indexWidget(index))
            option->text.clear();
    }
};

} // namespace zorvan::internal
