#pragma once

#include <tests/files/TemporaryFolder.h>

#include <zorvan/hosts/QtWindowHost.h>
#include <zorvan/interface/DynamicToolbar.h>
#include <zorvan/interface/NSApplication.h>

#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QSplitter>
#include <QTest>
#include <QWheelEvent>
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

using namespace zorvan;

/// A window of 240 x 160 points with an empty content view, shown without a screen.
class HostTest : public testing::Test {
protected:
    static void SetUpTestSuite() { start("offscreen"); }
    static void start(const char* platform) {
        ::setenv("QT_QPA_PLATFORM", platform, 1);
        static const TemporaryFolder home; // for the settings
        ::setenv("XDG_CONFIG_HOME", home.path().c_str(), 1);
        static int count = 1;
        static char name[] = "test";
        static char* arguments[] = {name, nullptr};
        if (!application)
            application = new QApplication(count, arguments);
        QApplication::setKeyboardInputInterval(1000000); // however slow the machine is
    }

    HostTest() {
        window->setContentView(content);
        host = QtWindowHost::show(window);
        settle();
        host->widget().activateWindow();
        settle();
    }
    ~HostTest() override {
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

    /// Null when the view is not shown.
    QWidget* widgetFor(const NSView& view) const { return host->widget(view); }
    /// In the content of the window.
    QRect placeOf(const NSView& view) const {
        QWidget* const widget = widgetFor(view);
        return QRect(widget->mapTo(widgetFor(*window->contentView()), QPoint()), widget->size());
    }
    QColor colourAt(QPoint inContent) const {
        return widgetFor(*window->contentView())->grab().toImage().pixelColor(inContent);
    }
    void click(NSView& view) {
        QTest::mouseClick(widgetFor(view), Qt::LeftButton);
        settle();
    }
    /// Goes to where the keyboard is.
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QWidget* const focused = QApplication::focusWidget();
        QTest::keyClick(focused ? focused : &host->widget(), key, modifiers);
        settle();
    }

    /// A toolbar with a search field, which is given back.
    std::shared_ptr<NSSearchField> addSearchField() {
        searchBar = DynamicToolbar::create({"bar"});
        searchBar->addItemSet();
        const auto field =
            searchBar->addItem({.createSearchField = [&](SearchFieldSettings& settings) {
                settings.placeholderString = "Search";
                settings.action = Selector("search", [this] { ++searches; });
            }});
        window->setToolbar(searchBar->toolbar());
        searchBar->reloadDisplayedItems();
        settle();
        return field;
    }

    static inline QApplication* application = nullptr;

    const std::shared_ptr<NSWindow> window = NSWindow::create({240, 160}, "Window");
    const std::shared_ptr<NSView> content = NSView::create();
    std::shared_ptr<DynamicToolbar> searchBar;
    int searches = 0;
    std::shared_ptr<QtWindowHost> host;
};
