#include <zorvan/interface/NSTableColumn.h>

#include <zorvan/interface/NSTableView.h>

namespace zorvan {

std::shared_ptr<NSTableColumn> NSTableColumn::create(std::string title) {
    return std::make_shared<NSTableColumn>(Key{}, std::move(title));
}

void NSTableColumn::didChange() const {
    if (const auto table = tableView_.lock())
        table->columnDidChange(*this);
}

} // namespace zorvan
