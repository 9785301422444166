// What windows share with the desktop: its clipboard, its colours, and where they stood before.

#include "HostTest.h"

#include <zorvan/files/NSPasteboard.h>
#include <zorvan/interface/NSButton.h>
#include <zorvan/settings/NSUserDefaults.h>

#include <QContextMenuEvent>
#include <QMenu>
#include <QMimeData>
#include <QScreen>
#include <QUrl>

namespace {

using DesktopTest = HostTest;

TEST_F(DesktopTest, ThePasteboardIsTheClipboard) {
    NSPasteboard& pasteboard = *NSPasteboard::generalPasteboard();
    const auto given = [] { return QGuiApplication::clipboard()->mimeData(); };
    pasteboard.clearContents();
    pasteboard.writeObjects({std::string("one"), std::string("two")});
    settle();
    EXPECT_EQ(given()->text().toStdString(), "one\ntwo");
    pasteboard.clearContents();
    pasteboard.writeObjects({URL({.fileURLWithPath = "/a b"})});
    settle();
    EXPECT_EQ(given()->urls(), QList<QUrl>{QUrl::fromLocalFile("/a b")});
    pasteboard.clearContents();
    settle();
    EXPECT_TRUE(!given() || !given()->hasText());
    pasteboard.adopt({std::string("from elsewhere")});
    settle();
    EXPECT_TRUE(!given() || !given()->hasText()) << "what came from the desktop is not given back";
    QGuiApplication::clipboard()->setText("copied elsewhere");
    EXPECT_EQ(pasteboard.objects(),
              std::vector<NSPasteboard::Object>{std::string("copied elsewhere")});
}

TEST_F(DesktopTest, AWindowOpensWhereItWas) {
    host = nullptr;
    const auto show = [](CGSize size, const char* name) {
        const auto made = NSWindow::create(size, "Remembered");
        made->setFrameAutosaveName(name);
        return QtWindowHost::show(made);
    };
    auto shown = show({300, 200}, "first");
    EXPECT_EQ(shown->window()->contentSize(), CGSize(300, 200));
    shown->widget().setGeometry(40, 50, 420, 260);
    settle();
    shown->widget().close();
    shown = nullptr;
    settle();
    shown = show({300, 200}, "first");
    settle();
    EXPECT_EQ(shown->widget().geometry(), QRect(40, 50, 420, 260));
    EXPECT_EQ(shown->window()->contentSize(), CGSize(420, 260));
    shown = show({300, 200}, "second");
    EXPECT_EQ(shown->window()->contentSize(), CGSize(300, 200));
    NSUserDefaults::standardUserDefaults()->setObject(PropertyList(std::string("broken")),
                                                      "NSWindow Frame first");
    shown = show({300, 200}, "first");
    EXPECT_EQ(shown->window()->contentSize(), CGSize(300, 200));
    shown = show({90000, 90000}, "");
    const QSize screen = shown->widget().screen()->availableSize();
    EXPECT_LE(shown->widget().width(), screen.width());
    EXPECT_LE(shown->widget().height(), screen.height()) << "fits its screen";
}

TEST_F(DesktopTest, ButtonsFollowADarkDesktop) {
    const auto button = NSButton::create({.title = ""});
    button->setFrame({20, 20, 80, 30});
    content->addSubview(button);
    settle();
    const auto middle = placeOf(*button).center();
    const QPalette usual = QApplication::palette();
    EXPECT_GT(colourAt(middle).lightness(), 200);
    QApplication::setPalette(QPalette(QColor(45, 46, 50), QColor(36, 37, 40)));
    settle();
    EXPECT_LT(colourAt(middle).lightness(), 100);
    QApplication::setPalette(usual);
    settle();
    EXPECT_GT(colourAt(middle).lightness(), 200);
}

TEST_F(DesktopTest, MenusShowStatesAndKeys) {
    const auto menu = NSMenu::create();
    const auto item = NSMenuItem::create("Copy & go", Selector("copy", [this] { ++searches; }));
    item->setKeyEquivalent("c");
    item->setState(true);
    menu->addItem(item);
    content->setMenu(menu);
    QContextMenuEvent byKey(QContextMenuEvent::Keyboard, QPoint(), QPoint());
    QCoreApplication::sendEvent(widgetFor(*content), &byKey);
    settle();
    auto* const shown = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_TRUE(shown);
    QAction& action = *shown->actions()[0];
    EXPECT_EQ(action.text(), "Copy && go\tCtrl+C");
    EXPECT_TRUE(action.isChecked());
    action.trigger();
    EXPECT_EQ(searches, 1);
    menu->removeAllItems();
    action.trigger();
    EXPECT_EQ(searches, 1) << "no longer there";
    shown->close();
    settle();
}

} // namespace
