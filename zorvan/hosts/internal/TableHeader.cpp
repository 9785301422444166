#include <zorvan/hosts/internal/TableHeader.h>

#include <zorvan/hosts/internal/EventInProgress.h>
#include <zorvan/hosts/internal/viewGeometry.h>

#include <QHeaderView>
#include <QScopedValueRollback>
#include <algorithm>
#include <utility>

namespace zorvan::internal {

TableHeader::TableHeader(std::shared_ptr<NSTableView> table, QHeaderView& header)
    : table_(std::move(table)), header_(header) {
    header.setMinimumSectionSize(0);
    header.setHighlightSections(false);
    header.setStretchLastSection(false);
    header.setDefaultAlignment(Qt::AlignLeading | Qt::AlignVCenter);
    QObject::connect(&header, &QHeaderView::sectionResized, &header,
                     [this](int column, int, int width) noexcept {
                         const EventInProgress inProgress;
                         const auto keptAlive = table_;
                         const auto& columns = keptAlive->tableColumns();
                         if (!isFollowing_ && column < static_cast<int>(columns.size()))
                             columns[static_cast<std::size_t>(column)]->setWidth(width);
                     });
    QObject::connect(&header, &QHeaderView::sectionClicked, &header,
                     [this](int column) noexcept { click(column); });
}

void TableHeader::follow() {
    const QScopedValueRollback guard(isFollowing_, true);
    bool hasTitles = false;
    int section = 0;
    for (const auto& column : table_->tableColumns()) {
        header_.resizeSection(section++, wholeLength(column->width()));
        hasTitles |= !column->title().empty();
    }
    header_.setVisible(hasTitles);
    header_.headerDataChanged(Qt::Horizontal, 0, section - 1);
    followSortOrder();
}

void TableHeader::followSortOrder() {
    const auto& order = table_->sortOrder();
    const auto& columns = table_->tableColumns();
    header_.setSectionsClickable(std::any_of(
        columns.begin(), columns.end(), [](const auto& column) { return column->isSortable(); }));
    header_.setSortIndicatorShown(order.has_value());
    if (!order)
        return;
    const auto place = std::find(columns.begin(), columns.end(), order->column) - columns.begin();
    header_.setSortIndicator(static_cast<int>(place),
                             order->isAscending ? Qt::AscendingOrder : Qt::DescendingOrder);
}

void TableHeader::click(int column) {
    const EventInProgress inProgress;
    const auto keptAlive = table_;
    if (column >= keptAlive->numberOfColumns())
        return;
    const auto clicked = keptAlive->tableColumns()[static_cast<std::size_t>(column)];
    if (!clicked->isSortable())
        return;
    const auto before = keptAlive->sortOrder();
    const bool isAgain = before && before->column == clicked;
    keptAlive->setSortOrder({{.column = clicked, .isAscending = !isAgain || !before->isAscending}});
}

} // namespace zorvan::internal
