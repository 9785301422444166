// gallery: every view in every state. `gallery --pictures FOLDER` draws it into files, without a
// screen: light, dark, from right to left, narrow, with labels, and at one and a half pixels to a
// point (QT_SCALE_FACTOR).

#include <zorvan/hosts/QtWindowHost.h>
#include <zorvan/interface/DynamicToolbar.h>
#include <zorvan/interface/DynamicTouchBar.h>
#include <zorvan/interface/NSWindow.h>
#include <zorvan/interface/TintedButton.h>
#include <zorvan/media/NSColor.h>
#include <zorvan/media/NSImage.h>

#include <QApplication>
#include <QDir>
#include <QPalette>
#include <QStyleFactory>
#include <QWidget>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <string>

using namespace zorvan;

namespace {

NSColor hex(std::string_view text) { return NSColor::make({.hexString = text}).value(); }

/// A view of one's own: a level that the wheel, the mouse and the keys change.
class Level : public NSView {
public:
    static std::shared_ptr<Level> create(const CGRect& frame) {
        return std::make_shared<Level>(Key{}, frame);
    }
    Level(Key key, const CGRect& frame) : NSView(key, frame) {
        setAccessibilityRole(NSAccessibilityRole::slider);
        setAccessibilityLabel("Level");
        setToolTip("Turn the wheel, click, or press + and -");
        setCursor(NSCursor::pointingHand);
        set(40);
    }
    void draw(Canvas& canvas) const override {
        canvas.fill(bounds(), {120, 130, 150});
        canvas.fill({0, 0, bounds().width() * level_ / 100, bounds().height()}, {40, 110, 220});
    }
    bool acceptsFirstResponder() const override { return true; }
    void change(double by) { set(level_ + by); }
    void mouseDown(const NSEvent& with) override {
        set(100 * convertFromBase(with.locationInWindow).x / bounds().width());
    }
    void scrollWheel(const NSEvent& with) override { change(with.scrollingDeltaY / 10); }
    void keyDown(const NSEvent& with) override {
        if (with.characters == "+" || with.characters == "-")
            change(with.characters == "+" ? 5 : -5);
        else
            NSView::keyDown(with);
    }

private:
    void set(double level) {
        level_ = std::clamp(level, 0.0, 100.0);
        setAccessibilityValue(std::to_string(static_cast<int>(level_)) + " %");
        setNeedsDisplay(true);
    }
    double level_ = 0;
};

/// Views below each other, from the top.
class Column : public NSView {
public:
    static std::shared_ptr<Column> create() { return std::make_shared<Column>(Key{}, CGRect()); }
    using NSView::NSView;

