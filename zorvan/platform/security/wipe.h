#pragma once

#include <zorvan/platform/foundation/Data.h>

#include <optional>
#include <string>

namespace zorvan {

/// Overwrites a secret, in a way that no compiler leaves out, and empties it. What was copied from
/// it before stays where it is.
/// @{
void wipe(Data& secret) noexcept;
void wipe(std::string& secret) noexcept;
/// @}

namespace detail {

/// Wipes what stands in a place of the caller's then, if anything does that can be wiped.
template <class Secret>
class WipedAtEnd {
public:
    explicit WipedAtEnd(std::optional<Secret>& secret) noexcept : secret_(secret) {}
    WipedAtEnd(const WipedAtEnd&) = delete;
    WipedAtEnd& operator=(const WipedAtEnd&) = delete;
    ~WipedAtEnd() {
        if constexpr (requires { wipe(*secret_); })
            if (secret_)
                wipe(*secret_);
    }

private:
    std::optional<Secret>& secret_;
};

} // namespace detail

} // namespace zorvan
