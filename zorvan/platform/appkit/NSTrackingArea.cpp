#include <zorvan/platform/appkit/NSTrackingArea.h>

#include <utility>

namespace zorvan {

std::shared_ptr<NSTrackingArea> NSTrackingArea::create(const CGRect& rect, Options options,
                                                       const std::shared_ptr<NSView>& owner,
                                                       std::optional<UserInfo> userInfo) {
    return std::make_shared<NSTrackingArea>(Key{}, rect, options, owner, std::move(userInfo));
}

NSTrackingArea::NSTrackingArea(Key, const CGRect& rect, Options options,
                               const std::shared_ptr<NSView>& owner,
                               std::optional<UserInfo> userInfo)
    : rect_(rect), options_(options), owner_(owner), userInfo_(std::move(userInfo)) {}

} // namespace zorvan
