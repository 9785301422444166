#include "ShelfWindow.h"

#include "desktop.h"
#include "displayText.h"
#include "observe.h"

#include <zorvan/files/NSPasteboard.h>
#include <zorvan/observation/DispatchQueue.h>

#include <algorithm>
#include <filesystem>
#include <utility>

using namespace zorvan;

namespace {

constexpr double leastSidebar = 110, leastStage = 240;

std::string titleOf(const std::vector<std::string>& paths) {
    const auto whole = std::filesystem::absolute(paths.front()).lexically_normal();
    const auto name = whole.has_filename() ? whole.filename() : whole.parent_path().filename();
    const std::string title = forDisplay(name.empty() ? "/" : name.string());
    return paths.size() == 1 ? title : title + " and " + std::to_string(paths.size() - 1) + " more";
}

std::string counted(std::size_t count) {
    return std::to_string(count) + (count == 1 ? " picture" : " pictures");
}

} // namespace

ShelfWindow::ShelfWindow(Options options)
    : options_(std::move(options)), window_(NSWindow::create({960, 620}, titleOf(options_.paths))) {
}

std::shared_ptr<ShelfWindow> ShelfWindow::create(Options options) {
    const std::shared_ptr<ShelfWindow> made(new ShelfWindow(std::move(options)));
    made->start();
    return made;
}

void ShelfWindow::start() {
    makeViews();
    makeMenu();
    makeToolbar();
    window_->setFrameAutosaveName("Shelf");
    window_->setContentMinSize({420, 240});
    const auto self = weak_from_this();
    observe(NSWindow::willCloseNotification, window_, shared_from_this(),
            [](const auto& shelf, const Notification&) {
                shelf->saveSidebar();
                shelf->cancelExport();
            });
    observation_ = settings_->follow([self](const std::vector<std::string>&) {
        if (const auto shelf = self.lock())
            shelf->followSettings();
    });
    followSettings();
    reload();
}

void ShelfWindow::makeViews() {
    const auto self = weak_from_this();
    const auto act = [self](auto member) {
        return [self, member](auto... arguments) {
            if (const auto shelf = self.lock())
                ((*shelf).*member)(arguments...);
        };
    };
    constexpr std::int64_t megabyte = 1 << 20, most = 1 << 20;
    const std::int64_t megabytes = settings_->value(ShelfSettings::cacheMegabytes);
    thumbnails_ = Thumbnails::create(std::clamp<std::int64_t>(megabytes, 1, most) * megabyte);
    album_ = Album::create(act(&ShelfWindow::followAlbum));
    views_ = PictureViews::create(
        album_, thumbnails_,
        {.open = act(&ShelfWindow::open), .order = act(&ShelfWindow::setOrder)});
    large_ =
        LargePicture::create({.step = act(&ShelfWindow::step), .close = act(&ShelfWindow::close)});
    sidebar_ = Sidebar::create([album = std::weak_ptr(album_)](Album::Filter filter) {
        if (const auto shown = album.lock())
            shown->setFilter(std::move(filter));
    });
    statusBar_ = StatusBar::create(act(&ShelfWindow::cancelExport));
    stage_ = Stage::create(statusBar_);
    split_->addSubview(sidebar_->scrollView());
    split_->addSubview(stage_);
    split_->setMinimumLength(leastSidebar, 0);
    split_->setCollapsible(true, 0);
    split_->setMinimumLength(leastStage, 1);
    window_->setContentView(split_);
}

// The menu, which is the one of the toolbar as well as that of the pictures

void ShelfWindow::addToMenu(const char* title, void (ShelfWindow::*act)(), const char* key,
                            bool isForSelection) {
    const auto item = NSMenuItem::create(title, Selector(title, act), shared_from_this());
    item->setKeyEquivalent(key);
    if (std::string_view(key) == "\x7f")
        item->setKeyEquivalentModifierMask({});
    if (isForSelection)
        itemsForSelection_.push_back(item);
    menu_->addItem(item);
}

