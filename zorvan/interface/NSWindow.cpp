#include <zorvan/interface/NSWindow.h>

#include <zorvan/interface/NSApplication.h>
#include <zorvan/interface/internal/FrameView.h>
#include <zorvan/interface/internal/ToolbarStrip.h>
#include <zorvan/interface/internal/TouchBarStrip.h>
#include <zorvan/media/CGImage.h>
#include <zorvan/platform/dispatch/NSNotificationCenter.h>

#include <algorithm>
#include <cmath>

namespace zorvan {

namespace {

CGSize atLeastOne(CGSize size) {
    const auto side = [](double length) {
        return std::isfinite(length) && length > 1 ? length : 1;
    };
    return {side(size.width), side(size.height)};
}

} // namespace

std::shared_ptr<NSWindow> NSWindow::create(CGSize contentSize, std::string title) {
    const auto window = std::make_shared<NSWindow>(Key{}, contentSize, std::move(title));
    window->setUp();
    return window;
}

NSWindow::NSWindow(Key, CGSize contentSize, std::string title)
    : title_(std::move(title)), contentSize_(atLeastOne(contentSize)) {}

NSWindow::~NSWindow() {
    if (toolbar_)
        toolbar_->window_.reset();
    if (touchBar_)
        touchBar_->window_.reset();
}

void NSWindow::setUp() {
    frameView_ = FrameView::create();
    frameView_->setContentChanged([weak = weak_from_this()] {
        if (const auto window = weak.lock())
            window->contentDidChange();
    });
    frameView_->setTitle(title_);
    frameView_->didMoveAll(shared_from_this());
    setContentView(nullptr);
}

void NSWindow::setTitle(std::string title) {
    title_ = std::move(title);
    frameView_->setTitle(title_);
    tellObserver(&NSWindowObserver::propertiesDidChange);
}

// What stands where

CGSize NSWindow::size() const {
    const double bars =
        (toolbar_ ? ToolbarStrip::height(*toolbar_) : 0) + (touchBar_ ? TouchBarStrip::height : 0);
    return {contentSize_.width, contentSize_.height + titleBarHeight + bars};
}

void NSWindow::placeViews() {
    const CGSize whole = size();
    frameView_->setFrame(whole.rect());
    double top = whole.height - titleBarHeight;
    if (toolbarStrip_) {
        const double height = ToolbarStrip::height(*toolbar_);
        toolbarStrip_->setFrame({0, top - height, whole.width, height});
        top -= height;
    }
    contentView_->setFrame({0, top - contentSize_.height, whole.width, contentSize_.height});
    if (touchBarStrip_)
        touchBarStrip_->setFrame({0, 0, whole.width, TouchBarStrip::height});
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
    tellObserver(&NSWindowObserver::propertiesDidChange);
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
    frameView_->addSubview(view);
    placeViews();
    tellObserver(&NSWindowObserver::contentViewDidChange);
}

void NSWindow::setToolbar(std::shared_ptr<NSToolbar> toolbar) {
    if (toolbar == toolbar_)
        return;
    const auto keptAlive = shared_from_this();
    if (toolbar_) {
        toolbarStrip_->removeFromSuperview();
        toolbarStrip_.reset();
        toolbar_->comeInto(nullptr);
    }
    if (const auto other = toolbar ? toolbar->window() : nullptr)
        other->setToolbar(nullptr);
    toolbar_ = std::move(toolbar);
    if (toolbar_) {
        toolbarStrip_ = ToolbarStrip::create(toolbar_);
        frameView_->addSubview(toolbarStrip_);
        toolbar_->comeInto(keptAlive);
    }
    placeViews();
    setToolbarNeedsLayout();
}

void NSWindow::setTouchBar(std::shared_ptr<NSTouchBar> touchBar) {
    if (touchBar == touchBar_)
        return;
    const auto keptAlive = shared_from_this();
    if (touchBar_) {
        touchBarStrip_->removeFromSuperview();
        touchBarStrip_.reset();
        touchBar_->window_.reset();
    }
    if (const auto other = touchBar ? touchBar->window() : nullptr)
        other->setTouchBar(nullptr);
    touchBar_ = std::move(touchBar);
    if (touchBar_) {
        touchBarStrip_ = TouchBarStrip::create(touchBar_);
        frameView_->addSubview(touchBarStrip_);
        touchBar_->window_ = keptAlive;
    }
    placeViews();
    setTouchBarNeedsLayout();
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
    tellObserver(&NSWindowObserver::viewsNeedDisplay);
}

void NSWindow::tellObserver(void (NSWindowObserver::*change)()) const {
    // Whoever is told may add another.
    const auto observers = observers_;
    for (const auto& weak : observers)
        if (const auto observer = weak.lock())
            ((*observer).*change)();
}

void NSWindow::addObserver(const std::shared_ptr<NSWindowObserver>& observer) {
    std::erase_if(observers_, [](const auto& other) { return other.expired(); });
    observers_.push_back(observer);
}

void NSWindow::displayIfNeeded() {
    const auto keptAlive = shared_from_this();
    viewsNeedDisplay_ = false;
    layoutIfNeeded();
}

void NSWindow::setToolbarNeedsLayout() {
    barsNeedLayout_ = true;
    contentDidChange();
    tellObserver(&NSWindowObserver::toolbarDidChange);
}

void NSWindow::setTouchBarNeedsLayout() {
    barsNeedLayout_ = true;
    contentDidChange();
    tellObserver(&NSWindowObserver::touchBarDidChange);
}

void NSWindow::layoutIfNeeded() {
    const auto keptAlive = shared_from_this();
    // The bars follow what other views ask for, the sizes of their items and the dividers below
    // them.
    if (std::exchange(barsNeedLayout_, false))
        placeViews();
    contentView_->layoutSubtreeIfNeeded();
    if (toolbarStrip_)
        toolbarStrip_->layout();
    if (touchBarStrip_)
        touchBarStrip_->layout();
    frameView_->layoutSubtreeIfNeeded();
}

std::optional<Bitmap> NSWindow::render(double scale) {
    layoutIfNeeded();
    auto bitmap = frameView_->render(scale);
    if (bitmap) {
        frameView_->didDisplayAll();
        viewsNeedDisplay_ = false;
    }
    return bitmap;
}

std::optional<Data> NSWindow::pngData(double scale) {
    std::optional<Bitmap> bitmap = render(scale);
    return bitmap ? CGImage::create(std::move(*bitmap))->pngData() : std::nullopt;
}

} // namespace zorvan
