#include <tests/Testing.h>

#include <zorvan/interface/NSApplication.h>
#include <zorvan/interface/NSButton.h>
#include <zorvan/interface/NSWindow.h>
#include <zorvan/observation/NoteSubscriber.h>

using Type = NSEvent::EventType;
using Calls = std::vector<std::string>;

namespace {

/// Tells of the notifications of windows, and does something then.
class Watch {
public:
    explicit Watch(std::function<void(const std::string&)> then = [](const std::string&) {})
        : then_(std::move(then)) {
        for (const auto name :
             {NSWindow::didBecomeMainNotification, NSWindow::didResignMainNotification,
              NSWindow::willCloseNotification, NSWindow::didResizeNotification})
            observers_.push_back(NSNotificationCenter::defaultCenter()->addObserver(
                NSNotificationName(name), nullptr, nullptr, [this](const Notification& told) {
                    const auto window = std::static_pointer_cast<const NSWindow>(told.object);
                    const std::string name = told.name.rawValue().substr(8);
                    notes.push_back(window->title() + " " +
                                    name.substr(0, name.size() - std::strlen("Notification")));
                    then_(notes.back());
                }));
    }
    ~Watch() {
        for (const auto& observer : observers_)
            NSNotificationCenter::defaultCenter()->removeObserver(observer);
    }
    Calls notes;

private:
    std::function<void(const std::string&)> then_;
    std::vector<std::shared_ptr<NotificationObserver>> observers_;
};

/// Tells of the mouse.
struct Mouser : NSView {
    static std::shared_ptr<Mouser> create(const CGRect& frame, Calls& calls, std::string name) {
        return std::make_shared<Mouser>(Key{}, frame, calls, std::move(name));
    }
    Mouser(Key key, const CGRect& frame, Calls& told, std::string its)
        : NSView(key, frame), calls(told), name(std::move(its)) {}
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
    std::shared_ptr<Mouser> outer = Mouser::create({20, 20, 100, 60}, calls, "outer");
    std::shared_ptr<Mouser> inner = Mouser::create({10, 10, 20, 20}, calls, "inner");
};

} // namespace

TEST(NSWindow, HandsTheMainStatusOn) {
    const auto a = NSWindow::create({10, 10}, "a"), b = NSWindow::create({10, 10}, "b");
    Watch watch;
    EXPECT_FALSE(a->isVisible());
    a->makeMainWindow();
    a->makeMainWindow();
    EXPECT_TRUE(a->isVisible());
    EXPECT_EQ(NSApplication::shared().mainWindow(), a);
    b->makeMainWindow();
    EXPECT_FALSE(a->isMainWindow());
    b->close();
    b->close();
    EXPECT_EQ(NSApplication::shared().mainWindow(), nullptr);
    EXPECT_EQ(watch.notes, (Calls{"a DidBecomeMain", "a DidResignMain", "b DidBecomeMain",
                                  "b WillClose", "b DidResignMain"}));
}

TEST(NSWindow, MayBeClosedByWhoeverIsTold) {
    const std::pair<std::string, Calls> table[] = {
        // Before it has become main, it does not become it.
        {"a DidResignMain", {"a DidBecomeMain", "a DidResignMain", "b WillClose"}},
        {"b DidBecomeMain",
         {"a DidBecomeMain", "a DidResignMain", "b DidBecomeMain", "b WillClose",
          "b DidResignMain"}},
    };
    for (const auto& [closing, notes] : table) {
        const auto a = NSWindow::create({10, 10}, "a");
        auto b = NSWindow::create({10, 10}, "b");
        Watch watch([&, at = closing](const std::string& note) {
            if (note == at || note == "b WillClose")
                b->close();
        });
        a->makeMainWindow();
        b->makeMainWindow();
        EXPECT_EQ(watch.notes, notes);
        EXPECT_FALSE(b->isMainWindow());
        EXPECT_FALSE(b->isVisible());
    }
    // The last holder lets go while it is told.
    auto window = NSWindow::create({10, 10}, "a");
    const std::weak_ptr gone = window;
    {
        Watch watch([&](const std::string&) { window.reset(); });
        window->makeMainWindow();
        EXPECT_EQ(watch.notes.size(), 1u);
    }
    EXPECT_TRUE(gone.expired());
    EXPECT_EQ(NSApplication::shared().mainWindow(), nullptr);
    // Another may become main meanwhile.
    const auto a = NSWindow::create({10, 10}, "a"), b = NSWindow::create({10, 10}, "b"),
               c = NSWindow::create({10, 10}, "c");
    Watch watch([&](const std::string& note) {
        if (note == "a DidResignMain")
            c->makeMainWindow();
    });
    a->makeMainWindow();
    b->makeMainWindow();
    EXPECT_TRUE(c->isMainWindow());
    EXPECT_FALSE(b->isMainWindow());
    c->close();
}

