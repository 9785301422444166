#include <zorvan/platform/dispatch/Notification.h>

#include <utility>

namespace zorvan {

Notification::Notification(NSNotificationName name, std::shared_ptr<const void> object,
                           std::optional<UserInfo> userInfo)
    : name(name), object(std::move(object)), userInfo(std::move(userInfo)) {}

} // namespace zorvan
