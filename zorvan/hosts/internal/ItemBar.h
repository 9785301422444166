#pragma once

#include <zorvan/hosts/internal/barItems.h>

#include <QToolBar>

namespace zorvan::internal {

/// A row of items over the width of a window. Those that find no room stand in the menu of a button
/// at the end.
class ItemBar : public QToolBar {
public:
    enum class Kind { toolbar, touchBar };
    ItemBar(Kind kind, QWidget* parent);

    /// Keeps the widgets of items that were shown before.
    void show(BarItems items);
    using QToolBar::show;
    /// What stands above a divider may have moved.
    void placeItems();
    /// What Tab goes to, in order.
    std::vector<QWidget*> keyWidgets() const;
    /// Gives the keyboard to the first item that takes it; false when there is none.
    bool focusFirst();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    class Row;
    Row* row_;
    const Kind kind_;
};

} // namespace zorvan::internal
