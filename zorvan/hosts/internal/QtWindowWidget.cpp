#include <zorvan/hosts/internal/QtWindowWidget.h>

#include <zorvan/platform/appkit/NSScrollView.h>

#include <QApplication>
#include <QClipboard>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleHints>
#include <QTextBoundaryFinder>
#include <QWheelEvent>
#include <QWindow>
#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace zorvan::internal {

namespace {

std::shared_ptr<NoteSubscriber> subscriber(const std::shared_ptr<NSWindow>& window,
                                           std::string_view name) {
    auto made = NoteSubscriber::create(NSNotificationCenter::defaultCenter());
    made->setName(NSNotificationName(name));
    made->setObject(window);
    return made;
}

constexpr auto commandKeys = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;

using SearchFields = std::vector<std::shared_ptr<NSSearchField>>;

/// Those that can be seen and typed into.
void collectSearchFields(NSView& view, SearchFields& fields) {
    if (view.isHidden())
        return;
    if (auto field = std::dynamic_pointer_cast<NSSearchField>(view.shared_from_this()))
        if (field->isEnabled())
            fields.push_back(std::move(field));
    for (const auto& inner : view.subviews())
        collectSearchFields(*inner, fields);
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
      resizing_(subscriber(window_, NSWindow::didResizeNotification)),
      becomingMain_(subscriber(window_, NSWindow::didBecomeMainNotification)) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_InputMethodEnabled);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    closing_->subscribe(window_, [this](const auto&, const Notification&) {
        if (!isClosing_)
            close();
    });
    resizing_->subscribe(window_, [this](const auto&, const Notification&) { followWindow(); });
    becomingMain_->subscribe(window_, [this](const auto&, const Notification&) { comeToFront(); });
    window_->setDisplayHandler([this] { windowHasChanged(); });
    followWindow();
}

void QtWindowWidget::retire() {
    window_->setDisplayHandler({});
    closing_->unsubscribe();
    resizing_->unsubscribe();
    becomingMain_->unsubscribe();
    hide();
    deleteLater();
}

// Size and looks

double QtWindowWidget::barsHeight() const {
    return window_->size().height - window_->contentSize().height - NSWindow::titleBarHeight;
}

void QtWindowWidget::windowHasChanged() {
    update();
    followLater();
}

/// When all changes of this turn have been made.
void QtWindowWidget::followLater() {
    const auto follow = [this] {
        followWindow();
        // Out of sight nothing is painted, and a window tells of changes only once it is drawn.
        const bool isInSight = isVisible() && windowHandle()->isExposed();
        if (window_->viewsNeedDisplay() && !isInSight)
            redraw();
    };
    QMetaObject::invokeMethod(this, follow, Qt::QueuedConnection);
}

void QtWindowWidget::followWindow() {
    setWindowTitle(QString::fromStdString(window_->title()));
    setMinimumHeight(static_cast<int>(std::ceil(barsHeight())) + 1);
    if (windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen))
        return giveContentItsRoom(); // the desktop says how large
    const CGSize content = window_->contentSize();
    const auto whole = [](double side) {
        return static_cast<int>(std::ceil(std::min<double>(side, QWIDGETSIZE_MAX)));
    };
    resize(whole(content.width), whole(content.height + barsHeight()));
}

void QtWindowWidget::comeToFront() {
    if (!isVisible())
        return show();
    if (isActiveWindow())
        return;
    raise();
    activateWindow();
}

void QtWindowWidget::resizeEvent(QResizeEvent*) { giveContentItsRoom(); }

void QtWindowWidget::giveContentItsRoom() {
    window_->setContentSize({static_cast<double>(width()), height() - barsHeight()});
}

void QtWindowWidget::paintEvent(QPaintEvent*) {
    if (!drawn_ || window_->viewsNeedDisplay() || devicePixelRatioF() != drawnScale_) {
        redraw();
        followLater();
    }
    QPainter painter(this);
    if (!drawn_)
        return painter.fillRect(rect(), Qt::white); // larger than a bitmap can be
    QImage image(drawn_->data(), static_cast<int>(drawn_->width()),
                 static_cast<int>(drawn_->height()), static_cast<qsizetype>(drawn_->bytesPerRow()),
                 QImage::Format_RGBA8888_Premultiplied);
    image.setDevicePixelRatio(drawnScale_);
    painter.drawImage(QPointF(0, -NSWindow::titleBarHeight), image);
    drawFocus(painter);
}

