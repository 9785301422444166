#include <zorvan/platform/dispatch/NSNotificationName.h>

#include <zorvan/platform/foundation/internal/ForkParticipant.h>

#include <memory>
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

    void lockForFork() { mutex_.lock(); }
    void endFork(bool isChild) {
        if (isChild)
            std::construct_at(&mutex_); // it knows its thread by a number that is not the child's
        else
            mutex_.unlock();
    }

private:
    std::shared_mutex mutex_;
    std::set<std::string, std::less<>> names_; // whose elements stay where they are
};

class AtFork final : public internal::ForkParticipant {
    void lock() override { NameTable::shared().lockForFork(); }
    void end(bool isChild) override { NameTable::shared().endFork(isChild); }
};

constinit AtFork atFork;
const internal::ForkParticipant::Joined joined(atFork);

} // namespace

NSNotificationName::NSNotificationName(std::string_view text)
    : text_(NameTable::shared().find(text)) {}

} // namespace zorvan
