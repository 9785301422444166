// Windows shown through Qt, without a screen.

#include "HostTest.h"

#include <zorvan/interface/NSTableView.h>
#include <zorvan/interface/TintedButton.h>
#include <zorvan/media/NSColor.h>
#include <zorvan/observation/DispatchQueue.h>

#include <QMenu>
#include <QPaintEvent>
#include <QTimer>

#include <stdexcept>
#include <thread>

namespace {

class QtWindowHostTest : public HostTest {
protected:
    QtWindowHostTest() { content->addSubview(button); }

    void clickAndCatch(NSView& view) {
        try {
            click(view);
        } catch (const std::exception&) { // which would come through Qt
        }
    }

    int presses = 0;
    const std::shared_ptr<TintedButton> button = [this] {
        auto made = TintedButton::create(
            {.title = "Press", .action = Selector("press", [this] { ++presses; })});
        made->setFrame({20, 20, 120, 40});
        made->setBackgroundHoverGradient(
            NSGradient::make({.colors = {NSColor::red, NSColor::blue}}));
        return made;
    }();
};

/// Draws itself in one colour and writes down what it is told.
class Probe : public NSView {
public:
    static std::shared_ptr<Probe> create(const CGRect& frame) {
        return std::make_shared<Probe>(Key{}, frame);
    }
    using NSView::NSView;

    void draw(Canvas& canvas) const override {
        clips.push_back(canvas.clip());
        canvas.fill(bounds(), colour);
    }
    bool acceptsFirstResponder() const override { return true; }
    void mouseDown(const NSEvent& with) override { seen += std::to_string(with.clickCount); }
    void mouseDragged(const NSEvent&) override { seen += 'd'; }
    void mouseUp(const NSEvent&) override { seen += 'u'; }
    void rightMouseDown(const NSEvent&) override { seen += 'r'; }
    void otherMouseDown(const NSEvent&) override { seen += 'o'; }
    void scrollWheel(const NSEvent& with) override {
        seen += "w" + std::to_string(static_cast<int>(with.scrollingDeltaY));
    }
    void keyDown(const NSEvent& with) override {
        if (with.characters == "?")
            return NSView::keyDown(with);
        seen += with.characters.empty() ? "#" + std::to_string(with.keyCode) : with.characters;
        flags = with.modifierFlags;
    }

