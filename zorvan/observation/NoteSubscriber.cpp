#include <zorvan/observation/NoteSubscriber.h>

template class zorvan::BasicNoteSubscriber<zorvan::NSNotificationCenter>;
