#pragma once

#include <tests/Testing.h>
#include <tests/files/TemporaryFolder.h>

#include <zorvan/hosts/QtWindowHost.h>
#include <zorvan/interface/DynamicToolbar.h>
#include <zorvan/observation/NoteSubscriber.h>

#include <QApplication>
#include <QClipboard>
#include <QEventLoop>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QPointer>
#include <QSplitter>
#include <QTest>
#include <QTimer>

/// A window of 240 x 160 points with an empty content view, shown without a screen.
class HostTest : public testing::Test {
protected:
    static void SetUpTestSuite() { start("offscreen"); }
    static void start(const char* platform) {
        ::setenv("QT_QPA_PLATFORM", platform, 1);
        static const TemporaryFolder home; // for the settings and the trash
        for (const char* folder : {"XDG_CONFIG_HOME", "XDG_DATA_HOME"})
            ::setenv(folder, home.path().c_str(), 1);
        static int count = 1;
        static char name[] = "test";
        static char* arguments[] = {name, nullptr};
        if (!application)
            application = new QApplication(count, arguments);
        QApplication::setKeyboardInputInterval(1000000); // however slow the machine is
    }

    HostTest() {
        window->setContentView(content);
        show();
    }
    ~HostTest() override {
        subscribers.clear();
        host = nullptr;
        settle();
    }

    void show() {
        host = nullptr;
        host = QtWindowHost::show(window);
        settle();
        host->widget().activateWindow();
        settle();
    }

    /// Until nothing is left to do.
    static void settle() {
        for (int i = 0; i < 5; ++i) {
            QCoreApplication::processEvents();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
    }

    // What is looked at is looked at once all is done.

    QWidget& top() const {
        settle();
        return host->widget();
    }
    /// Null when the view is not shown, or not by such a widget.
    template <class Widget = QWidget>
    Widget* widgetFor(const NSView& view) const {
        settle();
        return qobject_cast<Widget*>(host->widget(view));
    }
    QPoint inWindow(const QWidget& widget, QPoint at = {}) const {
        return widget.mapTo(&top(), at);
    }
    /// In the content of the window.
    QRect placeOf(const NSView& view) const {
        QWidget* const widget = widgetFor(view);
        return {widget->mapTo(widgetFor(*window->contentView()), QPoint()), widget->size()};
    }
    QColor colourAt(QPoint inContent) const {
        return widgetFor(*window->contentView())->grab().toImage().pixelColor(inContent);
    }
    void click(NSView& view) {
        QTest::mouseClick(widgetFor(view), Qt::LeftButton);
        settle();
    }
    /// Moves the mouse with its left button down.
    static void drag(QWidget& over, QPoint to) {
        QMouseEvent move(QEvent::MouseMove, to, over.mapToGlobal(to), Qt::NoButton, Qt::LeftButton,
                         {});
        QCoreApplication::sendEvent(&over, &move);
    }
    /// Goes to where the keyboard is.
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        settle();
        QWidget* const focused = QApplication::focusWidget();
        QTest::keyClick(focused ? focused : &host->widget(), key, modifiers);
        settle();
    }
    /// An event loop of its own, as a question to the user is, in which that happens.
    static void ask(const std::function<void()>& meanwhile) {
        QEventLoop question;
        QTimer::singleShot(0, &question, meanwhile);
        QTimer::singleShot(1, &question, &QEventLoop::quit);
        question.exec();
    }
    /// The menu that is open; null for none.
    static QMenu* openMenu() {
        settle();
        return qobject_cast<QMenu*>(QApplication::activePopupWidget());
    }

    /// Writes down that it was done.
    Selector does(const std::string& what) {
        return Selector(what, [this, what] { done += what; });
    }
    /// Calls a function for the notifications of that name, until the test ends.
    void observe(std::string_view name, const std::function<void()>& told) {
        const auto center = NSNotificationCenter::defaultCenter();
        const auto& subscriber = subscribers.emplace_back(NoteSubscriber::create(center));
        subscriber->setName(NSNotificationName(name));
        subscriber->subscribe(window, [told](const auto&, const Notification&) { told(); });
    }

    /// A toolbar with a search field, which is given back.
    std::shared_ptr<NSSearchField> addSearchField() {
        searchBar = DynamicToolbar::create({"bar"});
        searchBar->addItemSet();
        const auto field =
            searchBar->addItem({.createSearchField = [&](SearchFieldSettings& settings) {
                settings.placeholderString = "Search";
                settings.action = does("s");
            }});
        setToolbar(*searchBar);
        return field;
    }
    void setToolbar(DynamicToolbar& bar) {
        window->setToolbar(bar.toolbar());
        bar.reloadDisplayedItems();
        settle();
    }

    static inline QApplication* application = nullptr;

    const std::shared_ptr<NSWindow> window = NSWindow::create({240, 160}, "Window");
    const std::shared_ptr<NSView> content = NSView::create();
    std::shared_ptr<DynamicToolbar> searchBar;
    std::vector<std::shared_ptr<NoteSubscriber>> subscribers;
    std::string done;
    std::shared_ptr<QtWindowHost> host;
};
