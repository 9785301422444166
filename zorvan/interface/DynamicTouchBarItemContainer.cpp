#include <zorvan/interface/DynamicTouchBarItemContainer.h>

#include <zorvan/interface/internal/resolveImage.h>
#include <zorvan/platform/foundation/UUID.h>

namespace zorvan {

namespace {

std::shared_ptr<NSButton> makeButton(const DynamicTouchBarItemButtonSettings& settings) {
    const auto button = NSButton::create({.title = settings.title.value_or(""),
                                          .target = settings.target,
                                          .action = settings.action});
    button->setContentTintColor(settings.tintColor);
    button->setBezelColor(settings.bezelColor);
    if (settings.imageName) {
        button->setImage(resolveImage(*settings.imageName, settings.imageSize));
        if (settings.imagePosition)
            button->setImagePosition(*settings.imagePosition);
    }
    if (settings.minimumWidth)
        button->widthAnchor()
            .constraintGreaterThanOrEqualToConstant(*settings.minimumWidth)
            ->setActive(true);
    return button;
}

} // namespace

std::shared_ptr<DynamicTouchBarItem>
DynamicTouchBarItemContainer::addItem(const IdentifierOnly& settings) {
    return addItem(DynamicTouchBarItem::create(settings.identifier));
}

std::shared_ptr<NSButton> DynamicTouchBarItemContainer::addItem(const Button& builder) {
    DynamicTouchBarItemButtonSettings settings;
    builder.createButton.value(settings);
    return addItem<NSButton>(
        {.create = [&settings] { return makeButton(settings); }, .update = builder.update});
}

void DynamicTouchBarItemContainer::add(const std::shared_ptr<NSView>& view,
                                       DynamicTouchBarItem::Update update) {
    const auto item = DynamicTouchBarItem::create(makeUUIDString());
    const auto shown = NSCustomTouchBarItem::create(item->identifier());
    shown->setView(view);
    item->setItem(shown);
    item->setUpdate(std::move(update));
    addItem(item);
}

} // namespace zorvan
