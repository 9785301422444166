#include "PictureWindow.h"

#include "PictureViews.h"
#include "displayText.h"

#include <zorvan/interface/NSSplitView.h>
#include <zorvan/interface/TintedButton.h>
#include <zorvan/media/CGImageDestination.h>
#include <zorvan/platform/appkit/NSScrollView.h>

#include <algorithm>
#include <filesystem>
#include <map>

using namespace zorvan;

namespace {

constexpr CGSize contentSize(1040, 692);
constexpr auto allPictures = "All pictures";
constexpr double sidebarWidth = 200, statusHeight = 52;

NSColor hex(std::string_view text) { return NSColor::make({.hexString = text}).value(); }

std::string titleOf(const std::string& path) {
    const auto whole = std::filesystem::absolute(path).lexically_normal();
    return forDisplay((whole.has_filename() ? whole : whole.parent_path()).filename().string());
}

std::vector<KindList::Kind> kindsOf(const std::vector<PictureFacts>& facts) {
    std::map<std::string, std::size_t> counts;
    for (const PictureFacts& fact : facts)
        ++counts[kindOf(fact)];
    std::vector<KindList::Kind> kinds{{"square.grid.2x2", allPictures, facts.size()}};
    for (const char* name : {"JPEG", "HEIC", "PNG", "TIFF", "Movies", "Others"})
        if (counts[name] > 0)
            kinds.push_back({"photo", name, counts[name]});
    if (counts["Unreadable"] > 0)
        kinds.push_back({"exclamationmark.triangle", "Unreadable", counts["Unreadable"]});
    return kinds;
}

std::string statusOf(const std::vector<PictureFacts>& facts) {
    const auto unreadable = std::count_if(
        facts.begin(), facts.end(), [](const PictureFacts& fact) { return !fact.error.empty(); });
    std::string text = std::to_string(facts.size()) + (facts.size() == 1 ? " file" : " files");
    return unreadable > 0 ? text + ", " + std::to_string(unreadable) + " unreadable" : text;
}

/// A button in the colours of something to be done, or of something beside it.
std::shared_ptr<TintedButton> makeButton(const char* title, const char* symbol, bool isMain,
                                         std::function<void()> pressed) {
    const auto button =
        TintedButton::create({.title = title, .action = Selector(title, std::move(pressed))});
    button->setImage(NSImage::systemSymbol(symbol, symbol));
    button->setExpandedSize(CGSize(6, 4));
    button->setBackgroundRadius(8);
    button->setBackgroundGradientAngle(270);
    const auto shades = [](const char* from, const char* to) {
        return NSGradient::make({.colors = {hex(from), hex(to)}});
    };
    const NSColor ink = isMain ? NSColor::white : hex("#1D4ED8");
    button->setTextTintColor(ink);
    button->setImageTintColor(ink);
    button->setBackgroundTintGradient(isMain ? shades("#3B82F6", "#2563EB")
                                             : shades("#E4EEFE", "#D5E4FD"));
    button->setBackgroundHoverGradient(isMain ? shades("#60A5FA", "#3B82F6")
                                              : shades("#D5E4FD", "#BFD6FC"));
    button->setBackgroundPressedGradient(isMain ? shades("#1D4ED8", "#1E40AF")
                                                : shades("#BFD6FC", "#A8C7FA"));
    button->setBackgroundDisabledGradient(shades("#E5E7EB", "#D1D5DB"));
    button->setTextDisabledColor(hex("#9CA3AF"));
    button->setImageDisabledColor(hex("#9CA3AF"));
    return button;
}

/// The grid, and below it the status bar with its buttons at the right.
class Browser : public NSView {
public:
    static std::shared_ptr<Browser> create(const std::shared_ptr<PictureGrid>& grid,
                                           const std::shared_ptr<NSView>& status,
                                           std::vector<std::shared_ptr<NSView>> buttons) {
        auto browser = std::make_shared<Browser>(Key{}, CGRect());
        browser->grid_ = grid;
        browser->status_ = status;
        browser->buttons_ = std::move(buttons);
        browser->scrollView_->setDocumentView(grid);
        browser->addSubview(browser->scrollView_);
        browser->addSubview(status);
        for (const auto& button : browser->buttons_)
            status->addSubview(button);
        return browser;
    }
    using NSView::NSView;

