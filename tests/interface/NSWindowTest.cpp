#include <tests/Listener.h>
#include <tests/Testing.h>

#include <zorvan/interface/DynamicToolbar.h>
#include <zorvan/interface/NSApplication.h>
#include <zorvan/interface/NSWindow.h>
#include <zorvan/media/NSImage.h>

#include <list>

using Calls = std::vector<std::string>;
using Flags = NSEvent::ModifierFlags;
using Type = NSEvent::EventType;

namespace {

/// Tells of the notifications of windows, and does something then.
struct Watch {
    explicit Watch(const std::function<void(const std::string&)>& then = [](const auto&) {}) {
        for (const auto name :
             {NSWindow::didBecomeMainNotification, NSWindow::didResignMainNotification,
              NSWindow::willCloseNotification, NSWindow::didResizeNotification})
            listeners.emplace_back(name, nullptr, [this, then](const Notification& told) {
                const auto window = std::static_pointer_cast<const NSWindow>(told.object);
                // Between "NSWindow" and "Notification".
                const std::string full(told.name.rawValue());
                notes.push_back(window->title() + " " + full.substr(8, full.size() - 8 - 12));
                then(notes.back());
            });
    }
    Calls notes;
    std::list<Listener> listeners;
};

/// Takes the keyboard, and tells of what comes; of where the mouse is when it tracks it.
struct Probe : NSView {
    Probe(const CGRect& frame, std::string& where, std::string its, bool isTracking = false)
        : NSView(Key{}, frame), told(where), name(std::move(its)), tracks(isTracking) {}

    void add(const std::string& what) { told += what + name + ' '; }
    bool acceptsFirstResponder() const override { return true; }
    bool becomeFirstResponder() override { return takes; }
    bool resignFirstResponder() override { return letsGo; }
    void keyDown(const NSEvent& with) override {
        if (with.characters == "x")
            return NSView::keyDown(with);
        add(with.characters + " to ");
    }
    void rightMouseDown(const NSEvent&) override { add("right "); }
    void scrollWheel(const NSEvent&) override { add("wheel "); }
    void updateTrackingAreas() override {
        using Options = NSTrackingArea::Options;
        if (!tracks)
            return;
        if (area)
            removeTrackingArea(area);
        area = NSTrackingArea::create(bounds(),
                                      Options::mouseEnteredAndExited | Options::mouseMoved |
                                          Options::activeInActiveApp,
                                      shared_from_this());
        addTrackingArea(area);
    }
    void mouseEntered(const NSEvent& event) override {
        add("enter ");
        EXPECT_EQ(event.trackingArea, area);
        if (then)
            then();
    }
    void mouseExited(const NSEvent&) override { add("exit "); }
    void mouseMoved(const NSEvent&) override { add("move "); }
    void mouseDown(const NSEvent&) override { add("down "); }
    void mouseUp(const NSEvent&) override { add("up "); }

    std::string& told;
    std::string name;
    bool tracks, takes = true, letsGo = true;
    std::shared_ptr<NSTrackingArea> area;
    std::function<void()> then;
};

class NSWindowEvents : public testing::Test {
protected:
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
};

class NSWindowMouse : public NSWindowEvents {
protected:
    NSWindowMouse() {
        window->contentView()->addSubview(outer);
        outer->addSubview(inner);
    }
    std::shared_ptr<Probe> outer = std::make_shared<Probe>(CGRect(20, 20, 100, 60), told, "outer",
                                                           true),
                           inner =
                               std::make_shared<Probe>(CGRect(10, 10, 20, 20), told, "inner", true);
};

class NSWindowKeys : public NSWindowEvents {
protected:
    NSWindowKeys() {
        for (const auto& view : {a, b, c})
            window->contentView()->addSubview(view);
    }
    std::shared_ptr<Probe> a = std::make_shared<Probe>(CGRect(0, 0, 50, 50), told, "a"),
                           b = std::make_shared<Probe>(CGRect(50, 0, 50, 50), told, "b"),
                           c = std::make_shared<Probe>(CGRect(100, 0, 50, 50), told, "c");
};

} // namespace

