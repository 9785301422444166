#include <zorvan/hosts/internal/icons.h>

#include <zorvan/hosts/internal/viewGeometry.h>

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>

namespace zorvan::internal {

namespace {

QImage drawn(const NSImage& image, const QSize& size, const QColor& ink) {
    const CGRect whole(0, 0, size.width(), size.height());
    const auto picture = image.cgImageForProposedRect(whole);
    if (!picture)
        return {};
    // Icons are asked for in whole, small sizes; the picture's own may be others.
    QImage shown = imageOver(picture->bitmap())
                       .scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation)
                       .convertToFormat(QImage::Format_ARGB32_Premultiplied);
    if (image.isTemplate()) {
        QPainter painter(&shown);
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(shown.rect(), ink);
    }
    return shown;
}

class Engine : public QIconEngine {
public:
    explicit Engine(std::shared_ptr<NSImage> image) : image_(std::move(image)) {}

    QIconEngine* clone() const override { return new Engine(image_); }
    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        const double scale = painter->device()->devicePixelRatioF();
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        const QColor ink = QGuiApplication::palette().color(
            group, mode == QIcon::Selected ? QPalette::HighlightedText : QPalette::WindowText);
        QImage shown = drawn(*image_, rect.size() * scale, ink);
        shown.setDevicePixelRatio(scale);
        if (mode == QIcon::Disabled && !image_->isTemplate())
            painter->setOpacity(painter->opacity() * 0.4);
        const QSizeF size = QSizeF(shown.size()) / scale;
        painter->drawImage(QPointF(rect.x() + (rect.width() - size.width()) / 2,
                                   rect.y() + (rect.height() - size.height()) / 2),
                           shown);
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        return scaledPixmap(size, mode, state, 1);
    }
    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State state,
                         qreal scale) override {
        QPixmap pixmap(size);
        pixmap.setDevicePixelRatio(scale);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(), (QSizeF(size) / scale).toSize()), mode, state);
        return pixmap;
    }

private:
    const std::shared_ptr<NSImage> image_;
};

} // namespace

QIcon iconOf(const std::shared_ptr<NSImage>& image) {
    return image ? QIcon(new Engine(image)) : QIcon();
}

} // namespace zorvan::internal
