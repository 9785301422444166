#pragma once

class QWidget;

namespace zorvan::internal {

/// An event, or a signal, that is being handled by the views. An action may run an event loop of
/// its own, for a question to the user, say, and what it takes out of the window meanwhile must
/// outlive the event that it is still in.
class EventInProgress {
public:
    EventInProgress() noexcept;
    ~EventInProgress();
    EventInProgress(const EventInProgress&) = delete;
    EventInProgress& operator=(const EventInProgress&) = delete;
};

/// Hides the widget, and deletes it once no event is in progress any more.
void retireWidget(QWidget& widget);

} // namespace zorvan::internal
