// What windows share with the desktop: its clipboard, its colours, and where they stood before.

#include "HostTest.h"

#include <zorvan/files/NSPasteboard.h>
#include <zorvan/interface/NSButton.h>
#include <zorvan/settings/NSUserDefaults.h>

#include <QMimeData>
#include <QScreen>
#include <QUrl>

namespace {

using DesktopTest = HostTest;

TEST_F(DesktopTest, ThePasteboardIsTheClipboard) {
    NSPasteboard& pasteboard = *NSPasteboard::generalPasteboard();
    const auto given = [](const std::function<void()>& write) -> const QMimeData& {
        static const QMimeData nothing;
        write();
        settle();
        const QMimeData* const held = QGuiApplication::clipboard()->mimeData();
        return held ? *held : nothing;
    };
    const auto writing = [&](std::vector<NSPasteboard::Object> objects) {
        return [&pasteboard, objects] {
            pasteboard.clearContents();
            pasteboard.writeObjects(objects);
        };
    };
    EXPECT_EQ(given(writing({std::string("one"), std::string("two")})).text(), "one\ntwo");
    EXPECT_EQ(given(writing({URL({.fileURLWithPath = "/a b"})})).urls(),
              QList<QUrl>{QUrl::fromLocalFile("/a b")});
    EXPECT_FALSE(given([&] { pasteboard.clearContents(); }).hasText());
    EXPECT_FALSE(given([&] { pasteboard.adopt({std::string("from elsewhere")}); }).hasText())
        << "what came from the desktop is not given back";
    QGuiApplication::clipboard()->setText("copied elsewhere");
    EXPECT_EQ(pasteboard.objects(),
              std::vector<NSPasteboard::Object>{std::string("copied elsewhere")});
}

TEST_F(DesktopTest, AWindowOpensWhereItWas) {
    host = nullptr;
    const auto show = [](CGSize size, const char* name) {
        const auto made = NSWindow::create(size, "Remembered");
        made->setFrameAutosaveName(name);
        auto shown = QtWindowHost::show(made);
        settle();
        return shown;
    };
    auto shown = show({300, 200}, "first");
    EXPECT_EQ(shown->window()->contentSize(), CGSize(300, 200));
    shown->widget().setGeometry(40, 50, 420, 260);
    settle();
    shown->widget().close();
    shown = nullptr;
    shown = show({300, 200}, "first");
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
    EXPECT_EQ(shown->widget().size().boundedTo(screen), shown->widget().size()) << "fits";
}

TEST_F(DesktopTest, ButtonsFollowADarkDesktop) {
    const auto button = NSButton::create({.title = ""});
    button->setFrame({20, 20, 80, 30});
    content->addSubview(button);
    const QPalette usual = QApplication::palette();
    const auto lightness = [&](const QPalette& palette) {
        QApplication::setPalette(palette);
        settle();
        return colourAt(placeOf(*button).center()).lightness();
    };
    EXPECT_GT(lightness(usual), 200);
    EXPECT_LT(lightness(QPalette(QColor(45, 46, 50), QColor(36, 37, 40))), 100);
    EXPECT_GT(lightness(usual), 200);
}

} // namespace
