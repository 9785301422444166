#include <tests/Testing.h>

#include <zorvan/interface/DynamicToolbar.h>
#include <zorvan/interface/NSSplitView.h>
#include <zorvan/interface/NSWindow.h>
#include <zorvan/media/NSImage.h>

using Type = NSEvent::EventType;
using Flags = NSEvent::ModifierFlags;

namespace {

/// Takes the keyboard, and says what it is told.
struct Typed : NSView {
    Typed(const CGRect& frame, std::string& where, char its)
        : NSView(Key{}, frame), told(where), name(its) {}

    bool acceptsFirstResponder() const override { return true; }
    bool becomeFirstResponder() override { return takes; }
    bool resignFirstResponder() override { return letsGo; }
    void keyDown(const NSEvent& with) override {
        if (with.characters == "x")
            return NSView::keyDown(with);
        told += name + with.characters;
    }
    void rightMouseDown(const NSEvent&) override { told += std::string("right ") + name; }
    void scrollWheel(const NSEvent&) override { told += std::string("wheel ") + name; }

    std::string& told;
    char name;
    bool takes = true, letsGo = true;
};

class NSWindowKeys : public testing::Test {
protected:
    NSWindowKeys() {
        for (const auto& view : {a, b, c})
            window->contentView()->addSubview(view);
    }
    bool press(const char* key, Flags flags = {}) {
        return window->sendEvent({.type = Type::keyDown,
                                  .modifierFlags = flags,
                                  .characters = key,
                                  .charactersIgnoringModifiers = key});
    }
    bool send(Type type, CGPoint at) {
        return window->sendEvent({.type = type, .locationInWindow = at});
    }
    std::string take() { return std::exchange(told, {}); }

    std::string told;
    std::shared_ptr<NSWindow> window = NSWindow::create({200, 100});
    std::shared_ptr<Typed> a = std::make_shared<Typed>(CGRect(0, 0, 50, 50), told, 'a'),
                           b = std::make_shared<Typed>(CGRect(50, 0, 50, 50), told, 'b'),
                           c = std::make_shared<Typed>(CGRect(100, 0, 50, 50), told, 'c');
};

} // namespace

TEST_F(NSWindowKeys, GoToTheFirstResponder) {
    struct Watch : NSWindowObserver {
        void firstResponderDidChange() override { ++changes; }
        int changes = 0;
    };
    const auto watch = std::make_shared<Watch>();
    window->addObserver(watch);
    EXPECT_FALSE(press("k")) << "nobody has the keyboard";
    EXPECT_TRUE(window->makeFirstResponder(b));
    EXPECT_TRUE(press("k"));
    EXPECT_FALSE(press("x")) << "not taken";
    EXPECT_EQ(take(), "bk");
    for (const auto& hidden : {std::shared_ptr<NSView>(b), window->contentView()}) {
        hidden->setHidden(true);
        EXPECT_FALSE(press("k")) << "not seen";
        hidden->setHidden(false);
        EXPECT_TRUE(press("k"));
    }
    EXPECT_EQ(take(), "bkbk");
    b->letsGo = false;
    EXPECT_FALSE(window->makeFirstResponder(a));
    EXPECT_EQ(window->firstResponder(), b);
    b->letsGo = true;
    a->takes = false;
    EXPECT_FALSE(window->makeFirstResponder(a));
    EXPECT_EQ(window->firstResponder(), nullptr);
    EXPECT_FALSE(window->makeFirstResponder(NSView::create())) << "in no window";
    send(Type::leftMouseDown, {120, 10});
    EXPECT_EQ(window->firstResponder(), c) << "a click";
    EXPECT_GE(watch->changes, 3);
    c->removeFromSuperview();
    EXPECT_EQ(window->firstResponder(), nullptr);
    EXPECT_FALSE(press("k"));
}

TEST_F(NSWindowKeys, GoFromViewToView) {
    const auto order = [&](bool forward) {
        std::string names;
        for (int i = 0; i < 4; ++i) {
            forward ? window->selectNextKeyView() : window->selectPreviousKeyView();
            names += std::static_pointer_cast<Typed>(window->firstResponder())->name;
        }
        return names;
    };
    EXPECT_EQ(order(true), "abca");
    EXPECT_EQ(order(false), "cbac");
    a->setNextKeyView(c);
    window->makeFirstResponder(a);
    EXPECT_EQ(order(true), "caca");
    b->setHidden(true);
    window->makeFirstResponder(c);
    window->selectPreviousKeyView();
    EXPECT_EQ(window->firstResponder(), a) << "back to where it came from";
}

TEST_F(NSWindowKeys, MayBeKeyEquivalents) {
    const auto does = [&](const char* what) {
        return Selector(what, [this, what] { told += what; });
    };
    const auto button = NSButton::create({.title = "OK", .action = does("ok")});
    button->setKeyEquivalent("\r");
    window->contentView()->addSubview(button);
    const auto copy = NSMenuItem::create("Copy", does("copy")), more = NSMenuItem::create("More");
    copy->setKeyEquivalent("c");
    more->setSubmenu(NSMenu::create());
    more->submenu()->addItem(copy);
    const auto bar = DynamicToolbar::create();
    bar->addItemSet();
    bar->addItem({.createMenuButton = [](MenuButtonSettings&) {}})->menu()->addItem(more);
    window->setToolbar(bar->toolbar());
    bar->reloadDisplayedItems();

    EXPECT_TRUE(press("\r"));
    EXPECT_FALSE(press("\r", Flags::shift)) << "other modifiers";
    EXPECT_TRUE(press("c", Flags::control));
    EXPECT_EQ(take(), "okcopy");
    window->makeFirstResponder(a);
    EXPECT_TRUE(press("\r"));
    EXPECT_EQ(take(), "a\r") << "the first responder comes first";
    EXPECT_TRUE(window->makeFirstResponder(button));
    EXPECT_TRUE(press(" "));
    EXPECT_EQ(take(), "ok");
    window->makeFirstResponder(nullptr);
    button->setEnabled(false);
    more->setEnabled(false);
    EXPECT_FALSE(press("\r") || press("c", Flags::control));
    EXPECT_EQ(take(), "");
}

