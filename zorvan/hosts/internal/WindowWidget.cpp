#include <zorvan/hosts/internal/WindowWidget.h>

#include <zorvan/hosts/internal/ViewMirror.h>
#include <zorvan/hosts/internal/barItems.h>
#include <zorvan/hosts/internal/makeWidget.h>
#include <zorvan/hosts/internal/qtEvents.h>
#include <zorvan/hosts/internal/viewGeometry.h>
#include <zorvan/hosts/internal/windowFrames.h>
#include <zorvan/interface/NSApplication.h>

#include <QCloseEvent>
#include <QKeyEvent>
#include <QWindow>
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

/// A window may tell of many changes in one turn of the event loop; they are followed in the next.
void later(QObject& receiver, void (*act)(QObject&)) {
    QMetaObject::invokeMethod(
        &receiver, [&receiver, act]() noexcept { act(receiver); }, Qt::QueuedConnection);
}

} // namespace

/// Gives the content of the window the room that there is.
class WindowWidget::ContentHolder : public QWidget {
public:
    ContentHolder(std::shared_ptr<NSWindow> window, QWidget* parent)
        : QWidget(parent), window_(std::move(window)) {}

    void show(const std::shared_ptr<NSView>& content) {
        for (QWidget* const child : findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
            child->hide();
            child->setParent(nullptr);
            child->deleteLater();
        }
        content_ = makeWidget(content, this);
        content_->resize(size());
        content_->setVisible(!content->isHidden());
    }
    QSize sizeHint() const override { return toQSize(window_->contentSize()); }

protected:
    bool event(QEvent* event) noexcept override { return QWidget::event(event); }
    void resizeEvent(QResizeEvent*) override {
        const auto keptAlive = window_;
        keptAlive->setContentSize({static_cast<double>(width()), static_cast<double>(height())});
        if (content_)
            content_->resize(size());
        keptAlive->displayIfNeeded();
    }

private:
    const std::shared_ptr<NSWindow> window_;
    QPointer<QWidget> content_;
};

class WindowWidget::Mirror : public NSWindowObserver {
public:
    explicit Mirror(WindowWidget& widget) : widget_(&widget) {}

    void viewsNeedDisplay() override {
        later(*widget_, [](QObject& widget) {
            auto& own = static_cast<WindowWidget&>(widget);
            own.window_->displayIfNeeded();
            if (own.toolbar_)
                own.toolbar_->placeItems(); // above dividers
        });
    }
    void propertiesDidChange() override { widget_->followProperties(); }
    void contentViewDidChange() override { widget_->followContent(); }
    void toolbarDidChange() override {
        later(*widget_,
              [](QObject& widget) { static_cast<WindowWidget&>(widget).followToolbar(); });
    }
    void touchBarDidChange() override {
        later(*widget_,
              [](QObject& widget) { static_cast<WindowWidget&>(widget).followTouchBar(); });
    }
    void firstResponderDidChange() override { widget_->followFirstResponder(); }

private:
    WindowWidget* const widget_;
};

WindowWidget::WindowWidget(std::shared_ptr<NSWindow> window)
    : window_(std::move(window)), closing_(subscriber(window_, NSWindow::willCloseNotification)),
      resizing_(subscriber(window_, NSWindow::didResizeNotification)),
      becomingMain_(subscriber(window_, NSWindow::didBecomeMainNotification)),
      mirror_(std::make_shared<Mirror>(*this)),
      // Tab goes through the parts of the window in the order in which they are made.
      toolbar_(window_->toolbar() ? addBar(ItemBar::Kind::toolbar) : nullptr),
      holder_(new ContentHolder(window_, this)) {
    setContextMenuPolicy(Qt::NoContextMenu); // which would let the bars be hidden
    setCentralWidget(holder_);
    closing_->subscribe(window_, [this](const auto&, const Notification&) {
        if (!isClosing_)
            close();
    });
    resizing_->subscribe(window_, [this](const auto&, const Notification&) { followSize(); });
    becomingMain_->subscribe(window_, [this](const auto&, const Notification&) { comeToFront(); });
    window_->addObserver(mirror_);
    followLooks();
    followProperties();
    followToolbar();
    followTouchBar();
    followContent();
    resize(sizeHint());
    restoreFrame(*window_, *this);
    window_->displayIfNeeded();
}

void WindowWidget::retire() {
    saveFrame(*window_, *this);
    mirror_.reset();
    closing_->unsubscribe();
    resizing_->unsubscribe();
    becomingMain_->unsubscribe();
    hide();
    deleteLater();
}

