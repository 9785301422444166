// Windows shown through Qt, without a screen, at two pixels to a point.

#include <zorvan/hosts/QtWindowHost.h>
#include <zorvan/interface/DynamicToolbar.h>
#include <zorvan/interface/NSApplication.h>
#include <zorvan/interface/TintedButton.h>
#include <zorvan/media/NSColor.h>
#include <zorvan/observation/DispatchQueue.h>
#include <zorvan/platform/appkit/NSScrollView.h>

#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QTest>
#include <QTimer>
#include <QWheelEvent>
#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>

using namespace zorvan;

namespace {

constexpr double scale = 2;

class QtWindowHostTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
        ::setenv("QT_SCALE_FACTOR", "2", 1);
        static int count = 1;
        static char name[] = "test";
        static char* arguments[] = {name, nullptr};
        application = new QApplication(count, arguments);
    }
    static void TearDownTestSuite() { delete application; }

    QtWindowHostTest() {
        content->addSubview(button);
        window->setContentView(content);
        host = QtWindowHost::show(window);
        settle();
    }
    ~QtWindowHostTest() override {
        host = nullptr;
        settle();
    }

    /// Until nothing is left to do.
    static void settle() {
        for (int i = 0; i < 5; ++i) {
            QCoreApplication::processEvents();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
    }

    /// The middle of a view, where the widget has it.
    QPoint middleOf(NSView& view) const {
        const CGRect bounds = view.bounds();
        const CGPoint place = view.convertToBase({bounds.midX(), bounds.midY()});
        const double fromTop = window->size().height - NSWindow::titleBarHeight - place.y;
        return QPointF(place.x, fromTop).toPoint();
    }
    void click(NSView& view) {
        QTest::mouseClick(&host->widget(), Qt::LeftButton, {}, middleOf(view));
        settle();
    }

    void clickAndCatch(NSView& view) {
        try {
            click(view);
        } catch (const std::exception&) { // which would come through Qt
        }
    }

    QSize sizeOfWidget() const { return host->widget().size(); }

    /// What is on the screen, and what the window draws below its title bar.
    QImage shown() const { return host->widget().grab().toImage(); }
    QImage drawn() const {
        const auto bitmap = window->render(scale);
        const int title = static_cast<int>(NSWindow::titleBarHeight * scale);
        return QImage(bitmap->row(title), static_cast<int>(bitmap->width()),
                      static_cast<int>(bitmap->height()) - title,
                      static_cast<qsizetype>(bitmap->bytesPerRow()),
                      QImage::Format_RGBA8888_Premultiplied)
            .convertToFormat(QImage::Format_RGB32);
    }
    void expectShown(const char* when) const {
        EXPECT_EQ(shown().convertToFormat(QImage::Format_RGB32), drawn()) << when;
    }

    /// A toolbar with a search field, which is given back.
    std::shared_ptr<NSSearchField> addSearchField() {
        bar = DynamicToolbar::create({"bar"});
        bar->addItemSet();
        std::shared_ptr<NSSearchField> field;
        bar->addItem({.createSearchField =
                          [&](SearchFieldSettings& settings) {
                              settings.action = Selector("search", [this] { ++searches; });
                          },
                      .update =
                          [&](DynamicToolbarItem&, NSSearchField& found) {
                              field =
                                  std::static_pointer_cast<NSSearchField>(found.shared_from_this());
                          }});
        window->setToolbar(bar->toolbar());
        bar->reloadDisplayedItems();
        settle();
        return field;
    }

    static inline QApplication* application = nullptr;

    const std::shared_ptr<NSWindow> window = NSWindow::create({240, 160}, "Window");
    const std::shared_ptr<NSView> content = NSView::create();
    int presses = 0, searches = 0;
    const std::shared_ptr<TintedButton> button = [this] {
        auto made = TintedButton::create(
            {.title = "Press", .action = Selector("press", [this] { ++presses; })});
        made->setFrame({20, 20, 120, 40});
        made->setBackgroundHoverGradient(
            NSGradient::make({.colors = {NSColor::red, NSColor::blue}}));
        return made;
    }();
    std::shared_ptr<DynamicToolbar> bar;
    std::shared_ptr<QtWindowHost> host;
};

TEST_F(QtWindowHostTest, ShowsWhatTheWindowDrawsBelowItsTitleBar) {
    EXPECT_EQ(host->widget().windowTitle(), "Window");
    EXPECT_EQ(shown().size(), QSize(480, 320));
    expectShown("at first");
    button->setTitle("Again");
    window->setTitle("Other");
    settle();
    expectShown("after a change");
    EXPECT_EQ(host->widget().windowTitle(), "Other");
    host->widget().hide();
    for (const char* title : {"Unseen", "Unseen too"}) {
        window->setTitle(title);
        settle();
        EXPECT_EQ(host->widget().windowTitle().toStdString(), title);
    }
    host->widget().show();
    settle();
    const QImage before = shown();
    QTest::mouseMove(&host->widget(), middleOf(*button));
    settle();
    expectShown("under the mouse");
    EXPECT_NE(shown(), before) << "the button lights up";
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(&host->widget(), &leave);
    settle();
    EXPECT_EQ(shown(), before) << "and goes out when the mouse leaves";
}