void ShelfWindow::makeMenu() {
    addToMenu("Open", &ShelfWindow::open, "o", true);
    addToMenu("Copy", &ShelfWindow::copy, "c", true);
    addToMenu("Export…", &ShelfWindow::chooseExportFolder, "e", true);
    addToMenu("Move to Trash", &ShelfWindow::moveToTrash, "\x7f", true);
    menu_->addItem(NSMenuItem::separatorItem());
    addToMenu("Grid", &ShelfWindow::showGrid, "1");
    addToMenu("Table", &ShelfWindow::showTable, "2");
    addToMenu("Larger", &ShelfWindow::zoomIn, "+");
    addToMenu("Smaller", &ShelfWindow::zoomOut, "-");
    addToMenu("Sidebar", &ShelfWindow::toggleSidebar, "b");
    menu_->addItem(NSMenuItem::separatorItem());
    addToMenu("Find", &ShelfWindow::find, "f");
    addToMenu("Reload", &ShelfWindow::reload, "r");
    views_->setMenu(menu_);
    large_->setMenu(menu_);
}

// The toolbar, which has a set for nothing selected, one for a picture and one for several

void ShelfWindow::makeToolbar() {
    const auto self = shared_from_this();
    const auto items = DynamicToolbarItemSet::create(); // all there are, for the sets to share
    const auto addButton = [&](const char* name, const char* image, void (ShelfWindow::*act)()) {
        items->addItem({.createImageButton = [&](ImageButtonSettings& settings) {
            settings.displayName = name;
            settings.imageName = image;
            settings.action = Selector(name, act);
            settings.target = self;
        }});
        return items->items().back();
    };
    const auto sidebar = addButton("Sidebar", "sidebar.left", &ShelfWindow::toggleSidebar);
    items->addItem(
        {.createSplitView = [&](SplitViewSettings& settings) { settings.splitView = split_; }});
    const auto separator = items->items().back();
    viewGroup_ = items->addItem({.createImageGroup = [&](ButtonGroupSettings& settings) {
        settings.displayName = "View";
        settings.imageNames = {"square.grid.2x2", "list.bullet"};
        settings.titles = {"Grid", "Table"};
        settings.action = Selector("view", &ShelfWindow::chooseView);
        settings.target = self;
    }});
    const auto view = items->items().back();
    orderGroup_ = items->addItem({.createTitleGroup = [&](ButtonGroupSettings& settings) {
        settings.displayName = "Order";
        settings.titles = {"Name", "Date"};
        settings.action = Selector("order", &ShelfWindow::chooseOrder);
        settings.target = self;
    }});
    const auto order = items->items().back();
    const auto back = addButton("Back", "chevron.left", &ShelfWindow::close);
    const auto open = addButton("Open", "eye", &ShelfWindow::open);
    const auto copies =
        addButton("Export", "square.and.arrow.up", &ShelfWindow::chooseExportFolder);
    const auto trash = addButton("Move to Trash", "trash", &ShelfWindow::moveToTrash);
    const auto space = DynamicToolbarItem::create(NSToolbarFlexibleSpaceItemIdentifier);
    items->addItem({.createMenuButton = [&](MenuButtonSettings& settings) {
        settings.displayName = "More";
        settings.imageName = "ellipsis";
        settings.menu = menu_;
    }});
    const auto more = items->items().back();
    searchField_ = items->addItem({.createSearchField = [&](SearchFieldSettings& settings) {
        settings.placeholderString = "Search";
        settings.action = Selector("search", &ShelfWindow::search);
        settings.target = self;
    }});
    const auto search = items->items().back();

    const auto selectionCount = [album = album_] { return album->pictures()->selection().count(); };
    toolbar_->addItemSet([large = large_] { return large->file() != nullptr; })
        ->setItems({sidebar, separator, back, space, copies, trash, more, search});
    toolbar_->addItemSet([=] { return selectionCount() == 1; })
        ->setItems({sidebar, separator, view, order, space, open, copies, trash, more, search});
    toolbar_->addItemSet([=] { return selectionCount() > 1; })
        ->setItems({sidebar, separator, view, order, space, copies, trash, more, search});
    toolbar_->addItemSet()->setItems({sidebar, separator, view, order, space, more, search});
    toolbar_->reloadDisplayedItems();
    window_->setToolbar(toolbar_->toolbar());
}

void ShelfWindow::chooseView(NSToolbarItemGroup& group) {
    setView(group.selectedIndex() == 1 ? ViewKind::table : ViewKind::grid);
}

void ShelfWindow::chooseOrder(NSToolbarItemGroup& group) {
    const auto chosen = group.selectedIndex() == 1 ? PictureOrder::date : PictureOrder::name;
    setOrder(chosen, true);
}

