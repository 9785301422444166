#include <zorvan/hosts/QtWindowHost.h>

#include <zorvan/hosts/internal/QtMenus.h>
#include <zorvan/hosts/internal/ViewMirror.h>
#include <zorvan/hosts/internal/WindowWidget.h>
#include <zorvan/hosts/internal/accessibility.h>
#include <zorvan/hosts/internal/clipboard.h>
#include <zorvan/interface/NSApplication.h>
#include <zorvan/platform/dispatch/MainQueue.h>
#include <zorvan/platform/foundation/fatalError.h>

#include <QApplication>
#include <QPointer>
#include <QSocketNotifier>
#include <set>

namespace zorvan {

namespace {

std::set<const NSWindow*>& hostedWindows() {
    static std::set<const NSWindow*> windows;
    return windows;
}

/// Once for each application object.
void serveApplication() {
    static QPointer<QSocketNotifier> notifier;
    if (notifier)
        return;
    notifier = new QSocketNotifier(MainQueue::fileDescriptor(), QSocketNotifier::Read, qApp);
    QObject::connect(notifier, &QSocketNotifier::activated, qApp,
                     []() noexcept { MainQueue::drain(); });
    const auto follow = [](Qt::ApplicationState state) noexcept {
        NSApplication::shared().setActive(state == Qt::ApplicationActive);
    };
    QObject::connect(qApp, &QGuiApplication::applicationStateChanged, qApp, follow);
    internal::installAccessibility();
    internal::shareClipboard();
    NSMenu::setHost([](NSMenu& menu) { internal::openMenu(menu); });
}

} // namespace

std::shared_ptr<QtWindowHost> QtWindowHost::show(std::shared_ptr<NSWindow> window) {
    if (!window)
        fatalError("There is no window to show.");
    if (!qobject_cast<QApplication*>(QCoreApplication::instance()))
        fatalError("A window can be shown once there is a QApplication.");
    if (!hostedWindows().insert(window.get()).second)
        fatalError("The window has a host already.");
    serveApplication();
    const std::shared_ptr<QtWindowHost> host(new QtWindowHost(std::move(window)));
    host->window()->makeMainWindow();
    host->widget_->show();
    return host;
}

QtWindowHost::QtWindowHost(std::shared_ptr<NSWindow> window)
    : widget_(new internal::WindowWidget(std::move(window))) {}

QtWindowHost::~QtWindowHost() {
    hostedWindows().erase(window().get());
    widget_->retire();
}

const std::shared_ptr<NSWindow>& QtWindowHost::window() const noexcept {
    return widget_->shownWindow();
}

QWidget& QtWindowHost::widget() const noexcept { return *widget_; }

QWidget* QtWindowHost::widget(const NSView& forView) const {
    return internal::widgetOf(forView, *widget_);
}

} // namespace zorvan
