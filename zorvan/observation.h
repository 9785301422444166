#pragma once

#include <zorvan/observation/DispatchQueue.h>
#include <zorvan/observation/DistributedNoteSubscriber.h>
#include <zorvan/observation/MultiNoteSubscriber.h>
#include <zorvan/observation/NoteSubscriber.h>
#include <zorvan/observation/StoppableState.h>
#include <zorvan/observation/ValueLoader.h>
#include <zorvan/observation/WeakValue.h>
#include <zorvan/platform/dispatch/MainQueue.h>
#include <zorvan/platform/dispatch/concurrentPerform.h>