void ShelfWindow::search(NSSearchField& field) { album_->setSearch(field.stringValue()); }

void ShelfWindow::find() { window_->makeFirstResponder(searchField_); }

// The settings: what a person changes is stored, and shown because it is stored

void ShelfWindow::setView(ViewKind kind) {
    (*settings_)[ShelfSettings::view] = kind;
    isLarge() ? close() : followSettings();
}

void ShelfWindow::setOrder(PictureOrder order, bool isAscending) {
    (*settings_)[ShelfSettings::order] = order;
    (*settings_)[ShelfSettings::isAscending] = isAscending;
    followSettings();
}

void ShelfWindow::zoom(double by) {
    (*settings_)[ShelfSettings::thumbnailSize] = std::clamp(thumbnailSize_ * by, 64.0, 320.0);
    followSettings();
}

void ShelfWindow::toggleSidebar() {
    saveSidebar();
    const bool shows = split_->position(0) == 0;
    showsSidebar_ = !shows; // whatever it was before it was dragged
    (*settings_)[ShelfSettings::showsSidebar] = shows;
    followSettings();
}

void ShelfWindow::saveSidebar() {
    const double width = split_->position(0).value_or(0);
    (*settings_)[ShelfSettings::showsSidebar] = width > 0;
    if (width > 0)
        (*settings_)[ShelfSettings::sidebarWidth] = width;
}

void ShelfWindow::showSidebar(bool shows) {
    if (shows == std::exchange(showsSidebar_, shows))
        return;
    const double width = settings_->value(ShelfSettings::sidebarWidth);
    split_->setPosition(!shows ? 0 : width > leastSidebar ? width : leastSidebar, 0);
}

void ShelfWindow::followSettings() {
    const auto order = settings_->value(ShelfSettings::order);
    const bool isAscending = settings_->value(ShelfSettings::isAscending);
    album_->setOrder(order, isAscending);
    views_->showOrder(order, isAscending);
    orderGroup_->setSelectedIndex(order == PictureOrder::date ? 1 : 0);
    const double size = settings_->value(ShelfSettings::thumbnailSize);
    const double held = size >= 64 && size <= 320 ? size : 128;
    if (held != std::exchange(thumbnailSize_, held))
        views_->setThumbnailSize(held);
    showSidebar(settings_->value(ShelfSettings::showsSidebar));
    const auto kind = settings_->value(ShelfSettings::view);
    viewGroup_->setSelectedIndex(kind == ViewKind::table ? 1 : 0);
    if (!isLarge())
        showView(kind);
}

void ShelfWindow::showView(ViewKind kind) {
    if (stage_->shown() == views_->scrollView(kind))
        return;
    // Unless the person is somewhere else, in the search field or in the sidebar.
    const auto keyboard = window_->firstResponder();
    const bool takesKeyboard = !keyboard || keyboard == large_ ||
                               keyboard == views_->view(ViewKind::grid) ||
                               keyboard == views_->view(ViewKind::table);
    stage_->show(views_->scrollView(kind));
    views_->scrollToSelection();
    if (takesKeyboard)
        window_->makeFirstResponder(views_->view(kind));
}

// The pictures

void ShelfWindow::reload() {
    album_->beginWalk();
    walk_ = std::make_unique<Walk>(
        options_, [self = weak_from_this()](const Walk::Batch& found, bool isLast) {
            const auto shelf = self.lock();
            if (!shelf)
                return;
            shelf->album_->add(found);
            if (isLast) {
                shelf->walk_ = nullptr;
                shelf->album_->endWalk();
            }
            shelf->sidebar_->show(shelf->album_->pictures()->allItems());
            shelf->followAlbum();
        });
    followAlbum();
}

void ShelfWindow::followAlbum() {
    const auto& pictures = *album_->pictures();
    for (const auto& item : itemsForSelection_)
        item->setEnabled(!pictures.selection().isEmpty());
    if (!export_)
        statusBar_->setText(status());
    if (isLarge() && pictures.selection().isEmpty())
        close();
    else if (isLarge())
        large_->show(*pictures.firstSelectedItem(), *thumbnails_);
    toolbar_->reloadDisplayedItems();
}

