#include <zorvan/hosts/internal/makeWidget.h>

#include <zorvan/hosts/internal/ButtonWidget.h>
#include <zorvan/hosts/internal/ScrollWidget.h>
#include <zorvan/hosts/internal/SearchFieldWidget.h>
#include <zorvan/hosts/internal/SplitWidget.h>
#include <zorvan/hosts/internal/ViewWidget.h>
#include <zorvan/hosts/internal/itemWidgets.h>

namespace zorvan::internal {

QWidget* makeWidget(const std::shared_ptr<NSView>& view, QWidget* parent) {
    if (const auto field = std::dynamic_pointer_cast<NSSearchField>(view))
        return new SearchFieldWidget(field, parent);
    if (const auto button = std::dynamic_pointer_cast<NSButton>(view))
        return new ButtonWidget(button, parent);
    if (const auto split = std::dynamic_pointer_cast<NSSplitView>(view))
        return new SplitWidget(split, parent);
    if (const auto scrollView = std::dynamic_pointer_cast<NSScrollView>(view))
        return makeScrollWidget(scrollView, parent);
    if (QWidget* const items = makeItemWidget(view, parent))
        return items;
    return new ViewWidget(view, parent);
}

} // namespace zorvan::internal
