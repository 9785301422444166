#include <zorvan/interface/DynamicToolbarItemContainer.h>

#include <zorvan/interface/NSTrackingSeparatorToolbarItem.h>
#include <zorvan/interface/internal/resolveImage.h>
#include <zorvan/platform/foundation/UUID.h>

#include <utility>

namespace zorvan {

namespace {

constexpr CGSize usualImageSize(19, 19);

NSToolbarItemIdentifier given(const std::optional<NSToolbarItemIdentifier>& identifier) {
    return identifier ? *identifier : makeUUIDString();
}

std::shared_ptr<NSImage> image(const std::optional<std::string>& name,
                               const std::optional<CGSize>& size) {
    return name ? resolveImage(*name, size.value_or(usualImageSize)) : nullptr;
}

void name(NSToolbarItem& item, const std::optional<bool>& isNavigational,
          const std::optional<std::string>& displayName) {
    item.setNavigational(isNavigational.value_or(false));
    item.setLabel(displayName.value_or(""));
    item.setToolTip(displayName.value_or(""));
}

template <class Settings, class Fill>
Settings filled(const Fill& fill) {
    Settings settings;
    fill(settings);
    return settings;
}

/// `Group` tells what the subitems show.
template <class Group, class Shown>
std::shared_ptr<NSToolbarItemGroup> makeGroup(const ButtonGroupSettings& settings, Shown shown,
                                              std::vector<std::string> labels) {
    constexpr auto usualMode = NSToolbarItemGroup::SelectionMode::selectOne;
    return NSToolbarItemGroup::create(Group{given(settings.identifier), std::move(shown),
                                            settings.selectionMode.value_or(usualMode),
                                            std::move(labels), settings.target, settings.action});
}

} // namespace

std::shared_ptr<DynamicToolbarItem>
DynamicToolbarItemContainer::addItem(const IdentifierOnly& settings) {
    return addItem(DynamicToolbarItem::create(settings.identifier));
}

std::shared_ptr<NSToolbarItem>
DynamicToolbarItemContainer::makePlainItem(const std::optional<NSToolbarItemIdentifier>& identifier,
                                           const std::optional<bool>& isNavigational,
                                           const std::optional<std::string>& displayName,
                                           const std::shared_ptr<NSView>& view) {
    auto item = NSToolbarItem::create(given(identifier));
    name(*item, isNavigational, displayName);
    item->setView(view);
    return item;
}

std::shared_ptr<NSButton> DynamicToolbarItemContainer::addItem(const ImageButton& builder) {
    const auto settings = filled<ImageButtonSettings>(builder.createImageButton.value);
    return addItem<NSButton>(
        {.identifier = settings.identifier,
         .isNavigational = settings.isNavigational,
         .displayName = settings.displayName,
         .createView =
             [&settings] {
                 auto button = NSButton::create(
                     {.title = "", .target = settings.target, .action = settings.action});
                 button->setBezelStyle(NSBezelStyle::texturedRounded);
                 button->setImage(image(settings.imageName, settings.imageSize));
                 return button;
             },
         .update = builder.update});
}

std::shared_ptr<NSSearchField> DynamicToolbarItemContainer::addItem(const SearchField& builder) {
    const auto settings = filled<SearchFieldSettings>(builder.createSearchField.value);
    const auto item = NSSearchToolbarItem::create(given(settings.identifier));
    item->setSearchField(settings.searchField);
    const auto field = item->searchField();
    field->setPlaceholderString(settings.placeholderString);
    field->setTarget(settings.target);
    field->setAction(settings.action);
    add(item, field, builder.update);
    return field;
}

std::shared_ptr<NSSplitView> DynamicToolbarItemContainer::addItem(const SplitView& builder) {
    const auto settings = filled<SplitViewSettings>(builder.createSplitView.value);
    const auto splitView = settings.splitView ? settings.splitView : NSSplitView::create();
    add<NSSplitView>(NSTrackingSeparatorToolbarItem::create(given(settings.identifier), splitView,
                                                            settings.index.value_or(0)),
                     splitView, nullptr);
    return splitView;
}

std::shared_ptr<NSToolbarItemGroup>
DynamicToolbarItemContainer::addItem(const ImageGroup& builder) {
    const auto settings = filled<ButtonGroupSettings>(builder.createImageGroup.value);
    const std::vector<std::string> names = settings.imageNames.value_or(std::vector<std::string>());
    const std::vector<std::string> titles = settings.titles.value_or(std::vector<std::string>());
    std::vector<std::shared_ptr<NSImage>> images;
    std::vector<std::string> labels;
    for (std::size_t i = 0; i < names.size(); ++i) {
        auto found = image(names[i], settings.imageSize);
        if (!found)
            continue;
        images.push_back(std::move(found));
        // Under an image stays the label that was meant for it.
        if (i < titles.size())
            labels.push_back(titles[i]);
    }
    return addGroup(makeGroup<NSToolbarItemGroup::Images>(settings, std::move(images), labels),
                    settings, builder.update);
}

std::shared_ptr<NSToolbarItemGroup>
DynamicToolbarItemContainer::addItem(const TitleGroup& builder) {
    const auto settings = filled<ButtonGroupSettings>(builder.createTitleGroup.value);
    const std::vector<std::string> titles = settings.titles.value_or(std::vector<std::string>());
    const auto group = addGroup(makeGroup<NSToolbarItemGroup::Titles>(settings, titles, titles),
                                settings, builder.update);
    // After the subitems, which forget the selection.
    if (settings.selectedIndex)
        group->setSelectedIndex(*settings.selectedIndex);
    return group;
}

std::shared_ptr<NSToolbarItemGroup>
DynamicToolbarItemContainer::addGroup(const std::shared_ptr<NSToolbarItemGroup>& group,
                                      const ButtonGroupSettings& settings,
                                      const ControlUpdate<NSToolbarItemGroup>& update) {
    name(*group, settings.isNavigational, settings.displayName);
    if (settings.subitems)
        group->setSubitems(*settings.subitems);
    if (settings.controlRepresentation)
        group->setControlRepresentation(*settings.controlRepresentation);
    add(group, group, update);
    return group;
}

std::shared_ptr<NSMenuToolbarItem> DynamicToolbarItemContainer::addItem(const MenuButton& builder) {
    const auto settings = filled<MenuButtonSettings>(builder.createMenuButton.value);
    const auto item = NSMenuToolbarItem::create(given(settings.identifier));
    item->setShowsIndicator(settings.showsIndicator.value_or(true));
    name(*item, settings.isNavigational, settings.displayName);
    item->setImage(image(settings.imageName, settings.imageSize));
    item->setMenu(settings.menu);
    add(item, item, builder.update);
    return item;
}

} // namespace zorvan
