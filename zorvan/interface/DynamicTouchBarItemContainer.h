#pragma once

#include <zorvan/colour/NSColor.h>
#include <zorvan/interface/DynamicTouchBarItem.h>
#include <zorvan/interface/NSButton.h>
#include <zorvan/platform/foundation/Required.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace zorvan {

/// What the builder of touch-bar buttons is told. Every field is absent at first.
struct DynamicTouchBarItemButtonSettings {
    /// In points.
    std::optional<double> minimumWidth;
    std::optional<std::string> title;
    /// Of a system symbol or else of a named image of the application.
    std::optional<std::string> imageName;
    /// The image's own size when absent; without image name neither this nor the position counts.
    std::optional<CGSize> imageSize;
    std::optional<NSCellImagePosition> imagePosition;
    std::optional<NSColor> tintColor;
    std::optional<NSColor> bezelColor;
    std::optional<Selector> action;
    std::weak_ptr<void> target;
};

/// Anything that touch-bar items can be added to, with the builders of such items.
///
/// Each builder but the first makes an item with a random identifier, adds it and returns its view.
/// Its `update` is called on every reload of the set, with the item and the view.
class DynamicTouchBarItemContainer {
public:
    virtual ~DynamicTouchBarItemContainer() = default;

    /// Appends the item, and returns it.
    virtual std::shared_ptr<DynamicTouchBarItem>
    addItem(const std::shared_ptr<DynamicTouchBarItem>& item) = 0;

    template <class View>
    using ViewUpdate = std::function<void(DynamicTouchBarItem&, View&)>;

    struct IdentifierOnly {
        Required<NSTouchBarItemIdentifier> identifier;
    };
    template <class View>
    struct ViewItem {
        Required<std::function<std::shared_ptr<View>()>> create;
        ViewUpdate<View> update = {};
    };
    struct Button {
        Required<std::function<void(DynamicTouchBarItemButtonSettings&)>> createButton;
        ViewUpdate<NSButton> update = {};
    };

    /// An item that the touch bar makes itself, a space for example.
    std::shared_ptr<DynamicTouchBarItem> addItem(const IdentifierOnly& settings);
    template <class View = NSView>
    std::shared_ptr<View> addItem(const ViewItem<View>& settings);
    std::shared_ptr<NSButton> addItem(const Button& settings);

private:
    void add(const std::shared_ptr<NSView>& view, DynamicTouchBarItem::Update update);
};

template <class View>
std::shared_ptr<View> DynamicTouchBarItemContainer::addItem(const ViewItem<View>& settings) {
    const std::shared_ptr<View> view = settings.create.value();
    DynamicTouchBarItem::Update update;
    if (view && settings.update)
        update = [view, update = settings.update](DynamicTouchBarItem& item) {
            update(item, *view);
        };
    add(view, std::move(update));
    return view;
}

} // namespace zorvan