TEST_F(NSWindowKeys, OtherButtonsTheWheelAndMenusGoToTheView) {
    EXPECT_TRUE(send(Type::rightMouseDown, {60, 10}));
    EXPECT_TRUE(send(Type::scrollWheel, {10, 10}));
    EXPECT_EQ(take(), "right bwheel a");
    EXPECT_FALSE(send(Type::otherMouseDown, {60, 10}));
    EXPECT_FALSE(send(Type::scrollWheel, {190, 90})) << "nobody there";
    const auto menu = NSMenu::create(), other = NSMenu::create();
    window->contentView()->setMenu(menu);
    b->setMenu(other);
    EXPECT_EQ(a->menu({}), menu) << "that of the superview";
    EXPECT_EQ(b->menu({}), other);
}

TEST(NSView, TellsItsObserversOfChanges) {
    struct Watch : NSViewObserver {
        void frameDidChange() override { told += "frame "; }
        void boundsOriginDidChange(bool animated) override {
            told += animated ? "glide " : "origin ";
        }
        void subviewsDidChange() override { told += "subviews "; }
        void needsDisplay(const CGRect& rect) override {
            told += "display " + std::to_string(static_cast<int>(rect.width())) + " ";
        }
        void propertiesDidChange() override { told += "properties "; }
        std::string told;
    };
    const auto view = NSView::create({0, 0, 40, 40}), inner = NSView::create();
    auto watch = std::make_shared<Watch>();
    view->addObserver(watch);
    view->setFrame(CGRect(0, 0, 40, 40)); // as it is
    view->setFrame(CGRect(1, 0, 40, 40));
    view->setBoundsOrigin(CGPoint(5, 0));
    view->setBoundsOrigin(CGPoint(9, 0), true);
    view->addSubview(inner);
    inner->removeFromSuperview();
    EXPECT_EQ(std::exchange(watch->told, ""), "frame origin glide subviews subviews ");
    view->setNeedsDisplay(true);
    view->setNeedsDisplay(CGRect(10, 0, 15, 5));
    view->setNeedsDisplay(CGRect(500, 0, 15, 5)); // outside
    EXPECT_EQ(std::exchange(watch->told, ""), "display 40 display 15 ");
    view->setHidden(true);
    view->setToolTip("tip");
    view->setAccessibilityValue("3");
    EXPECT_EQ(watch->told, "properties properties properties ");
    watch.reset();
    view->setHidden(false); // and nobody is told
}

TEST(NSView, TellsScreenReadersWhatItIs) {
    const auto view = NSView::create();
    view->setToolTip("tip");
    EXPECT_EQ(view->accessibilityLabel(), "tip");
    view->setAccessibilityLabel("name");
    EXPECT_EQ(view->accessibilityLabel(), "name");
    const auto button = NSButton::create({.title = "Go"});
    EXPECT_EQ(button->accessibilityLabel(), "Go");
    EXPECT_EQ(button->accessibilityRole(), NSAccessibilityRole::button);
    button->setAccessibilityRole(NSAccessibilityRole::checkBox);
    EXPECT_EQ(button->accessibilityRole(), NSAccessibilityRole::checkBox);
    const auto picture = NSButton::create();
    picture->setImage(NSImage::systemSymbol("trash", "Bin"));
    EXPECT_EQ(picture->accessibilityLabel(), "Bin");
    const auto item = NSToolbarItem::create("delete");
    item->setToolTip("Delete");
    item->setView(picture);
    EXPECT_EQ(picture->accessibilityLabel(), "Delete");
    item->setToolTip("Remove");
    EXPECT_EQ(picture->toolTip(), "Delete") << "its own by now";
}

TEST(NSSplitView, KeepsLeastLengths) {
    const auto split = NSSplitView::create({0, 0, 301, 50});
    for (int i = 0; i < 2; ++i)
        split->addSubview(NSView::create());
    split->setMinimumLength(80, 0);
    split->setMinimumLength(100, 1);
    const auto at = [&](double position) {
        split->setPosition(position, 0);
        return split->position(0).value();
    };
    EXPECT_EQ(at(10), 80);
    EXPECT_EQ(at(150), 150);
    EXPECT_EQ(at(290), 200);
    split->setCollapsible(true, 0);
    EXPECT_EQ(at(39), 0);
    EXPECT_EQ(at(41), 80);
    EXPECT_EQ(at(290), 200) << "the other one is not";
    split->setCollapsible(true, 1);
    EXPECT_EQ(at(290), 300);
    split->setMinimumLength(50, 7);
    EXPECT_EQ(split->minimumLength(7), 0) << "no such subview";
}