    Canvas::Colour colour{10, 200, 30};
    mutable std::vector<CGRect> clips;
    std::string seen;
    NSEvent::ModifierFlags flags;
};

TEST_F(QtWindowHostTest, ShowsTheTreeOfViewsAsItChanges) {
    const auto outer = Probe::create({20, 80, 100, 60});
    const auto inner = Probe::create({10, 5, 30, 20});
    inner->colour = {200, 0, 0};
    outer->addSubview(inner);
    content->addSubview(outer);
    settle();
    EXPECT_EQ(placeOf(*outer), QRect(20, 20, 100, 60)) << "from the top";
    EXPECT_EQ(placeOf(*inner), QRect(30, 55, 30, 20));
    EXPECT_EQ(colourAt({25, 25}), QColor(10, 200, 30));
    EXPECT_EQ(colourAt({45, 65}), QColor(200, 0, 0));
    inner->setFrame({0, 40, 30, 20});
    settle();
    EXPECT_EQ(placeOf(*inner), QRect(20, 20, 30, 20));
    inner->setHidden(true);
    settle();
    EXPECT_EQ(colourAt({25, 25}), QColor(10, 200, 30));
    inner->setHidden(false);
    outer->setBoundsOrigin({5, 10});
    settle();
    EXPECT_EQ(placeOf(*inner), QRect(15, 30, 30, 20)) << "scrolled";
    inner->removeFromSuperview();
    settle();
    EXPECT_FALSE(widgetFor(*inner));
    inner->setFrame({0, 0, 5, 5});
    outer->setToolTip("a <b>");
    outer->setCursor(NSCursor::pointingHand);
    settle();
    EXPECT_EQ(widgetFor(*outer)->toolTip(), "a &lt;b&gt;");
    EXPECT_EQ(widgetFor(*outer)->cursor().shape(), Qt::PointingHandCursor);
    EXPECT_EQ(host->widget().windowTitle(), "Window");
    window->setTitle("Other");
    EXPECT_EQ(host->widget().windowTitle(), "Other");
}

TEST_F(QtWindowHostTest, DrawsOnlyWhatHasChanged) {
    const auto probe = Probe::create({20, 80, 100, 60});
    content->addSubview(probe);
    settle();
    probe->clips.clear();
    button->setTitle("Again");
    settle();
    EXPECT_TRUE(probe->clips.empty()) << "a view beside";
    probe->colour = {0, 0, 250};
    probe->setNeedsDisplay(CGRect(50, 10, 20, 10));
    settle();
    ASSERT_EQ(probe->clips.size(), 1u);
    EXPECT_EQ(probe->clips[0], CGRect(49, 9, 22, 12));
    EXPECT_EQ(colourAt(placeOf(*probe).topLeft() + QPoint(60, 45)), QColor(0, 0, 250));
}

/// What is drawn of a window, in its coordinates.
class Painted : public QObject {
public:
    explicit Painted(QWidget& window) : window_(window) { qApp->installEventFilter(this); }
    QRegion take() { return std::exchange(region_, {}); }
    bool isEmpty() const { return region_.isEmpty(); }

protected:
    bool eventFilter(QObject* receiver, QEvent* event) override {
        auto* const widget = qobject_cast<QWidget*>(receiver);
        if (event->type() == QEvent::Paint && widget && widget->window() == &window_)
            region_ += static_cast<QPaintEvent*>(event)->region().translated(
                widget->mapTo(&window_, QPoint()));
        return false;
    }

private:
    QWidget& window_;
    QRegion region_;
};

TEST_F(QtWindowHostTest, OnlyWhatLightsUpOrBlinksIsDrawnAnew) {
    const auto field = addSearchField();
    const auto table = NSTableView::create({150, 0, 90, 160});
    content->addSubview(table);
    settle();
    QWidget& top = host->widget();
    Painted painted(top);
    const auto isWithin = [&](QWidget& widget) {
        const QRegion drawn = painted.take();
        const QRect place(widget.mapTo(&top, QPoint()), widget.size());
        return !drawn.isEmpty() && QRegion(place).united(drawn) == QRegion(place);
    };
    QWidget& pushed = *widgetFor(*button);
    QWidget& edit = *widgetFor(*field);
    painted.take();
    QTest::mouseMove(&pushed, {60, 4});
    settle();
    EXPECT_TRUE(isWithin(pushed)) << "lights up";
    QTest::mouseMove(&top, {2, top.height() - 2});
    settle();
    EXPECT_TRUE(isWithin(pushed));
    window->makeFirstResponder(field);
    settle();
    painted.take();
    QTest::keyClick(&edit, 'a');
    settle();
    EXPECT_TRUE(isWithin(edit)) << "typing";
    QApplication::setCursorFlashTime(20);
    window->makeFirstResponder(nullptr);
    window->makeFirstResponder(field);
    settle();
    painted.take();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !painted.isEmpty(); }, 60000));
    EXPECT_TRUE(isWithin(edit)) << "the caret";
}

TEST_F(QtWindowHostTest, SizesFollowEachOther) {
    const QSize before = host->widget().size();
    host->widget().resize(before + QSize(60, 40));
    settle();
    EXPECT_EQ(window->contentSize(), CGSize(300, 200));
    window->setContentSize({260, 180});
    settle();
    EXPECT_EQ(host->widget().size(), before + QSize(20, 20));
    addSearchField();
    EXPECT_EQ(window->contentSize(), CGSize(260, 180)) << "a bar comes";
    EXPECT_EQ(placeOf(*content).size(), QSize(260, 180));
    host->widget().showMaximized();
    settle();
    const QSize whole = host->widget().size();
    window->setToolbar(nullptr);
    settle();
    EXPECT_EQ(host->widget().size(), whole) << "the desktop says how large";
    EXPECT_EQ(window->contentSize().height, whole.height());
    window->setContentMinSize({150, 90});
    host->widget().showNormal();
    settle();
    host->widget().resize(1, 1);
    settle();
    EXPECT_EQ(window->contentSize(), CGSize(150, 90));
}

