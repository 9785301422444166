#include <zorvan/hosts/internal/dragging.h>

#include <zorvan/hosts/internal/viewGeometry.h>

#include <QApplication>
#include <QDrag>
#include <QUrl>

namespace zorvan::internal {

std::unique_ptr<QMimeData> toMimeData(const std::vector<URL>& urls, const Bitmap* picture) {
    auto data = std::make_unique<QMimeData>();
    QList<QUrl> addresses;
    for (const URL& url : urls)
        addresses.append(QUrl::fromEncoded(QByteArray::fromStdString(url.absoluteString())));
    if (!addresses.isEmpty())
        data->setUrls(addresses);
    if (picture)
        data->setImageData(imageOver(*picture).copy());
    return data;
}

std::vector<URL> urlsOf(const QMimeData& data) {
    std::vector<URL> urls;
    for (const QUrl& url : data.urls())
        if (auto known = URL::make({.string = url.toString(QUrl::FullyEncoded).toStdString()}))
            urls.push_back(std::move(*known));
    return urls;
}

void dragLater(std::unique_ptr<QMimeData> data, QPixmap shown, std::function<void()> ended) {
    // Files stay where they are: a file manager that may move them does.
    const bool isCopied = data->hasUrls() || data->hasImage();
    const Qt::DropAction action = isCopied ? Qt::CopyAction : Qt::MoveAction;
    // Qt looks at the drag once more when it has ended; where it began may have gone by then.
    auto* const drag = new QDrag(qApp);
    drag->setMimeData(data.release());
    constexpr int longest = 160;
    const bool isLarge = shown.width() > longest || shown.height() > longest;
    drag->setPixmap(
        isLarge ? shown.scaled(longest, longest, Qt::KeepAspectRatio, Qt::SmoothTransformation)
                : shown);
    const auto run = [drag, action, ended = std::move(ended)]() noexcept {
        if (QGuiApplication::mouseButtons() & Qt::LeftButton)
            drag->exec(action);
        else
            drag->deleteLater(); // let go in the meantime
        if (ended)
            ended();
    };
    QMetaObject::invokeMethod(qApp, run, Qt::QueuedConnection);
}

} // namespace zorvan::internal
