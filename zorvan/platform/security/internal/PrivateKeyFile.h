#pragma once

#include <zorvan/platform/security/internal/PrivateFolder.h>
#include <zorvan/platform/security/internal/SealingKey.h>

#include <optional>

namespace zorvan::security {

/// The key in the file "key" of a folder; absent when there is none. Throws `Failure`:
/// `errSecAuthFailed` when the file is not the user's alone, `errSecNotAvailable` when it is
/// damaged. A file that is there is never replaced.
std::optional<SealingKey> readKeyFile(const PrivateFolder& folder);

/// The key in the file, which is made when there is none. Of several processes that make one at
/// once, all get the same.
SealingKey readOrMakeKeyFile(const PrivateFolder& folder);

} // namespace zorvan::security