    void layout() override {
        const CGSize size = bounds().size;
        status_->setFrame({0, 0, size.width, statusHeight});
        const double height = std::max(size.height - statusHeight, 0.0);
        NSClipView& clipView = *scrollView_->contentView();
        const double scrolled = grid_->bounds().height() - clipView.bounds().maxY();
        scrollView_->setFrame({0, statusHeight, size.width, height});
        grid_->setFrame({0, 0, size.width, std::max(height, grid_->height(size.width))});
        // What is at the top stays there.
        const double most = grid_->bounds().height() - height;
        clipView.setBoundsOrigin({0, std::clamp(most - scrolled, 0.0, most)});
        double right = size.width - 18;
        for (const auto& button : buttons_) {
            const CGSize wanted = button->fittingSize();
            button->setFrame({right - wanted.width, (statusHeight - wanted.height) / 2,
                              wanted.width, wanted.height});
            right -= wanted.width + 10;
        }
    }

private:
    const std::shared_ptr<NSScrollView> scrollView_ = NSScrollView::create();
    std::shared_ptr<PictureGrid> grid_;
    std::shared_ptr<NSView> status_;
    /// From the right edge inward.
    std::vector<std::shared_ptr<NSView>> buttons_;
};

} // namespace

PictureWindow::PictureWindow(const std::string& path, const std::vector<ListedFile>& files,
                             const std::vector<PictureFacts>& facts)
    : window_(NSWindow::create(contentSize, titleOf(path))), split_(NSSplitView::create()),
      grid_(PictureGrid::create(files, facts)), toolbar_(DynamicToolbar::create({"shelf"})),
      touchBar_(DynamicTouchBar::create()) {
    const auto kinds = kindsOf(facts);
    kindList_ = KindList::create(kinds, [grid = std::weak_ptr(grid_), kinds](std::size_t kind) {
        if (const auto shown = grid.lock())
            shown->setKind(kind == 0 ? "" : kinds[kind].name);
    });
    split_->addSubview(kindList_);
    split_->addSubview(
        Browser::create(grid_, StatusBar::create(statusOf(facts)),
                        {makeButton("Next", "arrow.right", true,
                                    withGrid([](PictureGrid& grid) { grid.selectNext(true); })),
                         makeButton("Previous", "arrow.left", false,
                                    withGrid([](PictureGrid& grid) { grid.selectNext(false); }))}));
    window_->setContentView(split_);
    split_->setPosition(sidebarWidth, 0);
    if (!files.empty())
        grid_->select(0);
    fillToolbar();
    fillTouchBar();
    window_->makeMainWindow();
}

void PictureWindow::selectNext(bool forward) { grid_->selectNext(forward); }

bool PictureWindow::writeScreenshot(const std::string& path) const {
    std::optional<Bitmap> bitmap = window_->contentView()->render(2);
    const auto file = CGImageDestination::create(URL({.fileURLWithPath = path}), "public.png", 1);
    if (!bitmap || !file)
        return false;
    file->addImage(CGImage::create(std::move(*bitmap)));
    return file->finalize();
}

/// A block that does something to the grid while there is one.
std::function<void()> PictureWindow::withGrid(std::function<void(PictureGrid&)> act) const {
    return [grid = std::weak_ptr(grid_), act = std::move(act)] {
        if (const auto shown = grid.lock())
            act(*shown);
    };
}

