#include <zorvan/hosts/qtmodels/QtMainQueue.h>

#include <zorvan/platform/dispatch/MainQueue.h>
#include <zorvan/platform/foundation/fatalError.h>

#include <QCoreApplication>
#include <QPointer>
#include <QSocketNotifier>

namespace zorvan {

void QtMainQueue::attach() {
    static QPointer<QSocketNotifier> notifier;
    QCoreApplication* application = QCoreApplication::instance();
    if (!application)
        fatalError("The main queue runs on the loop of Qt once there is an application object.");
    if (notifier)
        return;
    notifier = new QSocketNotifier(MainQueue::fileDescriptor(), QSocketNotifier::Read, application);
    // No exception can pass through Qt: one that leaves a block ends the program.
    QObject::connect(notifier, &QSocketNotifier::activated, application,
                     []() noexcept { MainQueue::drain(); });
}

} // namespace zorvan