TEST(NSWindow, HandsTheMainStatusOnAndMayBeClosedByWhoeverIsTold) {
    const std::pair<std::string, Calls> table[] = {
        // Before it has become main, it does not become it.
        {"a DidResignMain", {"a DidBecomeMain", "a DidResignMain", "b WillClose"}},
        {"b DidBecomeMain",
         {"a DidBecomeMain", "a DidResignMain", "b DidBecomeMain", "b WillClose",
          "b DidResignMain"}},
    };
    const auto a = NSWindow::create({10, 10}, "a"), c = NSWindow::create({10, 10}, "c");
    for (const auto& [closing, notes] : table) {
        const auto b = NSWindow::create({10, 10}, "b");
        const Watch watch([&, at = closing](const std::string& note) {
            if (note == at || note == "b WillClose")
                b->close();
        });
        a->makeMainWindow();
        a->makeMainWindow(); // is it already
        EXPECT_TRUE(a->isVisible() && a->isMainWindow() && !b->isVisible());
        b->makeMainWindow();
        EXPECT_EQ(watch.notes, notes);
        EXPECT_FALSE(a->isMainWindow() || b->isMainWindow() || b->isVisible());
    }
    // The last holder lets go while it is told.
    auto window = NSWindow::create({10, 10}, "a");
    const std::weak_ptr gone = window;
    {
        const Watch watch([&](const std::string&) { window.reset(); });
        window->makeMainWindow();
        EXPECT_EQ(watch.notes.size(), 1u);
    }
    EXPECT_TRUE(gone.expired());
    EXPECT_EQ(NSApplication::shared().mainWindow(), nullptr);
    // Another may become main meanwhile.
    const auto b = NSWindow::create({10, 10}, "b");
    const Watch watch([&](const std::string& note) {
        if (note == "a DidResignMain")
            c->makeMainWindow();
    });
    a->makeMainWindow();
    b->makeMainWindow();
    EXPECT_TRUE(c->isMainWindow());
    c->close();
}

TEST(NSLayoutConstraint, KeepsAViewFromBecomingSmaller) {
    const auto view = NSView::create({1, 2, 30, 40});
    const auto width = view->widthAnchor().constraintGreaterThanOrEqualToConstant(50);
    const auto height = view->heightAnchor().constraintGreaterThanOrEqualToConstant(-NAN);
    EXPECT_EQ(height->constant(), 0);
    EXPECT_EQ(view->frame().width(), 30) << "none is active";
    width->setActive(true);
    height->setActive(true);
    EXPECT_EQ(view->frame(), CGRect(1, 2, 50, 40));
    view->layoutSubtreeIfNeeded();
    height->setConstant(20);
    EXPECT_TRUE(view->needsLayout()) << "though it is large enough";
    view->setFrame({0, 0, 10, 10});
    EXPECT_EQ(view->fittingSize(), CGSize(50, 20));
    width->setActive(false);
    view->setFrame({0, 0, 10, 10});
    EXPECT_EQ(view->frame(), CGRect(0, 0, 10, 20));
}

TEST(NSWindow, KeepsItsContentUnderBarsAndTellsOfItsSize) {
    struct Counter : NSWindowObserver {
        void viewsNeedDisplay() override { ++asked; }
        int asked = 0;
    };
    const auto counter = std::make_shared<Counter>();
    const auto window = NSWindow::create({200, 100}, "w");
    const Watch watch;
    window->setToolbar(NSToolbar::create("t"));
    window->setTouchBar(NSTouchBar::create());
    window->layoutIfNeeded();
    EXPECT_EQ(window->contentView()->frame(), CGRect(0, 0, 200, 100));
    EXPECT_TRUE(watch.notes.empty());
    window->setContentSize({300, 100});
    window->setContentSize({300, 100});
    EXPECT_EQ(watch.notes, Calls{"w DidResize"});
    EXPECT_EQ(window->contentView()->frame().width(), 300);
    window->setContentSize({-5, std::numeric_limits<double>::quiet_NaN()});
    EXPECT_EQ(window->contentSize(), CGSize(1, 1));
    // It asks once to be shown anew.
    window->addObserver(counter);
    window->displayIfNeeded();
    EXPECT_FALSE(window->viewsNeedDisplay());
    window->contentView()->setNeedsDisplay(true);
    window->contentView()->setNeedsDisplay(true);
    EXPECT_EQ(counter->asked, 1);
    EXPECT_TRUE(window->viewsNeedDisplay());
}

TEST_F(NSWindowMouse, EntersAndLeavesTrackingAreas) {
    send(Type::mouseMoved, {35, 35});
    EXPECT_EQ(take(), "enter outer enter inner move outer move inner ");
    send(Type::mouseMoved, {100, 35});
    EXPECT_EQ(take(), "exit inner move outer ");
    send(Type::mouseExited, {});
    EXPECT_EQ(take(), "exit outer ");
    send(Type::leftMouseDown, {35, 35});
    EXPECT_EQ(take(), "enter outer enter inner down inner ");
    // What is dragged from gets the release, wherever that is.
    send(Type::leftMouseUp, {500, 500});
    EXPECT_EQ(take(), "exit outer exit inner up inner ");
    NSApplication::shared().setActive(false);
    send(Type::mouseMoved, {35, 35});
    EXPECT_EQ(take(), "");
    NSApplication::shared().setActive(true);
    // A larger area in place of one that the mouse is in is no new one.
    send(Type::mouseMoved, {35, 35});
    take();
    inner->setFrame({10, 10, 30, 30});
    send(Type::mouseMoved, {36, 36});
    EXPECT_EQ(take(), "move outer move inner ");
    inner->setHidden(true);
    send(Type::mouseMoved, {36, 36});
    EXPECT_EQ(take(), "exit inner move outer ");
    outer->removeFromSuperview();
    send(Type::mouseMoved, {36, 36});
    EXPECT_EQ(take(), "exit outer ");
    // A view that leaves while another is told is passed over.
    inner->setHidden(false);
    window->contentView()->addSubview(outer);
    outer->then = [this] { inner->removeFromSuperview(); };
    send(Type::mouseMoved, {31, 31});
    EXPECT_EQ(take(), "enter outer move outer ");
    // Once closed, the window is deaf.
    window->orderFront();
    window->close();
    send(Type::leftMouseDown, {31, 31});
    EXPECT_EQ(take(), "");
    window->orderFront();
    send(Type::leftMouseDown, {31, 31});
    EXPECT_NE(take(), "");
}

