#pragma once

#include <zorvan/observation/BasicNoteSubscriber.h>
#include <zorvan/platform/messagebus/NSDistributedNotificationCenter.h>

namespace zorvan {

extern template class BasicNoteSubscriber<NSDistributedNotificationCenter>;

/// Observes one notification between processes. Its `object` is a text that names the sender, not
/// kept alive: hold it for as long as it should count. A handler without queue runs on the main
/// queue.
using DistributedNoteSubscriber = BasicNoteSubscriber<NSDistributedNotificationCenter>;

} // namespace zorvan