TEST_F(QtWindowHostTest, ViewsAreToldOfTheMouseAndTheWheel) {
    click(*button);
    EXPECT_EQ(presses, 1);
    const auto probe = Probe::create({160, 20, 60, 60});
    content->addSubview(probe);
    settle();
    QWidget& widget = *widgetFor(*probe);
    QTest::mouseClick(&widget, Qt::LeftButton, {}, {20, 20});
    QTest::mouseDClick(&widget, Qt::LeftButton, {}, {20, 20});
    EXPECT_EQ(probe->seen, "1u2");
    probe->seen.clear();
    QTest::mouseClick(&widget, Qt::RightButton, {}, {20, 20});
    QTest::mouseClick(&widget, Qt::MiddleButton, {}, {20, 20});
    EXPECT_EQ(probe->seen, "ro");
    probe->seen.clear();
    QTest::mousePress(&widget, Qt::LeftButton, {}, QPoint(2, 50));
    QMouseEvent drag(QEvent::MouseMove, QPointF(999, 999), widget.mapToGlobal(QPointF(999, 999)),
                     Qt::NoButton, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&widget, &drag);
    QTest::mouseRelease(&widget, Qt::LeftButton, {}, QPoint(999, 999));
    EXPECT_EQ(probe->seen, "1du") << "also outside";
    probe->seen.clear();
    const QPointF place(20, 20);
    QWheelEvent wheel(place, place, {}, {0, 120}, Qt::NoButton, {}, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&widget, &wheel);
    EXPECT_EQ(probe->seen, "w" + std::to_string(QApplication::wheelScrollLines() * 20));
    const QColor plain = colourAt(placeOf(*button).topLeft() + QPoint(60, 4));
    QTest::mouseMove(widgetFor(*button), {60, 4});
    settle();
    EXPECT_NE(colourAt(placeOf(*button).topLeft() + QPoint(60, 4)), plain) << "lights up";
}

