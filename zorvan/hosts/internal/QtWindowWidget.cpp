#include <zorvan/hosts/internal/QtWindowWidget.h>

#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleHints>
#include <QTextBoundaryFinder>
#include <cmath>
#include <utility>

namespace zorvan::internal {

namespace {

std::shared_ptr<NoteSubscriber> subscriber(const std::shared_ptr<NSWindow>& window,
                                           std::string_view name) {
    auto made = NoteSubscriber::create(NSNotificationCenter::defaultCenter());
    made->setName(NSNotificationName(name));
    made->setObject(window);
    return made;
}

QString withoutLastCharacter(const QString& text) {
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    finder.toEnd();
    const auto previous = finder.toPreviousBoundary();
    return previous < 0 ? QString() : text.left(previous);
}

} // namespace

QtWindowWidget::QtWindowWidget(std::shared_ptr<NSWindow> window)
    : window_(std::move(window)), closing_(subscriber(window_, NSWindow::willCloseNotification)),
      resizing_(subscriber(window_, NSWindow::didResizeNotification)) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_InputMethodEnabled);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    closing_->subscribe(window_, [this](const auto&, const Notification&) { hide(); });
    resizing_->subscribe(window_, [this](const auto&, const Notification&) { followWindow(); });
    window_->setDisplayHandler([this] { windowHasChanged(); });
    followWindow();
}

void QtWindowWidget::retire() {
    window_->setDisplayHandler({});
    closing_->unsubscribe();
    resizing_->unsubscribe();
    hide();
    deleteLater();
}

// Size and looks

double QtWindowWidget::barsHeight() const {
    return window_->size().height - window_->contentSize().height - NSWindow::titleBarHeight;
}

/// Later, when all changes of this turn have been made.
void QtWindowWidget::windowHasChanged() {
    update();
    QMetaObject::invokeMethod(
        this, [this] { followWindow(); }, Qt::QueuedConnection);
}

void QtWindowWidget::followWindow() {
    setWindowTitle(QString::fromStdString(window_->title()));
    setMinimumHeight(static_cast<int>(std::ceil(barsHeight())) + 1);
    const CGSize content = window_->contentSize();
    const auto whole = [](double side) {
        return static_cast<int>(std::ceil(std::min<double>(side, QWIDGETSIZE_MAX)));
    };
    resize(whole(content.width), whole(content.height + barsHeight()));
}

void QtWindowWidget::resizeEvent(QResizeEvent*) {
    window_->setContentSize({static_cast<double>(width()), height() - barsHeight()});
}

void QtWindowWidget::paintEvent(QPaintEvent*) {
    const double scale = devicePixelRatioF();
    if (!drawn_ || window_->viewsNeedDisplay() || scale != drawnScale_) {
        drawn_ = window_->render(scale);
        drawnScale_ = scale;
    }
    QPainter painter(this);
    if (!drawn_)
        return painter.fillRect(rect(), Qt::white); // larger than a bitmap can be
    QImage image(drawn_->data(), static_cast<int>(drawn_->width()),
                 static_cast<int>(drawn_->height()), static_cast<qsizetype>(drawn_->bytesPerRow()),
                 QImage::Format_RGBA8888_Premultiplied);
    image.setDevicePixelRatio(scale);
    painter.drawImage(QPointF(0, -NSWindow::titleBarHeight), image);
}

void QtWindowWidget::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() != QEvent::ActivationChange)
        return;
    if (isActiveWindow())
        window_->makeMainWindow();
    else
        window_->resignMainWindow();
}

void QtWindowWidget::closeEvent(QCloseEvent*) { window_->close(); }

// The mouse

CGPoint QtWindowWidget::placeInWindow(const QPointF& position) const {
    return {position.x(), window_->size().height - NSWindow::titleBarHeight - position.y()};
}

void QtWindowWidget::send(NSEvent::EventType type, const QPointF& position,
                          std::int64_t clickCount) {
    window_->sendEvent(
        {.type = type, .locationInWindow = placeInWindow(position), .clickCount = clickCount});
}

std::int64_t QtWindowWidget::countClick(const QPointF& position) {
    const QStyleHints& hints = *QGuiApplication::styleHints();
    const bool goesOn =
        clicks_ > 0 && sincePress_.elapsed() < hints.mouseDoubleClickInterval() &&
        (position - pressedAt_).manhattanLength() <= hints.mouseDoubleClickDistance();
    clicks_ = goesOn ? clicks_ + 1 : 1;
    sincePress_.start();
    pressedAt_ = position;
    return clicks_;
}

void QtWindowWidget::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return event->ignore();
    const auto frameView = window_->contentView()->superview();
    const auto hit = frameView->hitTest(placeInWindow(event->position()));
    typedInto_ = std::dynamic_pointer_cast<NSSearchField>(hit);
    send(NSEvent::EventType::leftMouseDown, event->position(), countClick(event->position()));
}

void QtWindowWidget::mouseMoveEvent(QMouseEvent* event) {
    send(event->buttons() & Qt::LeftButton ? NSEvent::EventType::leftMouseDragged
                                           : NSEvent::EventType::mouseMoved,
         event->position());
}

void QtWindowWidget::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        send(NSEvent::EventType::leftMouseUp, event->position(), clicks_);
}

void QtWindowWidget::leaveEvent(QEvent*) {
    send(NSEvent::EventType::mouseExited, QPointF(mapFromGlobal(QCursor::pos())));
}

// The keyboard

void QtWindowWidget::type(const QString& text) {
    if (const auto field = typedInto_.lock())
        field->enterText(text.toStdString());
}

void QtWindowWidget::keyPressEvent(QKeyEvent* event) {
    const auto field = typedInto_.lock();
    if (!field)
        return QWidget::keyPressEvent(event);
    const QString before = QString::fromStdString(field->stringValue());
    if (event->key() == Qt::Key_Backspace)
        type(withoutLastCharacter(before));
    else if (event->key() == Qt::Key_Escape)
        type({});
    else if (!event->text().isEmpty() && event->text().front().isPrint())
        type(before + event->text());
    else
        QWidget::keyPressEvent(event);
}

void QtWindowWidget::inputMethodEvent(QInputMethodEvent* event) {
    if (const auto field = typedInto_.lock(); field && !event->commitString().isEmpty())
        type(QString::fromStdString(field->stringValue()) + event->commitString());
    QWidget::inputMethodEvent(event);
}

} // namespace zorvan::internal
