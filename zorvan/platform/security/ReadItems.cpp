#include <zorvan/platform/security/internal/ReadItems.h>

namespace zorvan::security {

namespace {

constexpr std::size_t mostInAll = 1 << 20;
constexpr std::size_t mostOfOne = 1 << 16;

std::size_t sizeOf(const std::vector<SecureItem>& items) {
    std::size_t size = 0;
    for (const SecureItem& item : items) {
        size += sizeof item + item.sealed.size();
        for (const auto& text : item.texts)
            size += text ? text->size() : 0;
    }
    return size;
}

} // namespace

void ReadItems::goOnAt(const privatestore::WALStamp& now) {
    if (now != stamp_)
        *this = {};
    stamp_ = now;
}

std::optional<std::vector<SecureItem>> ReadItems::of(const std::string& service,
                                                     const std::string& account) const {
    const auto found = items_.find(std::tie(service, account));
    return found == items_.end() ? std::nullopt : std::optional(found->second);
}

void ReadItems::keep(const std::string& service, const std::string& account,
                     const std::vector<SecureItem>& items) {
    const std::size_t size = sizeOf(items);
    if (items.empty() || size > mostOfOne)
        return;
    if (size_ + size > mostInAll) {
        items_.clear();
        size_ = 0;
    }
    items_.emplace(std::tie(service, account), items);
    size_ += size;
}

} // namespace zorvan::security
