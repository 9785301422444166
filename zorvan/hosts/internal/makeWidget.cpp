#include <zorvan/hosts/internal/makeWidget.h>

#include <zorvan/hosts/internal/ButtonWidget.h>
#include <zorvan/hosts/internal/CollectionWidget.h>
#include <zorvan/hosts/internal/OutlineWidget.h>
#include <zorvan/hosts/internal/ScrollWidget.h>
#include <zorvan/hosts/internal/SearchFieldWidget.h>
#include <zorvan/hosts/internal/SplitWidget.h>
#include <zorvan/hosts/internal/TableWidget.h>
#include <zorvan/hosts/internal/ViewWidget.h>

#include <initializer_list>

namespace zorvan::internal {

namespace {

using Maker = QWidget* (*)(const std::shared_ptr<NSView>& view, QWidget* parent);

/// Null for a view of another class.
template <class Widget, class View>
QWidget* makeOf(const std::shared_ptr<NSView>& view, QWidget* parent) {
    const auto shown = std::dynamic_pointer_cast<View>(view);
    return shown ? new Widget(shown, parent) : nullptr;
}

QWidget* makeFirst(std::initializer_list<Maker> makers, const std::shared_ptr<NSView>& view,
                   QWidget* parent) {
    for (const Maker make : makers)
        if (QWidget* const made = make(view, parent))
            return made;
    return nullptr;
}

} // namespace

QWidget* makeWidget(const std::shared_ptr<NSView>& view, QWidget* parent) {
    return makeFirst({makeOf<SearchFieldWidget, NSSearchField>, makeOf<ButtonWidget, NSButton>,
                      makeOf<SplitWidget, NSSplitView>, makeOf<ScrollWidget, NSScrollView>,
                      makeItemWidget, makeOf<ViewWidget, NSView>},
                     view, parent);
}

QWidget* makeItemWidget(const std::shared_ptr<NSView>& view, QWidget* parent) {
    return makeFirst({makeOf<OutlineWidget, NSOutlineView>, makeOf<TableWidget, NSTableView>,
                      makeOf<CollectionWidget, NSCollectionView>},
                     view, parent);
}

} // namespace zorvan::internal
