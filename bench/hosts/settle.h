#pragma once

#include <QCoreApplication>
#include <QEvent>

/// Until nothing is left to do, as an event loop that runs goes on to; widgets that are to go go.
inline void settle() {
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}