std::string ShelfWindow::status() const {
    const auto& pictures = *album_->pictures();
    const auto shown = static_cast<std::size_t>(pictures.count());
    std::string text = counted(shown);
    if (shown != pictures.allItems().size())
        text += " of " + std::to_string(pictures.allItems().size());
    if (const std::int64_t selected = pictures.selection().count(); selected > 0)
        text += ", " + std::to_string(selected) + " selected";
    return isWalking() ? text + ", looking for more…" : text;
}

void ShelfWindow::open() {
    if (album_->pictures()->selection().isEmpty())
        return;
    album_->pictures()->setSelection({*album_->pictures()->selection().first()});
    large_->show(*album_->pictures()->firstSelectedItem(), *thumbnails_);
    stage_->show(large_);
    window_->makeFirstResponder(large_);
    toolbar_->reloadDisplayedItems();
}

void ShelfWindow::close() {
    large_->show(nullptr, *thumbnails_);
    followSettings();
    toolbar_->reloadDisplayedItems();
}

void ShelfWindow::step(std::int64_t by) {
    auto& pictures = *album_->pictures();
    const std::int64_t next = pictures.selection().first().value_or(0) + by;
    if (next >= 0 && next < pictures.count())
        pictures.setSelection({next});
}

void ShelfWindow::copy() {
    std::vector<NSPasteboard::Object> urls;
    for (const auto& file : album_->selected())
        urls.emplace_back(file->url);
    NSPasteboard::generalPasteboard()->clearContents();
    NSPasteboard::generalPasteboard()->writeObjects(std::move(urls));
}

void ShelfWindow::moveToTrash() {
    const auto files = album_->selected();
    if (files.empty())
        return;
    const std::string what =
        files.size() == 1 ? "“" + files.front()->title + "”" : counted(files.size());
    const auto trash = [self = weak_from_this(), files] {
        DispatchQueue::global()->async([self, files] {
            Album::Files trashed;
            for (const auto& file : files)
                if (desktop::moveToTrash(file->url.path()))
                    trashed.insert(file);
            DispatchQueue::main()->async([self, trashed, left = files.size() - trashed.size()] {
                if (const auto shelf = self.lock())
                    shelf->forget(trashed);
                if (left > 0)
                    desktop::complain(counted(left) + " could not be moved to the trash.");
            });
        });
    };
    desktop::ask("Move " + what + " to the trash?",
                 files.size() == 1 ? "You can take it back from there."
                                   : "You can take them back from there.",
                 "Move to Trash", trash);
}

void ShelfWindow::forget(const Album::Files& trashed) {
    const auto& items = album_->pictures()->items();
    const auto shown = std::find(items.begin(), items.end(), large_->file());
    if (isLarge() && shown != items.end() && trashed.contains(*shown)) {
        // The one after it is shown then, or at the end the one before.
        step(shown + 1 == items.end() ? -1 : 1);
    }
    album_->remove(trashed);
    sidebar_->show(album_->pictures()->allItems());
}

// Export

void ShelfWindow::chooseExportFolder() {
    if (export_)
        return;
    desktop::chooseFolder("Export smaller copies into",
                          [self = weak_from_this()](const auto& path) {
                              if (const auto shelf = self.lock())
                                  shelf->exportTo(path);
                          });
}

void ShelfWindow::exportTo(const std::string& folder) {
    const auto files = album_->selected();
    if (export_ || files.empty())
        return;
    const Export::Settings settings{
        .folder = folder,
        .size = std::clamp<std::int64_t>(settings_->value(ShelfSettings::exportSize), 1, 65535),
        .format = settings_->value(ShelfSettings::exportFormat)};
    export_ = Export::start(files, settings, [self = weak_from_this()](const Export&) {
        if (const auto shelf = self.lock())
            shelf->followExport();
    });
    followExport();
}

void ShelfWindow::cancelExport() {
    if (export_)
        export_->cancel();
}

void ShelfWindow::followExport() {
    const Export& now = *export_;
    statusBar_->setProgress(static_cast<double>(now.done()) / static_cast<double>(now.total()));
    statusBar_->setText("Exporting " + std::to_string(now.done()) + " of " + counted(now.total()));
    if (!now.isOver())
        return;
    const auto over = std::exchange(export_, nullptr);
    statusBar_->setProgress({});
    statusBar_->setText(counted(over->written()) + " exported" +
                        (over->isCancelled() ? ", then cancelled" : ""));
    if (!over->problem().empty())
        desktop::complain(over->problem());
}
