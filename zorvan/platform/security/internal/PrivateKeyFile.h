#pragma once

#include <zorvan/platform/privatestore/internal/PrivateFolder.h>
#include <zorvan/platform/security/internal/SealingKey.h>

#include <ctime>
#include <optional>
#include <sys/types.h>
#include <tuple>

namespace zorvan::security {

/// What changes whenever the key file does, or who owns it, or who may use it. Absent when there is
/// none.
using KeyFileStamp = std::tuple<dev_t, ino_t, std::time_t, long>;
std::optional<KeyFileStamp> stampOfKeyFile(const privatestore::PrivateFolder& folder);

/// The key in the file "key" of a folder; absent when there is none. Throws what the folder does,
/// and `Failure` when the file is damaged: `errSecNotAvailable`. A file that is there is never
/// replaced.
std::optional<SealingKey> readKeyFile(const privatestore::PrivateFolder& folder);

/// The key in the file, which is made when there is none. Of several processes that make one at
/// once, all get the same.
SealingKey readOrMakeKeyFile(const privatestore::PrivateFolder& folder);

} // namespace zorvan::security
