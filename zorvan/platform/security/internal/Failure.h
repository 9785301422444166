#pragma once

#include <zorvan/platform/security/SecBase.h>

namespace zorvan::security {

/// Ends a call with a status; thrown inside the service only.
struct Failure {
    OSStatus status;
};

/// The status for the exception that is being handled: a `Failure`, one of the private store, or
/// `std::bad_alloc`. Others are thrown on.
OSStatus statusOfException();

} // namespace zorvan::security