TEST_F(QtWindowHostTest, TheKeyboardReachesEverything) {
    const auto probe = Probe::create({160, 20, 60, 60});
    content->addSubview(probe);
    const auto field = addSearchField();
    probe->setMenu(NSMenu::create());
    QWidget& widget = host->widget();
    EXPECT_TRUE(window->makeFirstResponder(field));
    settle();
    EXPECT_TRUE(widgetFor(*field)->hasFocus());
    press(Qt::Key_Tab);
    EXPECT_TRUE(widgetFor(*button)->hasFocus());
    EXPECT_EQ(window->firstResponder(), button);
    press(Qt::Key_Space);
    press(Qt::Key_Return);
    press(Qt::Key_Enter, Qt::KeypadModifier);
    EXPECT_EQ(presses, 3);
    press(Qt::Key_Tab);
    EXPECT_EQ(window->firstResponder(), probe);
    QTest::keyClicks(QApplication::focusWidget(), "aB");
    press(Qt::Key_Left, Qt::ShiftModifier | Qt::ControlModifier);
    EXPECT_EQ(probe->seen, "aB#123");
    using Flags = NSEvent::ModifierFlags;
    EXPECT_EQ(probe->flags, Flags::shift | Flags::control);
    press(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(window->firstResponder(), button);
    press(Qt::Key_F10);
    EXPECT_TRUE(widgetFor(*field)->hasFocus()) << "the first tool";
    probe->setNextKeyView(field);
    window->makeFirstResponder(probe);
    press(Qt::Key_Tab);
    EXPECT_EQ(window->firstResponder(), field);
    EXPECT_EQ(&widget, QApplication::activeWindow());
}

TEST_F(QtWindowHostTest, TheKeyboardIsInTheContentAtFirst) {
    const auto field = addSearchField();
    const auto reopen = [this](const std::shared_ptr<NSView>& responder) {
        host = nullptr;
        window->makeFirstResponder(responder);
        host = QtWindowHost::show(window);
        host->widget().activateWindow();
        settle();
    };
    reopen(nullptr);
    EXPECT_EQ(window->firstResponder(), button);
    EXPECT_TRUE(widgetFor(*button)->hasFocus());
    reopen(field);
    EXPECT_TRUE(widgetFor(*field)->hasFocus()) << "what the program wants";
    button->setEnabled(false);
    reopen(nullptr);
    EXPECT_FALSE(window->firstResponder());
    EXPECT_FALSE(widgetFor(*field)->hasFocus()) << "not the first tool";
    press(Qt::Key_F10);
    EXPECT_TRUE(widgetFor(*field)->hasFocus());
}

TEST_F(QtWindowHostTest, KeyEquivalentsWorkWhereverTheKeyboardIs) {
    std::string done;
    const auto does = [&done](const char* what) {
        return Selector(what, [&done, what] { done += what; });
    };
    const auto probe = Probe::create({160, 20, 60, 60});
    content->addSubview(probe);
    button->setKeyEquivalent("\r");
    const auto cancel = NSButton::create({.title = "Cancel", .action = does("x")});
    cancel->setKeyEquivalent("\x1b");
    content->addSubview(cancel);
    const auto item = NSMenuItem::create("Copy", does("c"));
    item->setKeyEquivalent("c");
    const auto bar = DynamicToolbar::create({"bar"});
    bar->addItemSet();
    bar->addItem({.createMenuButton = [&](MenuButtonSettings& settings) {
        settings.displayName = "More";
        settings.menu = NSMenu::create();
        settings.menu->addItem(item);
    }});
    window->setToolbar(bar->toolbar());
    bar->reloadDisplayedItems();
    window->makeFirstResponder(probe);
    settle();
    press(Qt::Key_C, Qt::ControlModifier);
    press(Qt::Key_Escape);
    EXPECT_EQ(done, "") << "the view took the keys itself";
    window->makeFirstResponder(nullptr);
    const auto field = addSearchField();
    window->makeFirstResponder(field);
    settle();
    press(Qt::Key_Return);
    press(Qt::Key_Escape);
    EXPECT_EQ(presses, 1) << "Enter in the field";
    EXPECT_EQ(done, "x");
    window->setToolbar(bar->toolbar());
    settle();
    widgetFor(*cancel)->setFocus();
    press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(done, "xc");
    cancel->setEnabled(false);
    widgetFor(*button)->setFocus();
    press(Qt::Key_Escape);
    EXPECT_EQ(done, "xc");
}

TEST_F(QtWindowHostTest, TypingGoesIntoTheSearchField) {
    const auto field = addSearchField();
    ASSERT_TRUE(field);
    auto* const edit = qobject_cast<QLineEdit*>(widgetFor(*field));
    ASSERT_TRUE(edit);
    EXPECT_EQ(edit->placeholderText(), "Search");
    QTest::mouseClick(edit, Qt::LeftButton);
    QTest::keyClicks(edit, "abd");
    press(Qt::Key_Left);
    QTest::keyClicks(edit, "c");
    EXPECT_EQ(field->stringValue(), "abcd");
    EXPECT_EQ(edit->cursorPosition(), 3) << "the caret stays";
    EXPECT_EQ(searches, 4);
    QTest::keySequence(edit, QKeySequence::Undo);
    EXPECT_NE(field->stringValue(), "abcd");
    QTest::keySequence(edit, QKeySequence::SelectAll);
    QGuiApplication::clipboard()->setText("two\nlines");
    QTest::keySequence(edit, QKeySequence::Paste);
    EXPECT_EQ(field->stringValue(), "two lines");
    press(Qt::Key_Escape);
    EXPECT_EQ(field->stringValue(), "");
    searches = 0;
    field->setStringValue("set");
    settle();
    EXPECT_EQ(edit->text(), "set");
    EXPECT_EQ(searches, 0) << "only for what people do";
    field->setEnabled(false);
    EXPECT_FALSE(edit->isEnabled());
}

TEST_F(QtWindowHostTest, ASplitViewIsASplitter) {
    const auto split = NSSplitView::create();
    split->addSubview(Probe::create({}));
    split->addSubview(Probe::create({}));
    window->setContentView(split);
    split->setPosition(80, 0);
    settle();
    auto* const splitter = qobject_cast<QSplitter*>(widgetFor(*split));
    ASSERT_TRUE(splitter);
    EXPECT_EQ(splitter->sizes(), (QList<int>{80, 159}));
    QWidget* const handle = splitter->handle(1);
    handle->setFocus();
    press(Qt::Key_Right);
    EXPECT_EQ(split->position(0), 90) << "by the keyboard";
    QTest::mousePress(handle, Qt::LeftButton, {}, {0, 50});
    QMouseEvent drag(QEvent::MouseMove, QPointF(-30, 50), handle->mapToGlobal(QPointF(-30, 50)),
                     Qt::NoButton, Qt::LeftButton, {});
    QCoreApplication::sendEvent(handle, &drag);
    QTest::mouseRelease(handle, Qt::LeftButton, {}, {0, 50});
    settle();
    const double dragged = split->position(0).value();
    EXPECT_NEAR(dragged, 60, 4) << "the handle is held anywhere in its reach";
    EXPECT_EQ(split->subviews()[0]->frame().width(), dragged);
    host->widget().resize(host->widget().size() + QSize(100, 0));
    settle();
    EXPECT_EQ(split->position(0), dragged) << "another size goes to the last";
    split->setPosition(0, 0);
    settle();
    EXPECT_EQ(splitter->sizes()[0], 0);
    split->subviews()[0]->removeFromSuperview();
    settle();
    EXPECT_EQ(splitter->count(), 1);
}

TEST_F(QtWindowHostTest, IsTheMainWindowWhileItIsActive) {
    EXPECT_TRUE(window->isMainWindow());
    const auto other = QtWindowHost::show(NSWindow::create({100, 100}));
    other->widget().activateWindow();
    settle();
    EXPECT_FALSE(window->isMainWindow());
    host->widget().activateWindow();
    settle();
    EXPECT_TRUE(window->isMainWindow());
}

TEST_F(QtWindowHostTest, ClosesFromEitherSide) {
    int closed = 0;
    const auto observer = NSNotificationCenter::defaultCenter()->addObserver(
        NSNotificationName(NSWindow::willCloseNotification), nullptr, nullptr,
        [&](const Notification&) { ++closed; });
    host->widget().close();
    EXPECT_EQ(closed, 1);
    EXPECT_FALSE(window->isVisible());
    window->makeMainWindow();
    EXPECT_TRUE(host->widget().isVisible()) << "opened again";
    QTimer::singleShot(0, [&] { window->close(); });
    QTimer giveUp;
    QObject::connect(&giveUp, &QTimer::timeout, [] { QCoreApplication::exit(1); });
    giveUp.start(20000);
    EXPECT_EQ(QCoreApplication::exec(), 0) << "the last window ends the event loop";
    EXPECT_FALSE(host->widget().isVisible());
    EXPECT_EQ(closed, 2);
    NSNotificationCenter::defaultCenter()->removeObserver(observer);
}

TEST_F(QtWindowHostTest, AHostMayGoWhileItsWindowIsToldOfAClick) {
    button->setAction(Selector("go", [this] { host = nullptr; }));
    QTest::mouseClick(widgetFor(*button), Qt::LeftButton);
    EXPECT_FALSE(host);
    button->setTitle("Not shown");
    settle();
    host = QtWindowHost::show(window);
    settle();
    EXPECT_TRUE(widgetFor(*button));
}

TEST_F(QtWindowHostTest, EverythingMayGoInItsOwnAction) {
    const std::function<void()> ends[] = {
        [this] { button->removeFromSuperview(); },
        [this] { window->setContentView(nullptr); },
        [this] { window->setToolbar(nullptr); },
        [this] { window->close(); },
        [this] {
            window->close();
            host = nullptr;
        },
    };
    const auto field = addSearchField();
    char letter = 'a';
    for (const auto& end : ends) {
        for (const bool isTyped : {false, true}) {
            const auto reset = [&] {
                window->setContentView(content);
                content->addSubview(button);
                window->setToolbar(searchBar->toolbar());
                if (!host)
                    host = QtWindowHost::show(window);
                window->makeMainWindow();
                settle();
            };
            reset();
            bool isDone = false;
            const Selector action("end", [&] {
                isDone = true;
                end();
            });
            button->setAction(isTyped ? std::optional<Selector>() : action);
            field->setAction(isTyped ? std::optional(action) : std::nullopt);
            QWidget* const widget = isTyped ? widgetFor(*field) : widgetFor(*button);
            ASSERT_TRUE(widget);
            if (isTyped)
                QTest::keyClick(widget, letter++); // another text in any case
            else
                QTest::mouseClick(widget, Qt::LeftButton);
            settle();
            EXPECT_TRUE(isDone) << &end - ends << (isTyped ? " typed" : " clicked");
        }
    }
}

TEST_F(QtWindowHostTest, OpensMenus) {
    const auto menu = NSMenu::create("Menu"), inner = NSMenu::create();
    std::string performed;
    const auto perform = [&](const char* name) {
        return Selector(name, [&performed, name] { performed += name; });
    };
    menu->addItem(NSMenuItem::create("Cut & paste", perform("a")));
    menu->addItem(NSMenuItem::separatorItem());
    const auto more = NSMenuItem::create("More");
    inner->addItem(NSMenuItem::create("Inner", perform("b")));
    more->setSubmenu(inner);
    menu->addItem(more);
    menu->popUp();
    settle();
    auto* const shown = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_TRUE(shown);
    const auto actions = shown->actions();
    ASSERT_EQ(actions.size(), 3);
    EXPECT_EQ(actions[0]->text(), "Cut && paste");
    EXPECT_TRUE(actions[1]->isSeparator());
    ASSERT_TRUE(actions[2]->menu());
    actions[2]->menu()->actions()[0]->trigger();
    actions[0]->trigger();
    EXPECT_EQ(performed, "ba");
    shown->close();
}

TEST_F(QtWindowHostTest, QtRunsTheMainQueue) {
    std::thread other([] {
        DispatchQueue::main()->sync([] {});
        DispatchQueue::main()->async([] { QCoreApplication::exit(7); });
    });
    EXPECT_EQ(QCoreApplication::exec(), 7);
    other.join();
}

using QtWindowHostDeathTest = QtWindowHostTest;

TEST_F(QtWindowHostDeathTest, StopsTheProgram) {
    EXPECT_DEATH((void)QtWindowHost::show(window), "The window has a host already.");
    EXPECT_DEATH((void)QtWindowHost::show(nullptr), "There is no window to show.");
    const Selector failing("fail", [] { throw std::runtime_error("no way"); });
    button->setAction(failing);
    EXPECT_DEATH(clickAndCatch(*button), "no way");
    const auto menu = NSMenu::create();
    menu->addItem(NSMenuItem::create("Fail", failing));
    menu->popUp();
    auto* const shown = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_TRUE(shown);
    const auto trigger = [&] {
        try {
            shown->actions()[0]->trigger();
        } catch (const std::exception&) { // which would come through Qt
        }
    };
    EXPECT_DEATH(trigger(), "no way");
    shown->close();
}

} // namespace
