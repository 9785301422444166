#include <zorvan/hosts/internal/EventInProgress.h>

#include <QPointer>
#include <QWidget>
#include <utility>
#include <vector>

namespace zorvan::internal {

namespace {

int depth = 0;
std::vector<QPointer<QWidget>> retired;

} // namespace

EventInProgress::EventInProgress() noexcept { ++depth; }

/// Later still, since Qt has not done with the widget when it has been told of its event.
EventInProgress::~EventInProgress() {
    if (--depth > 0 || retired.empty())
        return;
    for (const QPointer<QWidget>& widget : std::exchange(retired, {}))
        if (widget)
            widget->deleteLater();
}

void retireWidget(QWidget& widget) {
    const EventInProgress now;
    widget.hide();
    retired.emplace_back(&widget);
}

} // namespace zorvan::internal
