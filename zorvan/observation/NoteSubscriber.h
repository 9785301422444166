#pragma once

#include <zorvan/observation/BasicNoteSubscriber.h>

namespace zorvan {

extern template class BasicNoteSubscriber<NSNotificationCenter>;

/// Observes one notification of this process. A handler without queue runs on the posting thread.
using NoteSubscriber = BasicNoteSubscriber<NSNotificationCenter>;

} // namespace zorvan
