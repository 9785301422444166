#pragma once

#include <zorvan/platform/foundation/Data.h>
#include <zorvan/platform/security/wipe.h>

#include <utility>

namespace zorvan::security {

/// Bytes that are wiped when they are no longer needed.
class Secret {
public:
    explicit Secret(std::size_t size) : bytes_(size) {}
    explicit Secret(Data bytes) noexcept : bytes_(std::move(bytes)) {}
    Secret(Secret&& other) noexcept : bytes_(std::exchange(other.bytes_, {})) {}
    Secret& operator=(Secret&& other) noexcept {
        bytes_.swap(other.bytes_);
        return *this;
    }
    ~Secret() { wipe(bytes_); }

    Data& bytes() noexcept { return bytes_; }
    const Data& bytes() const noexcept { return bytes_; }
    /// Hands the bytes to someone else, who has to look after them.
    Data take() noexcept { return std::exchange(bytes_, {}); }

private:
    Data bytes_;
};

} // namespace zorvan::security
