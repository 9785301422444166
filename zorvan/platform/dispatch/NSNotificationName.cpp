#include <zorvan/platform/dispatch/NSNotificationName.h>

#include <mutex>
#include <set>
#include <shared_mutex>

namespace zorvan {

namespace {

/// Never destroyed: names are used by static objects too.
class NameTable {
public:
    static NameTable& shared() {
        static NameTable* const table = new NameTable;
        return *table;
    }

    const std::string* find(std::string_view text) {
        {
            const std::shared_lock lock(mutex_);
            const auto found = names_.find(text);
            if (found != names_.end())
                return &*found;
        }
        const std::lock_guard lock(mutex_);
        return &*names_.emplace(text).first;
    }

private:
    std::shared_mutex mutex_;
    std::set<std::string, std::less<>> names_; // whose elements stay where they are
};

} // namespace

NSNotificationName::NSNotificationName(std::string_view text)
    : text_(NameTable::shared().find(text)) {}

} // namespace zorvan