TEST_F(QtWindowHostTest, SizesFollowEachOther) {
    host->widget().resize(300, 200);
    settle();
    EXPECT_EQ(window->contentSize(), CGSize(300, 200));
    window->setContentSize({260, 180});
    settle();
    EXPECT_EQ(sizeOfWidget(), QSize(260, 180));
    addSearchField();
    EXPECT_EQ(window->contentSize(), CGSize(260, 180)) << "a bar comes";
    EXPECT_EQ(sizeOfWidget().width(), 260);
    EXPECT_GT(sizeOfWidget().height(), 180);
    expectShown("with a bar");
    host->widget().showMaximized();
    settle();
    const QSize whole = sizeOfWidget();
    window->setToolbar(nullptr);
    settle();
    EXPECT_EQ(sizeOfWidget(), whole) << "the desktop says how large";
    EXPECT_EQ(window->contentSize().height, whole.height());
    window->setToolbar(bar->toolbar());
    host->widget().showNormal();
    settle();
    host->widget().resize(260, 1);
    settle();
    EXPECT_EQ(window->contentSize().height, 1) << "not less than the bars and a point";
    expectShown("at its smallest");
}

TEST_F(QtWindowHostTest, ClicksReachTheViewsAndAreCounted) {
    click(*button);
    EXPECT_EQ(presses, 1);
    class Counter : public NSView {
    public:
        using NSView::NSView;
        static auto make() { return std::make_shared<Counter>(Key{}, CGRect(160, 20, 60, 60)); }
        void mouseDown(const NSEvent& with) override { seen += std::to_string(with.clickCount); }
        void mouseDragged(const NSEvent&) override { seen += 'd'; }
        void mouseUp(const NSEvent&) override { seen += 'u'; }
        std::string seen;
    };
    const auto counter = Counter::make();
    content->addSubview(counter);
    const QPoint place = middleOf(*counter);
    QWidget& widget = host->widget();
    QTest::mouseClick(&widget, Qt::LeftButton, {}, place);
    QTest::mouseDClick(&widget, Qt::LeftButton, {}, place);
    EXPECT_EQ(counter->seen, "1u2");
    counter->seen.clear();
    QTest::mouseClick(&widget, Qt::RightButton, {}, place);
    EXPECT_EQ(counter->seen, "") << "another button";
    QTest::mousePress(&widget, Qt::LeftButton, {}, QPoint(200, 100));
    QMouseEvent drag(QEvent::MouseMove, QPointF(999, 999), widget.mapToGlobal(QPointF(999, 999)),
                     Qt::NoButton, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&widget, &drag);
    QTest::mouseRelease(&widget, Qt::LeftButton, {}, QPoint(999, 999));
    EXPECT_EQ(counter->seen, "1du") << "also outside";
}

TEST_F(QtWindowHostTest, TheWheelScrolls) {
    const auto document = NSView::create({0, 0, 400, 300});
    const auto scrollView = NSScrollView::create({0, 0, 200, 100});
    scrollView->setDocumentView(document);
    window->setContentView(scrollView);
    const auto turn = [&](int x, int y) {
        const QPointF place(20, 20);
        QWheelEvent event(place, place, {}, {x, y}, Qt::NoButton, {}, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&host->widget(), &event);
        settle();
        return scrollView->contentView()->bounds().origin;
    };
    const double three = QApplication::wheelScrollLines() * 20;
    EXPECT_EQ(turn(0, 120), CGPoint(0, three)) << "up";
    EXPECT_EQ(turn(-60, 0), CGPoint(three / 2, three)) << "to the right, half a step";
    EXPECT_EQ(turn(0, 12000), CGPoint(three / 2, 140)) << "to the upper end";
    EXPECT_EQ(turn(0, -12000), CGPoint(three / 2, 0)) << "to the lower end";
    document->setFrame({0, 0, 100, 50});
    EXPECT_EQ(turn(-120, 120), CGPoint(0, 0)) << "a document that is all to be seen";
}

TEST_F(QtWindowHostTest, TypingGoesIntoTheSearchFieldThatWasClicked) {
    const auto field = addSearchField();
    ASSERT_TRUE(field);
    QWidget& widget = host->widget();
    QTest::keyClicks(&widget, "lost");
    EXPECT_EQ(field->stringValue(), "");
    click(*field);
    QTest::keyClicks(&widget, "ab");
    QInputMethodEvent composed;
    composed.setCommitString("👍🏽");
    QCoreApplication::sendEvent(&widget, &composed);
    EXPECT_EQ(field->stringValue(), "ab👍🏽");
    QTest::keyClick(&widget, Qt::Key_Backspace);
    EXPECT_EQ(field->stringValue(), "ab") << "a whole character";
    EXPECT_EQ(searches, 4);
    QTest::keyClick(&widget, Qt::Key_Escape);
    QTest::keyClick(&widget, Qt::Key_Backspace);
    EXPECT_EQ(field->stringValue(), "");
    EXPECT_EQ(searches, 5);
    QGuiApplication::clipboard()->setText("two\nlines");
    QTest::keySequence(&widget, QKeySequence::Paste);
    QTest::keyClick(&widget, Qt::Key_X, Qt::AltModifier);
    EXPECT_EQ(field->stringValue(), "two lines");
    click(*button);
    QTest::keyClicks(&widget, "lost");
    expectShown("without a ring");
    const QImage plain = shown();
    QTest::keyClick(&widget, Qt::Key_Tab);
    EXPECT_NE(shown(), plain) << "a ring";
    QTest::keyClicks(&widget, "!");
    EXPECT_EQ(field->stringValue(), "two lines!") << "reached by the keyboard";
    field->setEnabled(false);
    QTest::keyClick(&widget, Qt::Key_Tab);
    window->setToolbar(nullptr);
    QTest::keyClicks(&widget, "gone");
    EXPECT_EQ(field->stringValue(), "two lines!") << "no longer in the window";
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
    QTest::mouseClick(&host->widget(), Qt::LeftButton, {}, middleOf(*button));
    EXPECT_FALSE(host);
    button->setTitle("Not shown");
    settle();
    host = QtWindowHost::show(window);
    settle();
    expectShown("by another host");
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
