// What windows share with the desktop: its clipboard, its colours, and where they stood before.

#include "HostTest.h"

#include <zorvan/files/NSPasteboard.h>
#include <zorvan/interface/NSButton.h>
#include <zorvan/settings/NSUserDefaults.h>

#include <QMimeData>
#include <QScreen>
#include <QUrl>
#include <QVariant>
#include <future>

namespace {

using DesktopTest = HostTest;

/// Knows whether anybody has looked what it is.
class ForeignText : public QMimeData {
public:
    QStringList formats() const override {
        isAsked = true;
        return {"text/plain"};
    }
    mutable bool isAsked = false;

protected:
    QVariant retrieveData(const QString&, QMetaType) const override { return "copied elsewhere"; }
};

TEST_F(DesktopTest, ThePasteboardIsTheClipboard) {
    using Objects = std::vector<NSPasteboard::Object>;
    NSPasteboard& pasteboard = *NSPasteboard::generalPasteboard();
    QClipboard& clipboard = *QGuiApplication::clipboard();
    const auto write = [&](const Objects& objects) {
        pasteboard.clearContents();
        pasteboard.writeObjects(objects);
        settle();
    };
    write({std::string("one"), std::string("two")});
    EXPECT_EQ(clipboard.text(), "one\ntwo");
    write({URL({.fileURLWithPath = "/a b"})});
    EXPECT_EQ(clipboard.mimeData()->urls(), QList<QUrl>{QUrl::fromLocalFile("/a b")});
    write({});
    EXPECT_EQ(clipboard.text(), "");
    const std::int64_t count = pasteboard.changeCount();
    auto* const foreign = new ForeignText;
    clipboard.setMimeData(foreign);
    settle();
    EXPECT_EQ(pasteboard.changeCount(), count + 1);
    EXPECT_FALSE(foreign->isAsked) << "the program that holds it may be slow";
    EXPECT_EQ(pasteboard.objects(), Objects{std::string("copied elsewhere")});
    settle();
    EXPECT_EQ(clipboard.mimeData(), foreign) << "what came from the desktop is not given back";
    clipboard.setText("more");
    auto read = std::async([&] { return pasteboard.objects(); });
    while (read.wait_for(std::chrono::milliseconds(1)) != std::future_status::ready)
        settle();
    EXPECT_EQ(read.get(), Objects{std::string("more")}) << "on another thread";
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
    shown->widget().setGeometry(40, 50, 420, 260);
    settle();
    shown->widget().close();
    shown = nullptr;
    shown = show({300, 200}, "first");
    EXPECT_EQ(shown->widget().geometry(), QRect(40, 50, 420, 260));
    EXPECT_EQ(shown->window()->contentSize(), CGSize(420, 260));
    NSUserDefaults::standardUserDefaults()->setObject(PropertyList(std::string("broken")),
                                                      "NSWindow Frame third");
    for (const char* name : {"second", "third"})
        EXPECT_EQ(show({300, 200}, name)->window()->contentSize(), CGSize(300, 200));
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
