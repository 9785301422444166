#include <zorvan/hosts/internal/dragging.h>

#include <QApplication>
#include <QDrag>
#include <QImage>
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
        data->setImageData(QImage(picture->data(), static_cast<int>(picture->width()),
                                  static_cast<int>(picture->height()),
                                  static_cast<qsizetype>(picture->bytesPerRow()),
                                  QImage::Format_RGBA8888_Premultiplied)
                               .copy());
    return data;
}

std::vector<URL> urlsOf(const QMimeData& data) {
    std::vector<URL> urls;
    for (const QUrl& url : data.urls())
        if (auto known = URL::make({.string = url.toString(QUrl::FullyEncoded).toStdString()}))
            urls.push_back(std::move(*known));
    return urls;
}

namespace {

QPixmap limited(const QPixmap& picture) {
    constexpr int longest = 160;
    const bool isSmall = picture.width() <= longest && picture.height() <= longest;
    return isSmall
               ? picture
               : picture.scaled(longest, longest, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

} // namespace

void dragLater(std::unique_ptr<QMimeData> data, QPixmap shown, std::function<void()> ended) {
    // Files stay where they are: a file manager that may move them does.
    const bool isCopied = data->hasUrls() || data->hasImage();
    const Qt::DropAction action = isCopied ? Qt::CopyAction : Qt::MoveAction;
    // Qt looks at the drag once more when it has ended; where it began may have gone by then.
    auto* const drag = new QDrag(qApp);
    drag->setMimeData(data.release());
    drag->setPixmap(limited(shown));
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
