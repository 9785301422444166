#include <zorvan/interface/NSWindow.h>

#include <zorvan/interface/NSApplication.h>
#include <zorvan/interface/internal/BarView.h>
#include <zorvan/interface/internal/RootView.h>
#include <zorvan/platform/dispatch/NSNotificationCenter.h>

#include <algorithm>
#include <cmath>
#include <type_traits>

namespace zorvan {

namespace {

CGSize atLeastOne(CGSize size) {
    const auto side = [](double length) {
        return std::isfinite(length) && length > 1 ? length : 1;
    };
    return {side(size.width), side(size.height)};
}

template <class Item>
BarView::Views viewsOf(const std::vector<std::shared_ptr<Item>>& items) {
    BarView::Views views;
    for (const auto& item : items)
        if (item->view())
            views.push_back(item->view());
    return views;
}

} // namespace

std::shared_ptr<NSWindow> NSWindow::create(CGSize contentSize, std::string title) {
    const auto window = std::make_shared<NSWindow>(Key{}, contentSize, std::move(title));
    window->rootView_ = RootView::create([weak = std::weak_ptr(window)] {
        if (const auto living = weak.lock())
            living->contentDidChange();
    });
    window->rootView_->didMoveAll(window);
    window->setContentView(nullptr);
    return window;
}

NSWindow::NSWindow(Key, CGSize contentSize, std::string title)
    : title_(std::move(title)), contentSize_(atLeastOne(contentSize)) {}

NSWindow::~NSWindow() {
    if (toolbar_.bar)
        toolbar_.bar->window_.reset();
    if (touchBar_.bar)
        touchBar_.bar->window_.reset();
}

void NSWindow::setTitle(std::string title) {
    title_ = std::move(title);
    observers_.tell(&NSWindowObserver::propertiesDidChange);
}

// What stands where

/// The bars are above the content, which keeps its place when they come and go.
void NSWindow::placeViews() {
    double width = contentSize_.width, top = contentSize_.height;
    contentView_->setFrame(contentSize_.rect());
    for (const auto& bar : {toolbar_.view, touchBar_.view}) {
        if (!bar)
            continue;
        bar->setFrame({CGPoint(0, top), bar->frame().size});
        width = std::max(width, bar->frame().width());
        top += bar->frame().height();
    }
    rootView_->setFrame({0, 0, width, top});
}

/// What the bars show now.
void NSWindow::holdBars() {
    if (toolbar_.view) {
        auto items = toolbar_.bar->items();
        std::stable_partition(items.begin(), items.end(),
                              [](const auto& item) { return item->isNavigational(); });
        toolbar_.view->hold(viewsOf(items));
    }
    if (touchBar_.view)
        touchBar_.view->hold(viewsOf(touchBar_.bar->items()));
    placeViews();
}

void NSWindow::setContentSize(CGSize size) {
    const CGSize wanted(std::max(atLeastOne(size).width, contentMinSize_.width),
                        std::max(atLeastOne(size).height, contentMinSize_.height));
    if (wanted == contentSize_)
        return;
    const auto keptAlive = shared_from_this();
    contentSize_ = wanted;
    placeViews();
    post(didResizeNotification);
}

void NSWindow::setContentMinSize(CGSize size) {
    contentMinSize_ = atLeastOne(size);
    setContentSize(contentSize_);
    observers_.tell(&NSWindowObserver::propertiesDidChange);
}

void NSWindow::setContentView(std::shared_ptr<NSView> view) {
    if (!view)
        view = NSView::create();
    if (view == contentView_)
        return;
    const auto keptAlive = shared_from_this();
    if (contentView_)
        contentView_->removeFromSuperview();
    contentView_ = view;
    rootView_->addSubview(view);
    placeViews();
    observers_.tell(&NSWindowObserver::contentViewDidChange);
}

template <class Bar>
void NSWindow::setBar(Held<Bar> NSWindow::*place, std::shared_ptr<Bar> bar) {
    constexpr bool isToolbar = std::is_same_v<Bar, NSToolbar>;
    Held<Bar>& held = this->*place;
    if (bar == held.bar)
        return;
    const auto keptAlive = shared_from_this();
    if (held.bar) {
        held.view->removeFromSuperview();
        held.view.reset();
        held.bar->comeInto(nullptr);
    }
    if (const auto other = bar ? bar->window() : nullptr)
        other->setBar(place, std::shared_ptr<Bar>());
    held.bar = std::move(bar);
    if (held.bar) {
        held.view = BarView::create(isToolbar ? BarView::Kind::toolbar : BarView::Kind::touchBar);
        rootView_->addSubview(held.view);
        held.bar->comeInto(keptAlive);
    }
    barDidChange(isToolbar ? &NSWindowObserver::toolbarDidChange
                           : &NSWindowObserver::touchBarDidChange);
}

void NSWindow::setToolbar(std::shared_ptr<NSToolbar> toolbar) {
    setBar(&NSWindow::toolbar_, std::move(toolbar));
}

void NSWindow::setTouchBar(std::shared_ptr<NSTouchBar> touchBar) {
    setBar(&NSWindow::touchBar_, std::move(touchBar));
}

void NSWindow::barDidChange(void (NSWindowObserver::*change)()) {
    contentDidChange();
    observers_.tell(change);
}

// The main window

void NSWindow::post(std::string_view name) {
    NSNotificationCenter::defaultCenter()->post(NSNotificationName(name), shared_from_this());
}

bool NSWindow::isMainWindow() const noexcept {
    return NSApplication::shared().mainWindow_.lock().get() == this;
}

void NSWindow::orderFront() {
    isVisible_ = true;
    isClosed_ = false;
}

void NSWindow::makeMainWindow() {
    NSApplication& application = NSApplication::shared();
    const auto before = application.mainWindow();
    if (before.get() == this)
        return;
    const auto self = shared_from_this();
    orderFront();
    if (before)
        before->resignMainWindow();
    if (isClosed_ || application.mainWindow())
        return;
    application.mainWindow_ = self;
    post(didBecomeMainNotification);
}

void NSWindow::resignMainWindow() {
    if (!isMainWindow())
        return;
    NSApplication::shared().mainWindow_.reset();
    post(didResignMainNotification);
}

void NSWindow::close() {
    if (!isVisible_ || isClosed_)
        return;
    const auto keptAlive = shared_from_this();
    isClosed_ = true;
    post(willCloseNotification);
    resignMainWindow();
    isVisible_ = false;
    pressedView_.reset();
    entered_.clear();
}

// Drawing

void NSWindow::contentDidChange() {
    if (std::exchange(viewsNeedDisplay_, true))
        return;
    observers_.tell(&NSWindowObserver::viewsNeedDisplay);
}

void NSWindow::displayIfNeeded() {
    const auto keptAlive = shared_from_this();
    viewsNeedDisplay_ = false;
    layoutIfNeeded();
}

void NSWindow::layoutIfNeeded() {
    const auto keptAlive = shared_from_this();
    holdBars();
    rootView_->layoutSubtreeIfNeeded();
}

} // namespace zorvan
