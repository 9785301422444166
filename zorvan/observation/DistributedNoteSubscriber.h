#pragma once

#include <zorvan/observation/BasicNoteSubscriber.h>
#include <zorvan/platform/messagebus/NSDistributedNotificationCenter.h>

namespace zorvan {

extern template class BasicNoteSubscriber<NSDistributedNotificationCenter>;

/// Observes one notification between processes. Its `object` is a text that names the sender: kept
/// when it is set as a text, and not kept alive, so that it counts for as long as you hold it, when
/// it is set as a shared pointer. A handler without queue runs on the main queue.
using DistributedNoteSubscriber = BasicNoteSubscriber<NSDistributedNotificationCenter>;

} // namespace zorvan
