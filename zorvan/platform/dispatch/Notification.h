#pragma once

#include <zorvan/platform/dispatch/NSNotificationName.h>

#include <any>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace zorvan {

/// What an observer is told: what happened, to whom, and what the sender adds.
struct Notification {
    /// Values of any copyable type by key. A large value is best held through a `std::shared_ptr`.
    using UserInfo = std::map<std::string, std::any, std::less<>>;

    NSNotificationName name; ///< What happened.

    /// The sender; null when there is none. The notification keeps it alive.
    std::shared_ptr<const void> object;

    /// Absent when the sender added nothing.
    std::optional<UserInfo> userInfo;

    /// Of what is given.
    explicit Notification(NSNotificationName name_, std::shared_ptr<const void> object_ = {},
                          std::optional<UserInfo> userInfo_ = {})
        : name(name_), object(std::move(object_)), userInfo(std::move(userInfo_)) {}

    /// The value under the key when there is one of exactly that type, else null. It lives in the
    /// notification.
    template <class T>
    const T* value(std::string_view key) const& noexcept {
        if (!userInfo)
            return nullptr;
        const auto found = userInfo->find(key);
        return found == userInfo->end() ? nullptr : std::any_cast<T>(&found->second);
    }
    template <class T>
    const T* value(std::string_view key) const&& = delete; // it would end with the temporary
};

} // namespace zorvan
