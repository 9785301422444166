#pragma once

#include <zorvan/platform/privatestore/internal/WALStamp.h>
#include <zorvan/platform/security/internal/SecureItem.h>

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace zorvan::security {

/// What was read of the database, sealed as it is there, for as long as nobody writes: to ask the
/// engine again takes as long as everything else in the reading of a secret. A mebibyte at most.
class ReadItems {
public:
    /// Forgets what was read at another stamp than that of now.
    void goOnAt(const privatestore::WALStamp& now);

    /// The items of a service and account; absent when they are not known.
    std::optional<std::vector<SecureItem>> of(const std::string& service,
                                              const std::string& account) const;
    void keep(const std::string& service, const std::string& account,
              const std::vector<SecureItem>& items);

private:
    privatestore::WALStamp stamp_;
    std::map<std::tuple<std::string, std::string>, std::vector<SecureItem>, std::less<>> items_;
    std::size_t size_ = 0;
};

} // namespace zorvan::security