    bool isFlipped() const noexcept override { return true; }
    void layout() override {
        double top = 16;
        for (const auto& view : subviews()) {
            const CGSize wanted = view->fittingSize();
            view->setFrame({16, top, wanted.width, wanted.height});
            top += wanted.height + 12;
        }
    }
};

std::shared_ptr<TintedButton> tinted(const char* title, const char* symbol) {
    const auto button = TintedButton::create({.title = title, .action = Selector("act", [] {})});
    button->setImage(NSImage::systemSymbol(symbol, symbol));
    button->setExpandedSize(CGSize(10, 6));
    button->setBackgroundRadius(8);
    button->setTextTintColor(NSColor::white);
    button->setImageTintColor(NSColor::white);
    const auto shades = [](const char* from, const char* to) {
        return NSGradient::make({.colors = {hex(from), hex(to)}});
    };
    button->setBackgroundTintGradient(shades("#3B82F6", "#2563EB"));
    button->setBackgroundHoverGradient(shades("#60A5FA", "#3B82F6"));
    button->setBackgroundPressedGradient(shades("#1D4ED8", "#1E40AF"));
    button->setBackgroundDisabledGradient(shades("#9CA3AF", "#8B93A1"));
    return button;
}

std::shared_ptr<NSMenu> makeMenu() {
    const auto menu = NSMenu::create();
    const auto copy = NSMenuItem::create("Copy", Selector("copy", [] {}));
    copy->setKeyEquivalent("c");
    menu->addItem(copy);
    const auto checked = NSMenuItem::create("Checked", Selector("check", [] {}));
    checked->setState(true);
    menu->addItem(checked);
    menu->addItem(NSMenuItem::separatorItem());
    const auto disabled = NSMenuItem::create("Disabled", Selector("no", [] {}));
    disabled->setEnabled(false);
    menu->addItem(disabled);
    const auto more = NSMenuItem::create("More");
    more->setSubmenu(NSMenu::create());
    more->submenu()->addItem(NSMenuItem::create("Inside", Selector("inside", [] {})));
    menu->addItem(more);
    return menu;
}

std::shared_ptr<NSView> makeButtons() {
    const auto column = Column::create();
    const auto add = [&column](const std::shared_ptr<NSButton>& button) {
        column->addSubview(button);
        return button;
    };
    add(NSButton::create({.title = "Push button", .action = Selector("push", [] {})}))
        ->setToolTip("Acts when the mouse is released");
    add(NSButton::create({.title = "Disabled"}))->setEnabled(false);
    add(NSButton::create({.title = "With an image"}))
        ->setImage(NSImage::systemSymbol("photo", "Photo"));
    add(NSButton::create({.title = "Coloured"}))->setBezelColor(hex("#B91C1C"));
    add(tinted("Tinted button", "arrow.right"));
    add(tinted("Tinted, disabled", "trash"))->setEnabled(false);
    return column;
}

std::shared_ptr<NSView> makeOthers(const std::shared_ptr<Level>& level) {
    const auto column = Column::create();
    const auto field = NSSearchField::create();
    field->setPlaceholderString("Search");
    column->addSubview(field);
    const auto filled = NSSearchField::create();
    filled->setStringValue("with text");
    column->addSubview(filled);
    const auto disabled = NSSearchField::create();
    disabled->setStringValue("disabled");
    disabled->setEnabled(false);
    column->addSubview(disabled);
    column->addSubview(level);
    column->setMenu(makeMenu());
    return column;
}

/// A window with every view in every state.
class GalleryWindow {
public:
    GalleryWindow() {
        split_->addSubview(makeButtons());
        const auto level = Level::create({0, 0, 180, 22});
        split_->addSubview(makeOthers(level));
        split_->setMinimumLength(120, 0);
        window_->setContentView(split_);
        window_->setContentMinSize({240, 160});
        window_->setFrameAutosaveName("Gallery");
        split_->setPosition(240, 0);
        fillToolbar();
        fillTouchBar([level](double by) { level->change(by); });
    }

    const std::shared_ptr<NSWindow>& window() const { return window_; }
    void setDisplayMode(NSToolbar::DisplayMode mode) { toolbar_->toolbar()->setDisplayMode(mode); }

private:
    void fillToolbar() {
        toolbar_->addItemSet();
        const auto addButton = [this](const char* name, const char* image) {
            return toolbar_->addItem({.createImageButton = [&](ImageButtonSettings& settings) {
                settings.displayName = name;
                settings.imageName = image;
                settings.action = Selector(name, [] {});
            }});
        };
        addButton("Back", "chevron.left");
        addButton("Delete", "trash")->setEnabled(false);
        toolbar_->addItem({.createSplitView = [this](SplitViewSettings& settings) {
            settings.splitView = split_;
        }});
        toolbar_->addItem({.createTitleGroup = [](ButtonGroupSettings& settings) {
            settings.displayName = "Order";
            settings.titles = {"Name", "Date", "Size"};
            settings.selectedIndex = 1;
            settings.action = Selector("order", [] {});
        }});
        toolbar_->addItem({.createImageGroup = [](ButtonGroupSettings& settings) {
            settings.displayName = "Zoom";
            settings.imageNames = {"minus", "plus"};
            settings.titles = {"Smaller", "Larger"};
            settings.imageSize = CGSize(16, 16);
            settings.selectionMode = NSToolbarItemGroup::SelectionMode::momentary;
        }});
        toolbar_->addItem({.identifier = NSToolbarFlexibleSpaceItemIdentifier});
        toolbar_->addItem({.createMenuButton = [](MenuButtonSettings& settings) {
            settings.displayName = "More";
            settings.imageName = "ellipsis";
            settings.menu = makeMenu();
        }});
        toolbar_->addItem({.createSearchField = [](SearchFieldSettings& settings) {
            settings.placeholderString = "Search";
        }});
        toolbar_->reloadDisplayedItems();
        window_->setToolbar(toolbar_->toolbar());
    }

