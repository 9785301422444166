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
    /// Empty when absent.
    std::optional<std::string> title;
    /// Of a system symbol or else of a named image of the application.
    std::optional<std::string> imageName;
    /// The image's own size when absent; without image name neither this nor the position counts.
    std::optional<CGSize> imageSize;
    /// Where the image stands beside the title; when absent to the left of it, or alone.
    std::optional<NSCellImagePosition> imagePosition;
    /// Of template images and of the title; that of labels when absent.
    std::optional<NSColor> tintColor;
    /// That of the system when absent.
    std::optional<NSColor> bezelColor;
    /// What a press sends; absent for nothing.
    std::optional<Selector> action;
    /// To whom; not kept alive.
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

    /// What is called on a reload, with the item and its view.
    template <class View>
    using ViewUpdate = std::function<void(DynamicTouchBarItem&, View&)>;

    /// An item that the touch bar makes itself.
    struct IdentifierOnly {
        /// Of the item.
        Required<NSTouchBarItemIdentifier> identifier;
    };
    /// An item that shows a view.
    template <class View>
    struct ViewItem {
        /// Gives the view, once. An item without one is made for null, and not updated.
        Required<std::function<std::shared_ptr<View>()>> create;
        /// Empty for nothing.
        ViewUpdate<View> update = {};
    };
    /// An item that shows a button.
    struct Button {
        /// Fills in what the button is.
        Required<std::function<void(DynamicTouchBarItemButtonSettings&)>> createButton;
        /// Empty for nothing.
        ViewUpdate<NSButton> update = {};
    };

    /// An item that the touch bar makes itself, a space for example.
    std::shared_ptr<DynamicTouchBarItem> addItem(const IdentifierOnly& settings);
    /// Any view: the one that was made.
    template <class View = NSView>
    std::shared_ptr<View> addItem(const ViewItem<View>& settings);
    /// The button that was made.
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
