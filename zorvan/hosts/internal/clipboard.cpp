#include <zorvan/hosts/internal/clipboard.h>

#include <zorvan/files/NSPasteboard.h>
#include <zorvan/hosts/internal/dragging.h>

#include <QApplication>
#include <QClipboard>
#include <QThread>
#include <chrono>
#include <future>
#include <optional>
#include <vector>

namespace zorvan::internal {

namespace {

using Objects = std::vector<NSPasteboard::Object>;

NSPasteboard& pasteboard() { return *NSPasteboard::generalPasteboard(); }

/// URLs, or else a text.
Objects objectsOf(const QMimeData& held) {
    Objects objects;
    for (URL& url : urlsOf(held))
        objects.emplace_back(std::move(url));
    if (objects.empty() && held.hasText())
        objects.emplace_back(held.text().toStdString());
    return objects;
}

Objects heldByDesktop() {
    const QMimeData* const held = QGuiApplication::clipboard()->mimeData();
    return held ? objectsOf(*held) : Objects();
}

/// Other threads have the main one ask, which may have no time for them.
std::optional<Objects> askDesktop() {
    if (!qApp)
        return std::nullopt;
    if (QThread::currentThread() == qApp->thread())
        return heldByDesktop();
    constexpr std::chrono::seconds patience(5);
    const auto answer = std::make_shared<std::promise<Objects>>();
    QMetaObject::invokeMethod(
        qApp, [answer]() noexcept { answer->set_value(heldByDesktop()); }, Qt::QueuedConnection);
    std::future<Objects> held = answer->get_future();
    if (held.wait_for(patience) != std::future_status::ready)
        return std::nullopt;
    return held.get();
}

/// Only when somebody wants it: the program that holds it may be slow to give it, or hold much.
void take() {
    if (!QGuiApplication::clipboard()->ownsClipboard())
        pasteboard().adopt(askDesktop);
}

/// URLs, from which those who want text make it, or else the texts below each other.
void give() {
    std::vector<URL> urls;
    QStringList lines;
    for (const NSPasteboard::Object& object : pasteboard().objects())
        if (const auto* const url = std::get_if<URL>(&object))
            urls.push_back(*url);
        else
            lines.append(QString::fromStdString(std::get<std::string>(object)));
    if (urls.empty() && lines.isEmpty())
        return QGuiApplication::clipboard()->clear();
    auto held = toMimeData(urls);
    if (urls.empty())
        held->setText(lines.join(QLatin1Char('\n')));
    QGuiApplication::clipboard()->setMimeData(held.release());
}

} // namespace

void copyToPasteboard(const QMimeData& data) {
    Objects objects = objectsOf(data);
    if (objects.empty())
        return;
    pasteboard().clearContents();
    pasteboard().writeObjects(std::move(objects));
}

void shareClipboard() {
    QObject::connect(QGuiApplication::clipboard(), &QClipboard::dataChanged, qApp,
                     []() noexcept { take(); });
    pasteboard().setChangeHandler([] {
        QMetaObject::invokeMethod(
            qApp, []() noexcept { give(); }, Qt::QueuedConnection);
    });
    QObject::connect(qApp, &QObject::destroyed, [] { pasteboard().setChangeHandler({}); });
    take();
}

} // namespace zorvan::internal
