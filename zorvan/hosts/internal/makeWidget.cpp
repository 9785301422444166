#include <zorvan/hosts/internal/makeWidget.h>

#include <zorvan/hosts/internal/ButtonWidget.h>
#include <zorvan/hosts/internal/CollectionWidget.h>
#include <zorvan/hosts/internal/OutlineWidget.h>
#include <zorvan/hosts/internal/ScrollWidget.h>
#include <zorvan/hosts/internal/SearchFieldWidget.h>
#include <zorvan/hosts/internal/SplitWidget.h>
#include <zorvan/hosts/internal/TableWidget.h>
#include <zorvan/hosts/internal/ViewWidget.h>

namespace zorvan::internal {

namespace {

/// Unless there is one already, and if the view is of that class.
template <class Widget, class View>
void make(QWidget*& made, const std::shared_ptr<NSView>& view, QWidget* parent) {
    if (const auto shown = std::dynamic_pointer_cast<View>(view); shown && !made)
        made = new Widget(shown, parent);
}

} // namespace

QWidget* makeWidget(const std::shared_ptr<NSView>& view, QWidget* parent) {
    QWidget* made = makeItemWidget(view, parent);
    make<SearchFieldWidget, NSSearchField>(made, view, parent);
    make<ButtonWidget, NSButton>(made, view, parent);
    make<SplitWidget, NSSplitView>(made, view, parent);
    make<ScrollWidget, NSScrollView>(made, view, parent);
    make<ViewWidget, NSView>(made, view, parent);
    return made;
}

QWidget* makeItemWidget(const std::shared_ptr<NSView>& view, QWidget* parent) {
    QWidget* made = nullptr;
    make<OutlineWidget, NSOutlineView>(made, view, parent);
    make<TableWidget, NSTableView>(made, view, parent);
    make<CollectionWidget, NSCollectionView>(made, view, parent);
    return made;
}

} // namespace zorvan::internal
