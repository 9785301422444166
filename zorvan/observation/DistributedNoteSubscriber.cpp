#include <zorvan/observation/DistributedNoteSubscriber.h>

template class zorvan::BasicNoteSubscriber<zorvan::NSDistributedNotificationCenter>;