TEST_F(NSWindowMouse, LetsAButtonActWhenItIsReleasedInside) {
    const auto button = NSButton::create({130, 20, 50, 30});
    button->setAction(Selector("act", [&] { told += "act "; }));
    window->contentView()->addSubview(button);
    send(Type::leftMouseDown, {150, 30});
    EXPECT_TRUE(button->isHighlighted());
    send(Type::leftMouseDragged, {10, 10});
    EXPECT_FALSE(button->isHighlighted());
    send(Type::leftMouseUp, {10, 10});
    EXPECT_EQ(take(), "");
    send(Type::leftMouseDown, {150, 30});
    send(Type::leftMouseUp, {151, 31});
    EXPECT_EQ(take(), "act ");
    button->setEnabled(false);
    send(Type::leftMouseDown, {150, 30});
    send(Type::leftMouseUp, {150, 30});
    EXPECT_EQ(take(), "");
}

TEST(NSApplication, PerformsActionsOnLivingTargetsOnly) {
    struct Target {
        void act(NSButton& sender) { told += sender.title(); }
        std::string told;
    };
    const auto target = std::make_shared<Target>();
    NSApplication& application = NSApplication::shared();
    const auto button = NSButton::create({.title = "b"});
    const Selector action("act", &Target::act);
    EXPECT_TRUE(application.sendAction(action, target, button));
    // A sender of another class, no sender, no target, and a target that has gone.
    EXPECT_FALSE(application.sendAction(action, target, NSView::create()));
    EXPECT_FALSE(application.sendAction(action, target, nullptr));
    EXPECT_FALSE(application.sendAction(action, {}, button));
    EXPECT_EQ(target->told, "b");
    const std::weak_ptr<void> gone = std::make_shared<Target>();
    bool wasCalled = false;
    const Selector block("block", [&] { wasCalled = true; });
    EXPECT_FALSE(application.sendAction(block, gone, button));
    EXPECT_FALSE(wasCalled);
    EXPECT_TRUE(application.sendAction(block, {}, button));
    EXPECT_TRUE(wasCalled);
}

// The keyboard

TEST_F(NSWindowKeys, GoToTheFirstResponder) {
    EXPECT_FALSE(press("k")) << "nobody has the keyboard";
    EXPECT_TRUE(window->makeFirstResponder(b));
    EXPECT_TRUE(press("k"));
    EXPECT_FALSE(press("x")) << "not taken";
    EXPECT_EQ(take(), "k to b ");
    for (const auto& hidden : {std::shared_ptr<NSView>(b), window->contentView()}) {
        hidden->setHidden(true);
        EXPECT_FALSE(press("k")) << "not seen";
        hidden->setHidden(false);
        EXPECT_TRUE(press("k"));
    }
    EXPECT_EQ(take(), "k to b k to b ");
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
    c->removeFromSuperview();
    EXPECT_EQ(window->firstResponder(), nullptr);
    EXPECT_FALSE(press("k"));
}

TEST_F(NSWindowKeys, GoFromViewToView) {
    const auto order = [&](bool forward) {
        std::string names;
        for (int i = 0; i < 4; ++i) {
            forward ? window->selectNextKeyView() : window->selectPreviousKeyView();
            names += std::static_pointer_cast<Probe>(window->firstResponder())->name;
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
    EXPECT_EQ(take(), "\r to a ") << "the first responder comes first";
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
    EXPECT_EQ(take(), "right b wheel a ");
    EXPECT_FALSE(send(Type::otherMouseDown, {60, 10}));
    EXPECT_FALSE(send(Type::scrollWheel, {190, 90})) << "nobody there";
    const auto menu = NSMenu::create(), other = NSMenu::create();
    window->contentView()->setMenu(menu);
    b->setMenu(other);
    EXPECT_EQ(a->menu({}), menu) << "that of the superview";
    EXPECT_EQ(b->menu({}), other);
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
