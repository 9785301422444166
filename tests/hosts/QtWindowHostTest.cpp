// Windows shown through Qt, without a screen.

#include "HostTest.h"

#include <zorvan/interface/TintedButton.h>
#include <zorvan/media/NSColor.h>

#include <QDialog>
#include <QPaintEvent>
#include <QWheelEvent>

namespace {

class QtWindowHostTest : public HostTest {
protected:
    QtWindowHostTest() { content->addSubview(button); }

    const std::shared_ptr<TintedButton> button = [this] {
        auto made = TintedButton::create({.title = "Press", .action = does("p")});
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

    void draw(Canvas& canvas) const override { canvas.fill(bounds(), colour); }
    bool acceptsFirstResponder() const override { return true; }
    bool resignFirstResponder() override { return !keeps; }
    void mouseDown(const NSEvent& with) override { seen += std::to_string(with.clickCount); }
    void mouseDragged(const NSEvent&) override { seen += 'd'; }
    void mouseUp(const NSEvent&) override { seen += 'u'; }
    void rightMouseDown(const NSEvent&) override { seen += 'r'; }
    void otherMouseDown(const NSEvent&) override { seen += 'o'; }
    void scrollWheel(const NSEvent& with) override {
        seen += "w" + std::to_string(static_cast<int>(with.scrollingDeltaY));
    }
    void keyDown(const NSEvent& with) override {
        seen += with.characters.empty() ? "#" + std::to_string(with.keyCode) : with.characters;
        if (with.characters == "?")
            NSView::keyDown(with);
        flags = with.modifierFlags;
    }

    Canvas::Colour colour{10, 200, 30};
    std::string seen;
    bool keeps = false;
    NSEvent::ModifierFlags flags;
};

TEST_F(QtWindowHostTest, ShowsTheTreeOfViewsAsItChanges) {
    const auto outer = Probe::create({20, 80, 100, 60});
    const auto inner = Probe::create({10, 5, 30, 20});
    inner->colour = {200, 0, 0};
    outer->addSubview(inner);
    content->addSubview(outer);
    EXPECT_EQ(placeOf(*outer), QRect(20, 20, 100, 60)) << "from the top";
    EXPECT_EQ(placeOf(*inner), QRect(30, 55, 30, 20));
    EXPECT_EQ(colourAt({45, 65}), QColor(200, 0, 0));
    inner->setHidden(true);
    EXPECT_EQ(colourAt({45, 65}), QColor(10, 200, 30));
    inner->setHidden(false);
    inner->setFrame({0, 40, 30, 20});
    outer->setBoundsOrigin({5, 10});
    EXPECT_EQ(placeOf(*inner), QRect(15, 30, 30, 20)) << "scrolled";
    const auto behind = Probe::create({0, 0, 100, 60});
    outer->addSubview(behind);
    EXPECT_EQ(colourAt({25, 35}), QColor(10, 200, 30)) << "above";
    outer->addSubview(inner);
    EXPECT_EQ(colourAt({25, 35}), QColor(200, 0, 0)) << "another order";
    inner->removeFromSuperview();
    EXPECT_FALSE(widgetFor(*inner));
    outer->setToolTip("a <b>");
    outer->setCursor(NSCursor::pointingHand);
    EXPECT_EQ(widgetFor(*outer)->toolTip(), "<p>a &lt;b&gt;</p>");
    outer->setToolTip("a & \"b\"");
    EXPECT_EQ(widgetFor(*outer)->toolTip(), "a & \"b\"");
    EXPECT_EQ(widgetFor(*outer)->cursor().shape(), Qt::PointingHandCursor);
    outer->setCursor(NSCursor::arrow);
    EXPECT_EQ(widgetFor(*outer)->cursor().shape(), Qt::ArrowCursor);
    window->setTitle("Other");
    EXPECT_EQ(top().windowTitle(), "Other");
}

/// What is drawn of a window, in its coordinates.
class Painted : public QObject {
public:
    explicit Painted(QWidget& window) : window_(window) { qApp->installEventFilter(this); }
    QRegion take() { return std::exchange(region_, {}); }

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

TEST_F(QtWindowHostTest, DrawsOnlyWhatHasChanged) {
    const auto field = addSearchField();
    const auto probe = Probe::create({150, 0, 90, 160});
    content->addSubview(probe);
    Painted painted(top());
    const auto drawnBy = [&](const std::function<void()>& act) {
        settle();
        painted.take();
        act();
        settle();
        return painted.take();
    };
    const auto isWithin = [&](const NSView& view, const QRegion& drawn) {
        const QRect place(inWindow(*widgetFor(view)), widgetFor(view)->size());
        return !drawn.isEmpty() && QRegion(place).united(drawn) == QRegion(place);
    };
    EXPECT_EQ(drawnBy([&] {
                  probe->colour = {0, 0, 250};
                  probe->setNeedsDisplay(CGRect(50, 10, 20, 10));
              }),
              QRect(49, 139, 22, 12).translated(inWindow(*widgetFor(*probe))));
    EXPECT_EQ(colourAt(placeOf(*probe).topLeft() + QPoint(60, 145)), QColor(0, 0, 250));
    for (const QPoint at : {QPoint(60, 4), QPoint(-2, -2)}) // lights up, and goes out
        EXPECT_TRUE(isWithin(*button, drawnBy([&] { QTest::mouseMove(widgetFor(*button), at); })));
    window->makeFirstResponder(field);
    EXPECT_TRUE(isWithin(*field, drawnBy([&] { QTest::keyClick(widgetFor(*field), 'a'); })));
}

TEST_F(QtWindowHostTest, SizesFollowEachOther) {
    const QSize before = top().size();
    top().resize(before + QSize(60, 40));
    EXPECT_EQ(window->contentSize(), CGSize(300, 200));
    window->setContentSize({260, 180});
    EXPECT_EQ(top().size(), before + QSize(20, 20));
    addSearchField();
    EXPECT_EQ(window->contentSize(), CGSize(260, 180)) << "a bar comes";
    EXPECT_EQ(placeOf(*content).size(), QSize(260, 180));
    top().showMaximized();
    const QSize whole = top().size();
    window->setToolbar(nullptr);
    EXPECT_EQ(top().size(), whole) << "the desktop says how large";
    EXPECT_EQ(window->contentSize().height, whole.height());
    window->setContentMinSize({150, 90});
    top().showNormal();
    top().resize(1, 1);
    EXPECT_EQ(window->contentSize(), CGSize(150, 90));
}

TEST_F(QtWindowHostTest, ViewsAreToldOfTheMouseAndTheWheel) {
    click(*button);
    EXPECT_EQ(done, "p");
    const auto probe = Probe::create({160, 20, 60, 60});
    content->addSubview(probe);
    QWidget& widget = *widgetFor(*probe);
    const QPoint place(20, 20);
    QTest::mouseClick(&widget, Qt::LeftButton, {}, place);
    QTest::mouseDClick(&widget, Qt::LeftButton, {}, place);
    QTest::mouseClick(&widget, Qt::RightButton, {}, place);
    QTest::mouseClick(&widget, Qt::MiddleButton, {}, place);
    EXPECT_EQ(std::exchange(probe->seen, {}), "1u2ro");
    QTest::mousePress(&widget, Qt::LeftButton, {}, QPoint(2, 50));
    drag(widget, {999, 999});
    QTest::mouseRelease(&widget, Qt::LeftButton, {}, QPoint(999, 999));
    EXPECT_EQ(std::exchange(probe->seen, {}), "1du") << "also outside";
    QWheelEvent wheel(place, place, {}, {0, 120}, Qt::NoButton, {}, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&widget, &wheel);
    EXPECT_EQ(probe->seen, "w" + std::to_string(QApplication::wheelScrollLines() * 20));
}

TEST_F(QtWindowHostTest, TheKeyboardReachesEverything) {
    const auto probe = Probe::create({160, 20, 60, 60});
    content->addSubview(probe);
    const auto field = addSearchField();
    EXPECT_TRUE(window->makeFirstResponder(field));
    press(Qt::Key_Tab);
    EXPECT_TRUE(widgetFor(*button)->hasFocus());
    EXPECT_EQ(window->firstResponder(), button);
    press(Qt::Key_Space);
    press(Qt::Key_Return);
    press(Qt::Key_Enter, Qt::KeypadModifier);
    EXPECT_EQ(done, "ppp");
    press(Qt::Key_Tab);
    EXPECT_EQ(window->firstResponder(), probe);
    QTest::keyClicks(QApplication::focusWidget(), "a?B");
    press(Qt::Key_Left, Qt::ShiftModifier | Qt::ControlModifier);
    EXPECT_EQ(probe->seen, "a?B#123");
    EXPECT_EQ(probe->flags, NSEvent::ModifierFlags::shift | NSEvent::ModifierFlags::control);
    button->setKeyEquivalent("\x1b");
    press(Qt::Key_Escape);
    EXPECT_EQ(done, "ppp") << "the view takes it itself";
    press(Qt::Key_Backtab, Qt::ShiftModifier);
    press(Qt::Key_F10);
    EXPECT_TRUE(widgetFor(*field)->hasFocus()) << "the first tool";
    press(Qt::Key_Escape);
    EXPECT_EQ(done, "pppp");
    field->setNextKeyView(probe);
    window->makeFirstResponder(field);
    press(Qt::Key_Tab);
    EXPECT_EQ(window->firstResponder(), probe) << "before the button";
    window->makeFirstResponder(button);
    EXPECT_TRUE(widgetFor(*button)->hasFocus());
    window->makeFirstResponder(nullptr);
    EXPECT_FALSE(widgetFor(*button)->hasFocus());
    window->makeFirstResponder(probe);
    EXPECT_TRUE(widgetFor(*probe)->hasFocus());
    probe->setHidden(true);
    EXPECT_NE(window->firstResponder(), probe) << "out of sight";
}

TEST_F(QtWindowHostTest, TabGoesAsTheViewsSay) {
    std::vector<std::shared_ptr<Probe>> probes;
    for (int i = 0; i < 3; ++i)
        content->addSubview(probes.emplace_back(Probe::create({160, 20.0 * i, 60, 20})));
    button->removeFromSuperview();
    host = nullptr;
    probes[2]->setNextKeyView(probes[1]);
    probes[0]->setNextKeyView(probes[2]);
    show();
    for (const int next : {2, 1, 0}) {
        press(Qt::Key_Tab);
        EXPECT_EQ(window->firstResponder(), probes[static_cast<std::size_t>(next)]);
    }
    probes[0]->keeps = true;
    press(Qt::Key_Tab);
    press(Qt::Key_X);
    EXPECT_EQ(probes[0]->seen, "x") << "a view that keeps the keyboard goes on with it";
}

TEST_F(QtWindowHostTest, TheKeyboardIsInTheContentAtFirst) {
    const auto field = addSearchField();
    const auto reopen = [this](const std::shared_ptr<NSView>& responder) {
        host = nullptr;
        window->makeFirstResponder(responder);
        show();
        return window->firstResponder();
    };
    EXPECT_EQ(reopen(nullptr), button);
    EXPECT_EQ(reopen(field), field) << "what the program wants";
    EXPECT_TRUE(widgetFor(*field)->hasFocus());
    button->setEnabled(false);
    EXPECT_EQ(reopen(nullptr), nullptr) << "not the first tool";
}

TEST_F(QtWindowHostTest, TypingGoesIntoTheSearchField) {
    const auto field = addSearchField();
    auto* const edit = widgetFor<QLineEdit>(*field);
    ASSERT_TRUE(edit);
    edit->setFocus();
    QTest::keyClicks(edit, "abd");
    press(Qt::Key_Left);
    QTest::keyClicks(edit, "c");
    EXPECT_EQ(field->stringValue(), "abcd");
    EXPECT_EQ(edit->cursorPosition(), 3) << "the caret stays";
    EXPECT_EQ(done, "ssss");
    QTest::keySequence(edit, QKeySequence::Undo);
    EXPECT_NE(field->stringValue(), "abcd");
    QTest::keySequence(edit, QKeySequence::SelectAll);
    QGuiApplication::clipboard()->setText("two\nlines");
    QTest::keySequence(edit, QKeySequence::Paste);
    EXPECT_EQ(field->stringValue(), "two lines");
    press(Qt::Key_Escape);
    EXPECT_EQ(field->stringValue(), "");
    EXPECT_EQ(edit->placeholderText(), "Search");
    done.clear();
    field->setStringValue("set");
    EXPECT_EQ(edit->text(), "set");
    EXPECT_EQ(done, "") << "only for what people do";
    field->setEnabled(false);
    EXPECT_FALSE(edit->isEnabled());
}

TEST_F(QtWindowHostTest, ASplitViewIsASplitter) {
    const auto split = NSSplitView::create();
    split->addSubview(Probe::create({}));
    split->addSubview(Probe::create({}));
    window->setContentView(split);
    split->setPosition(80, 0);
    auto* const splitter = widgetFor<QSplitter>(*split);
    ASSERT_TRUE(splitter);
    EXPECT_EQ(splitter->sizes(), (QList<int>{80, 159}));
    QWidget& handle = *splitter->handle(1);
    handle.setFocus();
    press(Qt::Key_Right);
    EXPECT_EQ(split->position(0), 90) << "by the keyboard";
    QTest::mousePress(&handle, Qt::LeftButton, {}, {0, 50});
    drag(handle, {-30, 50});
    QTest::mouseRelease(&handle, Qt::LeftButton, {}, {0, 50});
    const double dragged = split->position(0).value();
    EXPECT_NEAR(dragged, 60, 4) << "the handle is held anywhere in its reach";
    EXPECT_EQ(split->subviews()[0]->frame().width(), dragged);
    top().resize(top().size() + QSize(100, 0));
    EXPECT_EQ(split->position(0), dragged) << "another size goes to the last";
    for (int i = 0; i < 2; ++i)
        split->setMinimumLength(50, i);
    for (const int width : {110, 80, 300}) {
        top().resize(width, 160);
        for (int i = 0; i < 2; ++i)
            EXPECT_EQ(splitter->sizes()[i],
                      split->subviews()[static_cast<std::size_t>(i)]->frame().width());
    }
    split->setMinimumLength(0, 0);
    split->setPosition(0, 0);
    EXPECT_EQ(splitter->sizes()[0], 0);
    split->subviews()[0]->removeFromSuperview();
    EXPECT_EQ(splitter->count(), 1);
}

TEST_F(QtWindowHostTest, IsMainWhileItIsActiveAndClosesFromEitherSide) {
    const auto isMainAfter = [this](const QtWindowHost& activated) {
        activated.widget().activateWindow();
        settle();
        return window->isMainWindow();
    };
    EXPECT_FALSE(isMainAfter(*QtWindowHost::show(NSWindow::create({100, 100}))));
    EXPECT_TRUE(isMainAfter(*host));
    int closed = 0;
    observe(NSWindow::willCloseNotification, [&] { ++closed; });
    top().close();
    EXPECT_EQ(closed, 1);
    EXPECT_FALSE(window->isVisible());
    window->makeMainWindow();
    EXPECT_TRUE(top().isVisible()) << "opened again";
    QTimer::singleShot(0, [&] { window->close(); });
    QTimer giveUp;
    QObject::connect(&giveUp, &QTimer::timeout, [] { QCoreApplication::exit(1); });
    giveUp.start(20000);
    EXPECT_EQ(QCoreApplication::exec(), 0) << "the last window ends the event loop";
    EXPECT_FALSE(top().isVisible());
    EXPECT_EQ(closed, 2);
}

TEST_F(QtWindowHostTest, EverythingMayGoInItsOwnAction) {
    const std::function<void()> ends[] = {
        [this] { button->removeFromSuperview(); },
        [this] { window->setContentView(nullptr); },
        [this] { window->setToolbar(nullptr); },
        [this] { window->close(); },
        [this] { host = nullptr; },
        [this] {
            window->close();
            host = nullptr;
        },
    };
    const auto field = addSearchField();
    char letter = 'a';
    for (const auto& end : ends) {
        for (int way = 0; way < 4; ++way) {
            const bool isTyped = way % 2 > 0, isAsked = way > 1;
            SCOPED_TRACE(std::to_string(&end - ends) + (isTyped ? " typed" : " clicked") +
                         (isAsked ? " and asked" : ""));
            window->setContentView(content);
            content->addSubview(button);
            window->setToolbar(searchBar->toolbar());
            if (!host)
                host = QtWindowHost::show(window);
            window->makeMainWindow();
            done.clear();
            const QPointer<QWidget> used =
                widgetFor(isTyped ? static_cast<NSView&>(*field) : *button);
            const Selector action("end", [&] {
                done = "end";
                isAsked ? ask(end) : end();
                EXPECT_TRUE(used) << "still in its event";
            });
            button->setAction(action);
            field->setAction(action);
            ASSERT_TRUE(widgetFor(*field) && widgetFor(*button));
            if (isTyped)
                QTest::keyClick(widgetFor(*field), letter++); // another text in any case
            else
                QTest::mouseClick(widgetFor(*button), Qt::LeftButton);
            button->setTitle(std::string(1, letter)); // shown or not
            EXPECT_EQ(done, "end");
        }
    }
}

TEST_F(QtWindowHostTest, OpensMenus) {
    const auto menu = NSMenu::create("Menu"), inner = NSMenu::create();
    const auto item = NSMenuItem::create("Cut & paste", does("a"));
    item->setKeyEquivalent("c");
    item->setState(true);
    menu->addItem(item);
    menu->addItem(NSMenuItem::separatorItem());
    const auto more = NSMenuItem::create("More");
    inner->addItem(NSMenuItem::create("Inner", does("b")));
    more->setSubmenu(inner);
    menu->addItem(more);
    content->setMenu(menu);
    QContextMenuEvent byKey(QContextMenuEvent::Keyboard, QPoint(), QPoint());
    QCoreApplication::sendEvent(widgetFor(*content), &byKey);
    ASSERT_TRUE(openMenu());
    EXPECT_EQ(openMenu()->actions().size(), 3);
    openMenu()->close();
    menu->popUp();
    ASSERT_TRUE(openMenu());
    const auto actions = openMenu()->actions();
    EXPECT_EQ(actions[0]->text(), "Cut && paste\tCtrl+C");
    EXPECT_TRUE(actions[0]->isChecked());
    EXPECT_TRUE(actions[1]->isSeparator());
    actions[2]->menu()->actions()[0]->trigger();
    actions[0]->trigger();
    menu->removeAllItems();
    actions[0]->trigger();
    EXPECT_EQ(done, "ba") << "no longer there";
    openMenu()->close();
}

TEST_F(QtWindowHostTest, APressEndsAlsoWhereTheReleaseDoesNotCome) {
    const auto menu = NSMenu::create();
    QDialog dialog(&top());
    const std::function<void()> ways[] = {[&] { menu->popUp(); }, [&] { dialog.open(); }};
    for (const auto& open : ways) {
        button->setAction(Selector("open", open));
        QTest::mousePress(widgetFor(*button), Qt::LeftButton);
        EXPECT_FALSE(button->tintedButtonCell()->isPressed());
        if (openMenu())
            openMenu()->close();
    }
    button->setAction(Selector("once", [&] { button->setEnabled(false); }));
    click(*button);
    EXPECT_FALSE(button->tintedButtonCell()->isPressed()) << "disabled by its action";
}

using QtWindowHostDeathTest = QtWindowHostTest;

TEST_F(QtWindowHostDeathTest, StopsTheProgram) {
    EXPECT_DEATH((void)QtWindowHost::show(window), "The window has a host already.");
    EXPECT_DEATH((void)QtWindowHost::show(nullptr), "There is no window to show.");
    const Selector failing("fail", [] { throw std::runtime_error("no way"); });
    button->setAction(failing);
    const auto menu = NSMenu::create();
    menu->addItem(NSMenuItem::create("Fail", failing));
    menu->popUp();
    ASSERT_TRUE(openMenu());
    const std::function<void()> ways[] = {[this] { click(*button); },
                                          [] { openMenu()->actions()[0]->trigger(); }};
    for (const auto& way : ways) {
        const auto catching = [&] {
            try {
                way();
            } catch (const std::exception&) { // which would come through Qt
            }
        };
        EXPECT_DEATH(catching(), "no way");
    }
    openMenu()->close();
}

} // namespace
