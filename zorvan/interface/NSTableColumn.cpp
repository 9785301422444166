#include <zorvan/interface/NSTableColumn.h>

#include <zorvan/interface/NSTableView.h>

namespace zorvan {

std::shared_ptr<NSTableColumn> NSTableColumn::create(std::string title) {
    return std::make_shared<NSTableColumn>(Key{}, std::move(title));
}

void NSTableColumn::setTitle(std::string title) {
    title_ = std::move(title);
    didChange();
}

void NSTableColumn::setWidth(double width) {
    width_ = width > 0 ? width : 0;
    didChange();
}

void NSTableColumn::setSortable(bool sortable) {
    isSortable_ = sortable;
    didChange();
}

void NSTableColumn::didChange() const {
    if (const auto table = tableView_.lock())
        table->columnDidChange(*this);
}

} // namespace zorvan
