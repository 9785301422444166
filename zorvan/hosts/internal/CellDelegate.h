#pragma once

#include <QAbstractItemView>
#include <QStyledItemDelegate>

namespace zorvan::internal {

/// Leaves the text out where a view of its own stands in the cell. The view has all of the cell,
/// which looks selected as a whole.
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
        if (!view || !view->indexWidget(index))
            return;
        option->text.clear();
        option->showDecorationSelected = true; // or else the text alone would look selected
    }
};

} // namespace zorvan::internal
