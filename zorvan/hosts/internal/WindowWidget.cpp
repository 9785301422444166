#include <zorvan/hosts/internal/WindowWidget.h>

#include <zorvan/hosts/internal/EventInProgress.h>
#include <zorvan/hosts/internal/ViewMirror.h>
#include <zorvan/hosts/internal/barItems.h>
#include <zorvan/hosts/internal/makeWidget.h>
#include <zorvan/hosts/internal/qtEvents.h>
#include <zorvan/hosts/internal/viewGeometry.h>
#include <zorvan/hosts/internal/windowFrames.h>
#include <zorvan/interface/NSApplication.h>

#include <QCloseEvent>
#include <QKeyEvent>
#include <QPointer>
#include <QWindow>
#include <algorithm>
#include <iterator>
#include <set>
#include <utility>
#include <vector>

namespace zorvan::internal {

/// Gives the content of the window the room that there is.
class WindowWidget::ContentHolder : public QWidget {
public:
    ContentHolder(std::shared_ptr<NSWindow> window, QWidget* parent)
        : QWidget(parent), window_(std::move(window)) {}

    void show(const std::shared_ptr<NSView>& content) {
        for (QWidget* const child : shownIn(*this))
            letGo(*child);
        content_ = makeWidget(content, this);
        content_->resize(size());
        content_->setVisible(!content->isHidden());
    }
    QSize sizeHint() const override { return toQSize(window_->contentSize()); }

protected:
    bool event(QEvent* event) noexcept override {
        const EventInProgress inProgress;
        return QWidget::event(event);
    }
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

WindowWidget::WindowWidget(std::shared_ptr<NSWindow> window)
    : window_(std::move(window)), holder_(new ContentHolder(window_, this)) {
    setContextMenuPolicy(Qt::NoContextMenu); // which would let the bars be hidden
    setCentralWidget(holder_);
    subscribe(NSWindow::willCloseNotification, &WindowWidget::closeAlong);
    subscribe(NSWindow::didResizeNotification, &WindowWidget::followSize);
    subscribe(NSWindow::didBecomeMainNotification, &WindowWidget::comeToFront);
    window_->addObserver(observer_);
    followLooks();
    propertiesDidChange();
    followToolbar();
    followTouchBar();
    contentViewDidChange();
    resize(sizeHint());
    restoreFrame(*window_, *this);
    window_->displayIfNeeded();
}

void WindowWidget::retire() {
    saveFrame(*window_, *this);
    observer_.reset();
    for (const auto& subscriber : subscribers_)
        subscriber->unsubscribe();
    retireWidget(*this);
}

void WindowWidget::subscribe(std::string_view name, void (WindowWidget::*act)()) {
    auto subscriber = NoteSubscriber::create(NSNotificationCenter::defaultCenter());
    subscriber->setName(NSNotificationName(name));
    subscriber->setObject(window_);
    subscriber->subscribe(window_,
                          [this, act](const auto&, const Notification&) { (this->*act)(); });
    subscribers_.push_back(std::move(subscriber));
}

void WindowWidget::closeAlong() {
    if (!isClosing_)
        close();
}

/// A window may tell of many changes in one turn of the event loop; they are followed in the next.
void WindowWidget::later(void (WindowWidget::*act)()) {
    QMetaObject::invokeMethod(
        this, [this, act]() noexcept { (this->*act)(); }, Qt::QueuedConnection);
}

void WindowWidget::display() {
    window_->displayIfNeeded();
    if (toolbar_)
        toolbar_->placeItems(); // above dividers
}

void WindowWidget::propertiesDidChange() {
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

void WindowWidget::contentViewDidChange() {
    holder_->show(window_->contentView());
    const auto content = window_->contentView();
    content->setFrame({content->frame().origin, window_->contentSize()});
}

void WindowWidget::followToolbar() {
    followBar(toolbar_, ItemBar::Kind::toolbar, window_->toolbar(), toolbarItems);
}

void WindowWidget::followTouchBar() {
    followBar(touchBar_, ItemBar::Kind::touchBar, window_->touchBar(), touchBarItems);
}

ItemBar* WindowWidget::addBar(ItemBar::Kind kind) {
    auto* const bar = new ItemBar(kind, this);
    addToolBar(kind == ItemBar::Kind::toolbar ? Qt::TopToolBarArea : Qt::BottomToolBarArea, bar);
    return bar;
}

/// The content keeps its size, unless the desktop says how large the window is.
template <class Bar>
void WindowWidget::followBar(ItemBar*& shown, ItemBar::Kind kind, const std::shared_ptr<Bar>& bar,
                             BarItems (*itemsOf)(const Bar&)) {
    window_->layoutIfNeeded(); // which gives the views of the items their sizes
    if (!shown && bar)
        shown = addBar(kind);
    if (!shown)
        return;
    const auto roomOfBar = [shown] { return shown->isHidden() ? 0 : shown->sizeHint().height(); };
    const int before = roomOfBar();
    shown->setVisible(bar != nullptr);
    shown->show(bar ? itemsOf(*bar) : BarItems());
    const int now = roomOfBar();
    if (now != before && isVisible() && !isSizedByDesktop())
        resize(width(), height() + now - before);
    orderKeyViewsLater();
}

bool WindowWidget::isSizedByDesktop() const {
    return windowState().testAnyFlags(Qt::WindowMaximized | Qt::WindowFullScreen);
}

void WindowWidget::firstResponderDidChange() {
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

void WindowWidget::orderKeyViewsLater() {
    if (!std::exchange(willOrderKeyViews_, true))
        later(&WindowWidget::orderKeyViews);
}

namespace {

/// Tab goes from the view to the one that it names, and so on from there, up to one that is in the
/// order already.
void orderFrom(std::shared_ptr<NSView> view, QWidget& window, std::set<const NSView*>& ordered) {
    while (view && ordered.insert(view.get()).second) {
        const auto next = view->nextKeyView();
        QWidget* const from = widgetOf(*view, window);
        QWidget* const to =
            next && !ordered.contains(next.get()) ? widgetOf(*next, window) : nullptr;
        if (from && to)
            QWidget::setTabOrder(from, to);
        view = next;
    }
}

} // namespace

/// From the toolbar to the content, where what stands in order stays so, and to the touch bar. What
/// is made later stands last for Qt, wherever it is.
void WindowWidget::orderParts() {
    std::vector<QWidget*> widgets;
    if (toolbar_)
        widgets = toolbar_->keyWidgets();
    for (QWidget* widget = nextInFocusChain(); widget != this; widget = widget->nextInFocusChain())
        if (holder_->isAncestorOf(widget) && (widget->focusPolicy() & Qt::TabFocus))
            widgets.push_back(widget);
    if (touchBar_)
        std::ranges::copy(touchBar_->keyWidgets(), std::back_inserter(widgets));
    for (std::size_t i = 1; i < widgets.size(); ++i)
        QWidget::setTabOrder(widgets[i - 1], widgets[i]);
}

/// Each chain from its beginning, because what is put behind another view leaves its old place.
void WindowWidget::orderKeyViews() {
    willOrderKeyViews_ = false;
    orderParts();
    std::vector<std::shared_ptr<NSView>> naming;
    std::set<const NSView*> named, ordered;
    for (const QWidget* const widget : findChildren<QWidget*>())
        if (const auto view = viewOf(widget); view && view->nextKeyView()) {
            naming.push_back(view);
            named.insert(view->nextKeyView().get());
        }
    for (const auto& view : naming)
        if (!named.contains(view.get()))
            orderFrom(view, *this, ordered);
    for (const auto& view : naming) // in a ring
        orderFrom(view, *this, ordered);
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
    firstResponderDidChange();
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
