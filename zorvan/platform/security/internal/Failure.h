#pragma once

#include <zorvan/platform/security/SecBase.h>

namespace zorvan::security {

/// Ends a call with a status; thrown inside the service only.
struct Failure {
    OSStatus status;
};

} // namespace zorvan::security
