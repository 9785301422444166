#pragma once

#include <cstddef>
#include <string_view>

namespace zorvan::internal {

/// The hash for tables whose keys come from outside: SipHash-1-3 with a key that each process draws
/// for itself, so that nobody can make up texts that all fall into one place. It differs from run
/// to run and is not stored.
struct KeyedHash {
    // Not noexcept: the standard library's tables then keep the hash of each entry beside it.
    std::size_t operator()(std::string_view text) const;
};

} // namespace zorvan::internal