void QtWindowWidget::redraw() {
    drawnScale_ = devicePixelRatioF();
    drawn_ = window_->render(drawnScale_);
}

/// A ring around the search field that the keyboard goes to.
void QtWindowWidget::drawFocus(QPainter& painter) const {
    const auto field = typedInto();
    if (!field || !isActiveWindow())
        return;
    const CGRect bounds = field->bounds();
    const CGPoint corner = field->convertToBase({bounds.minX(), bounds.maxY()});
    const double top = window_->size().height - NSWindow::titleBarHeight - corner.y;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(palette().highlight(), 2));
    painter.drawRoundedRect(QRectF(corner.x, top, bounds.width(), bounds.height()), 7, 7);
}

void QtWindowWidget::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() != QEvent::ActivationChange)
        return;
    update();
    // A window may be closed while word of its coming to the front is still under way.
    if (isVisible() && isActiveWindow())
        window_->makeMainWindow();
    else
        window_->resignMainWindow();
}

void QtWindowWidget::closeEvent(QCloseEvent*) {
    isClosing_ = true;
    window_->close();
    isClosing_ = false;
}

// The mouse

std::shared_ptr<NSView> QtWindowWidget::viewAt(const QPointF& position) const {
    return window_->contentView()->superview()->hitTest(placeInWindow(position));
}

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
    focus(std::dynamic_pointer_cast<NSSearchField>(viewAt(event->position())));
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

void QtWindowWidget::wheelEvent(QWheelEvent* event) {
    const auto view = viewAt(event->position());
    const auto scrollView = view ? enclosingScrollView(*view) : nullptr;
    if (!scrollView || !scrollView->documentView())
        return event->ignore();
    constexpr double lineHeight = 20, step = 120;
    const QPointF by =
        QPointF(event->angleDelta()) * (QApplication::wheelScrollLines() * lineHeight / step);
    NSClipView& clipView = *scrollView->contentView();
    const CGRect document = scrollView->documentView()->frame(), shown = clipView.bounds();
    const auto held = [](double start, double least, double most) {
        return std::max(std::min(start, most), least);
    };
    const double y = shown.y() + (clipView.isFlipped() ? -by.y() : by.y());
    const CGPoint origin(held(shown.x() - by.x(), document.minX(), document.maxX() - shown.width()),
                         held(y, document.minY(), document.maxY() - shown.height()));
    if (origin == shown.origin)
        return event->ignore();
    clipView.setBoundsOrigin(origin);
    // What is under the mouse is another thing now.
    send(NSEvent::EventType::mouseMoved, event->position());
}

// The keyboard

/// Null when there is none in the window.
std::shared_ptr<NSSearchField> QtWindowWidget::typedInto() const {
    auto field = focused_.lock();
    return field && field->window() == window_ ? field : nullptr;
}

void QtWindowWidget::focus(const std::shared_ptr<NSSearchField>& field) {
    focused_ = field;
    update();
}

bool QtWindowWidget::focusNextPrevChild(bool next) {
    SearchFields fields;
    collectSearchFields(*window_->contentView()->superview(), fields);
    if (fields.empty())
        return false;
    if (!next)
        std::reverse(fields.begin(), fields.end());
    const auto current = std::find(fields.begin(), fields.end(), typedInto());
    const bool goesRound = current == fields.end() || current + 1 == fields.end();
    focus(goesRound ? fields.front() : *(current + 1));
    return true;
}

void QtWindowWidget::type(const QString& text) {
    if (const auto field = typedInto())
        field->enterText(text.toStdString());
}

void QtWindowWidget::keyPressEvent(QKeyEvent* event) {
    const auto field = typedInto();
    if (!field)
        return QWidget::keyPressEvent(event);
    const QString before = QString::fromStdString(field->stringValue());
    if (event->key() == Qt::Key_Backspace)
        type(withoutLastCharacter(before));
    else if (event->key() == Qt::Key_Escape)
        type({});
    else if (event->matches(QKeySequence::Paste))
        type(before + QGuiApplication::clipboard()->text().simplified());
    else if (!(event->modifiers() & commandKeys) && !event->text().isEmpty() &&
             event->text().front().isPrint())
        type(before + event->text());
    else
        QWidget::keyPressEvent(event);
}

void QtWindowWidget::inputMethodEvent(QInputMethodEvent* event) {
    if (const auto field = typedInto(); field && !event->commitString().isEmpty())
        type(QString::fromStdString(field->stringValue()) + event->commitString());
    QWidget::inputMethodEvent(event);
}

} // namespace zorvan::internal
