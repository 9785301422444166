#include <zorvan/hosts/internal/clipboard.h>

#include <zorvan/files/NSPasteboard.h>

#include <QApplication>
#include <QClipboard>
#include <QMimeData>
#include <QUrl>
#include <vector>

namespace zorvan::internal {

namespace {

using Objects = std::vector<NSPasteboard::Object>;

NSPasteboard& pasteboard() { return *NSPasteboard::generalPasteboard(); }

void take() {
    const QMimeData* const held = QGuiApplication::clipboard()->mimeData();
    if (!held || QGuiApplication::clipboard()->ownsClipboard())
        return;
    Objects objects;
    for (const QUrl& url : held->urls())
        if (auto known = URL::make({.string = url.toString(QUrl::FullyEncoded).toStdString()}))
            objects.emplace_back(std::move(*known));
    if (objects.empty() && held->hasText())
        objects.emplace_back(held->text().toStdString());
    pasteboard().adopt(std::move(objects));
}

/// Texts stand below each other, as URLs do for whoever wants text.
void give() {
    const Objects objects = pasteboard().objects();
    if (objects.empty())
        return QGuiApplication::clipboard()->clear();
    QList<QUrl> urls;
    QStringList lines;
    for (const NSPasteboard::Object& object : objects) {
        const auto* const url = std::get_if<URL>(&object);
        const std::string text = url ? url->absoluteString() : std::get<std::string>(object);
        if (url)
            urls.append(QUrl::fromEncoded(QByteArray::fromStdString(text)));
        lines.append(QString::fromStdString(text));
    }
    auto* const held = new QMimeData; // the clipboard's then
    if (!urls.isEmpty())
        held->setUrls(urls);
    held->setText(lines.join(QLatin1Char('\n')));
    QGuiApplication::clipboard()->setMimeData(held);
}

} // namespace

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