TEST(NSLayoutConstraint, KeepsAViewFromBecomingSmaller) {
    const auto view = NSView::create({1, 2, 30, 40});
    const auto width = view->widthAnchor().constraintGreaterThanOrEqualToConstant(50);
    const auto height = view->heightAnchor().constraintGreaterThanOrEqualToConstant(-NAN);
    EXPECT_EQ(height->constant(), 0);
    EXPECT_EQ(view->frame(), CGRect(1, 2, 30, 40)) << "none is active";
    width->setActive(true);
    height->setActive(true);
    EXPECT_EQ(view->frame(), CGRect(1, 2, 50, 40));
    view->setFrame({0, 0, 10, 10});
    EXPECT_EQ(view->frame(), CGRect(0, 0, 50, 10));
    view->layoutSubtreeIfNeeded();
    height->setConstant(5);
    EXPECT_TRUE(view->needsLayout()) << "though it is large enough";
    height->setConstant(20);
    EXPECT_EQ(view->fittingSize(), CGSize(50, 20));
    width->setActive(false);
    view->setFrame({0, 0, 10, 10});
    EXPECT_EQ(view->frame(), CGRect(0, 0, 10, 20));
    EXPECT_EQ(height->firstAttribute(), NSLayoutAttribute::height);
}

TEST(NSWindow, KeepsItsContentUnderBarsAndTellsOfItsSize) {
    const auto window = NSWindow::create({200, 100}, "w");
    Watch watch;
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
}

TEST(NSWindow, AsksOnceToBeShownAnew) {
    const auto window = NSWindow::create({60, 40});
    struct Counter : NSWindowObserver {
        void viewsNeedDisplay() override { ++asked; }
        int asked = 0;
    };
    const auto counter = std::make_shared<Counter>();
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
    inner->setHidden(true);
    NSApplication::shared().setActive(false);
    send(Type::mouseMoved, {35, 35});
    EXPECT_TRUE(take().empty());
    NSApplication::shared().setActive(true);
    send(Type::mouseMoved, {35, 35});
    EXPECT_EQ(take(), (Calls{"enter outer", "move outer"}));
}

TEST_F(NSWindowMouse, FollowsAreasThatChangeUnderTheMouse) {
    send(Type::mouseMoved, {35, 35});
    take();
    // A larger area in place of one that the mouse is in is no new one.
    inner->setFrame({10, 10, 30, 30});
    send(Type::mouseMoved, {36, 36});
    EXPECT_EQ(take(), (Calls{"move outer", "move inner"}));
    inner->setFrame({10, 10, 2, 2});
    send(Type::mouseMoved, {36, 36});
    EXPECT_EQ(take(), (Calls{"exit inner", "move outer"}));
    outer->removeFromSuperview();
    send(Type::mouseMoved, {36, 36});
    EXPECT_EQ(take(), Calls{"exit outer"});
    // A view that leaves while another is told is passed over.
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
    auto target = std::make_shared<Target>();
    const auto kept = target;
    const std::weak_ptr<void> weak = target;
    NSApplication& application = NSApplication::shared();
    const auto button = NSButton::create({.title = "b"});
    const Selector withButton("withButton", &Target::withButton);
    EXPECT_TRUE(application.sendAction(Selector("plain", &Target::plain), weak, nullptr));
    EXPECT_TRUE(application.sendAction(withButton, weak, button));
    // A sender of another class, no sender, no target, and a target that has gone.
    EXPECT_FALSE(application.sendAction(withButton, weak, NSView::create()));
    EXPECT_FALSE(application.sendAction(withButton, weak, nullptr));
    EXPECT_FALSE(application.sendAction(withButton, {}, button));
    EXPECT_EQ(kept->calls, (Calls{"plain", "from b"}));
    std::weak_ptr<void> gone = std::make_shared<Target>();
    bool wasCalled = false;
    const Selector block("block", [&] { wasCalled = true; });
    EXPECT_FALSE(application.sendAction(block, gone, button));
    EXPECT_FALSE(wasCalled);
    EXPECT_TRUE(application.sendAction(block, {}, button));
    EXPECT_TRUE(wasCalled);
}
