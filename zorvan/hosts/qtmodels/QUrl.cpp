#include <zorvan/hosts/qtmodels/QUrl.h>

namespace zorvan {

QUrl toQUrl(const URL& url) {
    return QUrl::fromEncoded(QByteArray::fromStdString(url.absoluteString()));
}

std::optional<URL> toURL(const QUrl& url) {
    if (!url.isValid())
        return std::nullopt;
    return URL::make({.string = url.toEncoded().toStdString()});
}

} // namespace zorvan