void PictureWindow::fillToolbar() {
    const std::weak_ptr<PictureGrid> grid = grid_;
    toolbar_->addItemSet();
    toolbar_->addItem({.createImageButton = [this](ImageButtonSettings& settings) {
        settings.displayName = "Sidebar";
        settings.imageName = "sidebar.left";
        settings.action = Selector("toggleSidebar", [split = std::weak_ptr(split_)] {
            if (const auto shown = split.lock())
                shown->setPosition(shown->position(0) == 0 ? sidebarWidth : 0, 0);
        });
    }});
    toolbar_->addItem(
        {.createSplitView = [this](SplitViewSettings& settings) { settings.splitView = split_; }});
    toolbar_->addItem({.createTitleGroup = [grid](ButtonGroupSettings& settings) {
        settings.displayName = "Order";
        settings.titles = {"Name", "Size"};
        settings.selectedIndex = 0;
        settings.action =
            Selector::withSender<NSToolbarItemGroup>("order", [grid](NSToolbarItemGroup& group) {
                if (const auto shown = grid.lock())
                    shown->setSortedBySize(group.selectedIndex() == 1);
            });
    }});
    toolbar_->addItem({.identifier = std::string(NSToolbarFlexibleSpaceItemIdentifier)});
    const auto zoom = toolbar_->addItem({.createImageGroup = [](ButtonGroupSettings& settings) {
        settings.displayName = "Zoom";
        settings.imageNames = {"minus", "plus"};
        settings.imageSize = CGSize(16, 16);
        settings.selectionMode = NSToolbarItemGroup::SelectionMode::momentary;
    }});
    const auto scale = [this](double by) {
        return withGrid([by](PictureGrid& shown) { shown.setCellSide(shown.cellSide() * by); });
    };
    zoom->subitems()[0]->setAction(Selector("smaller", scale(0.8)));
    zoom->subitems()[1]->setAction(Selector("larger", scale(1.25)));
    toolbar_->addItem({.createMenuButton = [this](MenuButtonSettings& settings) {
        settings.displayName = "More";
        settings.imageName = "ellipsis";
        settings.menu = NSMenu::create();
        settings.menu->addItem(NSMenuItem::create(
            "Select Nothing", Selector("selectNothing", withGrid([](PictureGrid& shown) {
                                           shown.select(std::nullopt);
                                       }))));
    }});
    toolbar_->addItem({.createSearchField = [&](SearchFieldSettings& settings) {
        settings.placeholderString = "Search";
        settings.action =
            Selector::withSender<NSSearchField>("search", [grid](NSSearchField& field) {
                if (const auto shown = grid.lock())
                    shown->setFilter(field.stringValue());
            });
    }});
    toolbar_->reloadDisplayedItems();
    window_->setToolbar(toolbar_->toolbar());
}

void PictureWindow::fillTouchBar() {
    const auto addButton = [this](const char* title, const char* image,
                                  std::optional<NSColor> bezel, std::function<void()> act) {
        touchBar_->addItem({.createButton = [&](DynamicTouchBarItemButtonSettings& settings) {
            settings.title = title;
            settings.imageName = image;
            settings.imageSize = CGSize(15, 15);
            settings.bezelColor = bezel;
            settings.minimumWidth = 104;
            settings.action = Selector(title, std::move(act));
        }});
    };
    touchBar_->addItemSet({});
    const auto select = [this](bool next) {
        return withGrid([next](PictureGrid& grid) { grid.selectNext(next); });
    };
    const auto choose = [this](const char* kind) {
        return [list = std::weak_ptr(kindList_), kind] {
            if (const auto shown = list.lock())
                shown->choose(kind);
        };
    };
    addButton("Previous", "chevron.left", {}, select(false));
    addButton("Next", "chevron.right", {}, select(true));
    touchBar_->addItem({.identifier = std::string(NSTouchBarItemIdentifierFlexibleSpace)});
    addButton("All", "square.grid.2x2", hex("#2563EB"), choose(allPictures));
    addButton("Unreadable", "exclamationmark.triangle", hex("#B91C1C"), choose("Unreadable"));
    touchBar_->reloadDisplayedItems();
    window_->setTouchBar(touchBar_->touchBar());
}