bool WindowWidget::event(QEvent* event) noexcept { return QMainWindow::event(event); }

void WindowWidget::followProperties() {
    setWindowTitle(toQString(window_->title()));
    holder_->setMinimumSize(toQSize(window_->contentMinSize()));
}

void WindowWidget::followSize() {
    if (isSizedByDesktop())
        return;
    const QSize wanted = toQSize(window_->contentSize());
    if (wanted != holder_->size())
        resize(size() + wanted - holder_->size());
}

void WindowWidget::followContent() {
    holder_->show(window_->contentView());
    const auto content = window_->contentView();
    content->setFrame({content->frame().origin, window_->contentSize()});
}

void WindowWidget::followToolbar() {
    window_->layoutIfNeeded(); // which gives the views of the items their sizes
    const auto toolbar = window_->toolbar();
    if (toolbar && !toolbar_)
        toolbar_ = addBar(ItemBar::Kind::toolbar);
    if (toolbar_)
        fillBar(*toolbar_, toolbar != nullptr, toolbar ? toolbarItems(*toolbar) : BarItems());
}

void WindowWidget::followTouchBar() {
    window_->layoutIfNeeded();
    const auto touchBar = window_->touchBar();
    if (touchBar && !touchBar_)
        touchBar_ = addBar(ItemBar::Kind::touchBar);
    if (touchBar_)
        fillBar(*touchBar_, touchBar != nullptr, touchBar ? touchBarItems(*touchBar) : BarItems());
}

ItemBar* WindowWidget::addBar(ItemBar::Kind kind) {
    auto* const bar = new ItemBar(kind, this);
    addToolBar(kind == ItemBar::Kind::toolbar ? Qt::TopToolBarArea : Qt::BottomToolBarArea, bar);
    return bar;
}

/// The content keeps its size, unless the desktop says how large the window is.
void WindowWidget::fillBar(ItemBar& bar, bool isShown, BarItems items) {
    const int before = bar.isHidden() ? 0 : bar.sizeHint().height();
    bar.setVisible(isShown);
    bar.show(std::move(items));
    const int now = isShown ? bar.sizeHint().height() : 0;
    if (now != before && isVisible() && !isSizedByDesktop())
        resize(width(), height() + now - before);
}

bool WindowWidget::isSizedByDesktop() const {
    return windowState().testAnyFlags(Qt::WindowMaximized | Qt::WindowFullScreen);
}

void WindowWidget::followFirstResponder() {
    const auto responder = window_->firstResponder();
    if (QWidget* const widget = responder ? widgetOf(*responder, *this) : nullptr) {
        if (!widget->hasFocus())
            widget->setFocus(Qt::OtherFocusReason);
    } else if (QWidget* const focused = focusWidget(); focused && !responder && viewOf(focused)) {
        focused->clearFocus();
    }
}

void WindowWidget::comeToFront() {
    if (!isVisible())
        return show();
    if (isActiveWindow())
        return;
    raise();
    activateWindow();
}

void WindowWidget::followLooks() {
    NSApplication::shared().setDark(palette().window().color().lightness() < 128);
    window_->displayIfNeeded();
    update();
}

void WindowWidget::showEvent(QShowEvent* event) {
    QMainWindow::showEvent(event);
    const auto keptAlive = window_;
    keptAlive->giveKeyboardToContent();
    followFirstResponder();
    if (!focusWidget())
        holder_->setFocus(); // Qt would give the keyboard to the first tool
}

void WindowWidget::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange)
        followLooks();
    if (event->type() != QEvent::ActivationChange)
        return;
    // A window may be closed while word of its coming to the front is still under way.
    if (isVisible() && isActiveWindow())
        window_->makeMainWindow();
    else
        window_->resignMainWindow();
}

void WindowWidget::closeEvent(QCloseEvent*) {
    saveFrame(*window_, *this);
    isClosing_ = true;
    window_->close();
    isClosing_ = false;
}

void WindowWidget::keyPressEvent(QKeyEvent* event) {
    const auto keptAlive = window_;
    if (event->key() == Qt::Key_F10 && event->modifiers() == Qt::NoModifier && toolbar_ &&
        toolbar_->focusFirst())
        return;
    event->setAccepted(keptAlive->performKeyEquivalent(keyEvent(*event)));
}

} // namespace zorvan::internal
