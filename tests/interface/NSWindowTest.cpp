#include <tests/Listener.h>
#include <tests/Testing.h>

#include <zorvan/interface/NSApplication.h>
#include <zorvan/interface/NSButton.h>
#include <zorvan/interface/NSWindow.h>

#include <list>

using Type = NSEvent::EventType;
using Calls = std::vector<std::string>;

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

/// Tells of the mouse.
struct Mouser : NSView {
    Mouser(const CGRect& frame, Calls& told, std::string its)
        : NSView(Key{}, frame), calls(told), name(std::move(its)) {}
    void updateTrackingAreas() override {
        if (area)
            removeTrackingArea(area);
        using Options = NSTrackingArea::Options;
        area = NSTrackingArea::create(bounds(),
                                      Options::mouseEnteredAndExited | Options::mouseMoved |
                                          Options::activeInActiveApp,
                                      shared_from_this());
        addTrackingArea(area);
    }
    void mouseEntered(const NSEvent& event) override {
        calls.push_back("enter " + name);
        EXPECT_EQ(event.trackingArea, area);
        if (then)
            then();
    }
    void mouseExited(const NSEvent&) override { calls.push_back("exit " + name); }
    void mouseMoved(const NSEvent&) override { calls.push_back("move " + name); }
    void mouseDown(const NSEvent&) override { calls.push_back("down " + name); }
    void mouseUp(const NSEvent&) override { calls.push_back("up " + name); }

    Calls& calls;
    std::string name;
    std::shared_ptr<NSTrackingArea> area;
    std::function<void()> then;
};

class NSWindowMouse : public testing::Test {
protected:
    NSWindowMouse() {
        window->contentView()->addSubview(outer);
        outer->addSubview(inner);
    }
    void send(Type type, CGPoint at) { window->sendEvent({.type = type, .locationInWindow = at}); }
    Calls take() { return std::exchange(calls, {}); }

    Calls calls;
    std::shared_ptr<NSWindow> window = NSWindow::create({200, 100});
    std::shared_ptr<Mouser> outer =
        std::make_shared<Mouser>(CGRect(20, 20, 100, 60), calls, "outer");
    std::shared_ptr<Mouser> inner =
        std::make_shared<Mouser>(CGRect(10, 10, 20, 20), calls, "inner");
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
    EXPECT_EQ(take(), (Calls{"enter outer", "enter inner", "move outer", "move inner"}));
    send(Type::mouseMoved, {100, 35});
    EXPECT_EQ(take(), (Calls{"exit inner", "move outer"}));
    send(Type::mouseExited, {});
    EXPECT_EQ(take(), Calls{"exit outer"});
    send(Type::leftMouseDown, {35, 35});
    EXPECT_EQ(take(), (Calls{"enter outer", "enter inner", "down inner"}));
    // What is dragged from gets the release, wherever that is.
    send(Type::leftMouseUp, {500, 500});
    EXPECT_EQ(take(), (Calls{"exit outer", "exit inner", "up inner"}));
    NSApplication::shared().setActive(false);
    send(Type::mouseMoved, {35, 35});
    EXPECT_TRUE(take().empty());
    NSApplication::shared().setActive(true);
    // A larger area in place of one that the mouse is in is no new one.
    send(Type::mouseMoved, {35, 35});
    take();
    inner->setFrame({10, 10, 30, 30});
    send(Type::mouseMoved, {36, 36});
    EXPECT_EQ(take(), (Calls{"move outer", "move inner"}));
    inner->setHidden(true);
    send(Type::mouseMoved, {36, 36});
    EXPECT_EQ(take(), (Calls{"exit inner", "move outer"}));
    outer->removeFromSuperview();
    send(Type::mouseMoved, {36, 36});
    EXPECT_EQ(take(), Calls{"exit outer"});
    // A view that leaves while another is told is passed over.
    inner->setHidden(false);
    window->contentView()->addSubview(outer);
    outer->then = [this] { inner->removeFromSuperview(); };
    send(Type::mouseMoved, {31, 31});
    EXPECT_EQ(take(), (Calls{"enter outer", "move outer"}));
    // Once closed, the window is deaf.
    window->orderFront();
    window->close();
    send(Type::leftMouseDown, {31, 31});
    EXPECT_TRUE(take().empty());
    window->orderFront();
    send(Type::leftMouseDown, {31, 31});
    EXPECT_FALSE(take().empty());
}

TEST_F(NSWindowMouse, LetsAButtonActWhenItIsReleasedInside) {
    const auto button = NSButton::create({130, 20, 50, 30});
    button->setAction(Selector("act", [&] { calls.push_back("act"); }));
    window->contentView()->addSubview(button);
    send(Type::leftMouseDown, {150, 30});
    EXPECT_TRUE(button->isHighlighted());
    send(Type::leftMouseDragged, {10, 10});
    EXPECT_FALSE(button->isHighlighted());
    send(Type::leftMouseUp, {10, 10});
    EXPECT_TRUE(take().empty());
    send(Type::leftMouseDown, {150, 30});
    send(Type::leftMouseUp, {151, 31});
    EXPECT_EQ(take(), Calls{"act"});
    send(Type::leftMouseDragged, {150, 30});
    EXPECT_FALSE(button->isHighlighted()) << "it was released";
    button->setEnabled(false);
    send(Type::leftMouseDown, {150, 30});
    send(Type::leftMouseUp, {150, 30});
    EXPECT_TRUE(take().empty());
}

TEST(NSApplication, PerformsActionsOnLivingTargetsOnly) {
    struct Target {
        void plain() { calls.push_back("plain"); }
        void withButton(NSButton& sender) { calls.push_back("from " + sender.title()); }
        Calls calls;
    };
    const auto target = std::make_shared<Target>();
    NSApplication& application = NSApplication::shared();
    const auto button = NSButton::create({.title = "b"});
    const Selector withButton("withButton", &Target::withButton);
    EXPECT_TRUE(application.sendAction(Selector("plain", &Target::plain), target, nullptr));
    EXPECT_TRUE(application.sendAction(withButton, target, button));
    // A sender of another class, no sender, no target, and a target that has gone.
    EXPECT_FALSE(application.sendAction(withButton, target, NSView::create()));
    EXPECT_FALSE(application.sendAction(withButton, target, nullptr));
    EXPECT_FALSE(application.sendAction(withButton, {}, button));
    EXPECT_EQ(target->calls, (Calls{"plain", "from b"}));
    const std::weak_ptr<void> gone = std::make_shared<Target>();
    bool wasCalled = false;
    const Selector block("block", [&] { wasCalled = true; });
    EXPECT_FALSE(application.sendAction(block, gone, button));
    EXPECT_FALSE(wasCalled);
    EXPECT_TRUE(application.sendAction(block, {}, button));
    EXPECT_TRUE(wasCalled);
}