    void fillTouchBar(std::function<void(double)> change) {
        touchBar_->addItemSet({});
        for (const double by : {-10.0, 10.0})
            touchBar_->addItem({.createButton = [&](DynamicTouchBarItemButtonSettings& settings) {
                settings.title = by < 0 ? "Lower" : "Raise";
                settings.minimumWidth = 90;
                settings.action = Selector("change", [change, by] { change(by); });
            }});
        touchBar_->addItem({.identifier = NSTouchBarItemIdentifierFlexibleSpace});
        touchBar_->addItem({.createButton = [](DynamicTouchBarItemButtonSettings& settings) {
            settings.title = "Done";
            settings.bezelColor = hex("#2563EB");
            settings.action = Selector("done", [] {});
        }});
        touchBar_->reloadDisplayedItems();
        window_->setTouchBar(touchBar_->touchBar());
    }

    const std::shared_ptr<NSWindow> window_ = NSWindow::create({720, 320}, "Gallery");
    const std::shared_ptr<NSSplitView> split_ = NSSplitView::create();
    const std::shared_ptr<DynamicToolbar> toolbar_ = DynamicToolbar::create({"gallery"});
    const std::shared_ptr<DynamicTouchBar> touchBar_ = DynamicTouchBar::create();
};

QPalette darkPalette() {
    QPalette palette(QColor(45, 46, 50), QColor(36, 37, 40));
    palette.setColor(QPalette::Highlight, QColor(60, 130, 246));
    return palette;
}

/// Until nothing is left to do.
void settle() {
    for (int i = 0; i < 5; ++i)
        QCoreApplication::processEvents();
}

struct Look {
    const char* name;
    std::function<void(GalleryWindow&, QWidget&)> apply;
};

bool writePictures(const QString& folder) {
    const Look looks[] = {
        {"light", [](GalleryWindow&, QWidget&) {}},
        {"dark", [](GalleryWindow&, QWidget&) { QApplication::setPalette(darkPalette()); }},
        {"right-to-left",
         [](GalleryWindow&, QWidget&) { QApplication::setLayoutDirection(Qt::RightToLeft); }},
        {"narrow", [](GalleryWindow&, QWidget& widget) { widget.resize(360, 400); }},
        {"labels", [](GalleryWindow& gallery,
                      QWidget&) { gallery.setDisplayMode(NSToolbar::DisplayMode::iconAndLabel); }},
    };
    QApplication::setStyle(QStyleFactory::create("Fusion"));
    const QPalette usual = QApplication::palette();
    for (const Look& look : looks) {
        QApplication::setPalette(usual);
        QApplication::setLayoutDirection(Qt::LeftToRight);
        GalleryWindow gallery;
        gallery.window()->setFrameAutosaveName({});
        const auto host = QtWindowHost::show(gallery.window());
        look.apply(gallery, host->widget());
        settle();
        const QString file = QDir(folder).filePath(QString("gallery-%1.png").arg(look.name));
        if (!host->widget().grab().save(file)) {
            std::fprintf(stderr, "gallery: %s cannot be written\n", qPrintable(file));
            return false;
        }
    }
    return true;
}

} // namespace

int main(int argc, char** argv) {
    const bool drawsPictures = argc == 3 && std::strcmp(argv[1], "--pictures") == 0;
    if (argc > 1 && !drawsPictures) {
        std::puts("Usage: gallery [--pictures FOLDER]");
        return std::strcmp(argv[1], "--help") == 0 ? 0 : 2;
    }
    if (drawsPictures)
        ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    const QApplication application(argc, argv);
    if (drawsPictures)
        return writePictures(QString::fromLocal8Bit(argv[2])) ? 0 : 1;
    const GalleryWindow gallery;
    const auto host = QtWindowHost::show(gallery.window());
    return QApplication::exec();
}
