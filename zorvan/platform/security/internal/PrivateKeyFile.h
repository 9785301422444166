#pragma once

#include <zorvan/platform/privatestore/internal/PrivateFolder.h>
#include <zorvan/platform/security/internal/SealingKey.h>

#include <ctime>
#include <optional>
#include <sys/types.h>

namespace zorvan::security {

/// What changes whenever the key file does, or who owns it, or who may use it. Absent when there is
/// none.
struct KeyFileStamp {
    dev_t device;
    ino_t node;
    timespec changed;
    friend bool operator==(const KeyFileStamp& a, const KeyFileStamp& b) {
        return a.device == b.device && a.node == b.node && a.changed.tv_sec == b.changed.tv_sec &&
               a.changed.tv_nsec == b.changed.tv_nsec;
    }
};
std::optional<KeyFileStamp> stampOfKeyFile(const privatestore::PrivateFolder& folder);

/// The key in the file "key" of a folder; absent when there is none. Throws what the folder does,
/// and `Failure` when the file is damaged: `errSecNotAvailable`. A file that is there is never
/// replaced.
std::optional<SealingKey> readKeyFile(const privatestore::PrivateFolder& folder);

/// The key in the file, which is made when there is none. Of several processes that make one at
/// once, all get the same.
SealingKey readOrMakeKeyFile(const privatestore::PrivateFolder& folder);

} // namespace zorvan::security
