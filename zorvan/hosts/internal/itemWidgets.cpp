#include <zorvan/hosts/internal/itemWidgets.h>

#include <zorvan/hosts/internal/CollectionWidget.h>
#include <zorvan/hosts/internal/OutlineWidget.h>
#include <zorvan/hosts/internal/TableWidget.h>

namespace zorvan::internal {

QWidget* makeItemWidget(const std::shared_ptr<NSView>& view, QWidget* parent) {
    if (const auto outline = std::dynamic_pointer_cast<NSOutlineView>(view))
        return new OutlineWidget(outline, parent);
    if (const auto table = std::dynamic_pointer_cast<NSTableView>(view))
        return new TableWidget(table, parent);
    if (const auto collection = std::dynamic_pointer_cast<NSCollectionView>(view))
        return new CollectionWidget(collection, parent);
    return nullptr;
}

} // namespace zorvan::internal
