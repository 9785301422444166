#include "DiskRecord.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <random>
#include <utility>

namespace fs = std::filesystem;

namespace {

using Kind = DiskEvent::Kind;

struct Item {
    bool isFolder = false;
    std::string bytes;
    std::map<std::string, int> entries;
};

class Disk {
public:
    Disk(const std::vector<DiskEvent>& events, PowerFailure failure)
        : events_(events), failure_(failure), random_(failure.seed) {
        items_[0].isFolder = true;
        for (std::size_t at = 0; at < failure.after; ++at)
            if (events[at].kind == Kind::synchronize)
                lastSynchronized_[events[at].item] = at;
        // Names are kept in order: what is not waited for is there up to some moment.
        const std::size_t lastNames = failure.seed == PowerFailure::allSurvive ? failure.after
                                      : failure.seed == PowerFailure::noneSurvive
                                          ? 0
                                          : random_() % (failure.after + 1);
        for (std::size_t at = 0; at < failure.after; ++at)
            play(events[at], at < lastNames, isWaitedFor(at));
    }

    void write(const fs::path& folder, int number = 0) const {
        for (const auto& [name, entry] : items_.at(number).entries) {
            const Item& item = items_.at(entry);
            if (item.isFolder) {
                fs::create_directory(folder / name);
                write(folder / name, entry);
            } else {
                std::ofstream(folder / name, std::ios::binary) << item.bytes;
            }
            fs::permissions(folder / name, fs::perms(item.isFolder ? 0700 : 0600));
        }
    }

private:
    bool isWaitedFor(std::size_t at) const {
        const DiskEvent& event = events_[at];
        const auto isLaterFor = [&](int item) {
            const auto last = lastSynchronized_.find(item);
            return last != lastSynchronized_.end() && last->second > at;
        };
        if (event.kind != Kind::names)
            return isLaterFor(DiskEvent::everything) || isLaterFor(event.item);
        const auto isIn = [&](const DiskEvent::Entry& entry) { return isLaterFor(entry.folder); };
        return isLaterFor(DiskEvent::everything) || std::ranges::any_of(event.gone, isIn) ||
               std::ranges::any_of(event.come, isIn);
    }

    /// How much of a number of bytes comes to the disk.
    std::size_t surviving(std::size_t count) {
        if (failure_.seed <= PowerFailure::noneSurvive)
            return failure_.seed == PowerFailure::allSurvive ? count : 0;
        const auto kept = random_() % 3;
        return kept < 2 ? kept * count : random_() % (count + 1) / 512 * 512;
    }

    void play(const DiskEvent& event, bool isInOrder, bool isWaitedFor) {
        Item& item = items_[event.item];
        switch (event.kind) {
        case Kind::write: {
            const std::size_t count =
                isWaitedFor ? event.bytes.size() : surviving(event.bytes.size());
            if (count == 0)
                return;
            item.bytes.resize(std::max(item.bytes.size(), std::size_t(event.offset) + count));
            item.bytes.replace(event.offset, count, event.bytes, 0, count);
            return;
        }
        case Kind::resize:
            if (isWaitedFor || surviving(512) == 512)
                item.bytes.resize(event.offset);
            return;
        case Kind::synchronize:
        case Kind::say:
            return;
        case Kind::names:
            if (isWaitedFor || isInOrder)
                changeNames(event);
        }
    }

    void changeNames(const DiskEvent& event) {
        const auto isThere = [&](const DiskEvent::Entry& entry) {
            const auto& entries = items_[entry.folder].entries;
            const auto found = entries.find(entry.name);
            return found != entries.end() && found->second == entry.item;
        };
        // An entry that did not survive has no other name either.
        for (const auto& entry : event.come) {
            const auto before = std::ranges::find(event.gone, entry.item, &DiskEvent::Entry::item);
            if (before != event.gone.end() && !isThere(*before))
                return;
        }
        for (const auto& entry : event.gone)
            items_[entry.folder].entries.erase(entry.name);
        for (const auto& entry : event.come) {
            items_[entry.item].isFolder = entry.isFolder;
            items_[entry.folder].entries[entry.name] = entry.item;
        }
    }

    const std::vector<DiskEvent>& events_;
    const PowerFailure failure_;
    std::mt19937 random_;
    std::map<int, Item> items_;
    std::map<int, std::size_t> lastSynchronized_;
};

} // namespace

void restoreDisk(const std::vector<DiskEvent>& events, PowerFailure failure,
                 const fs::path& folder) {
    Disk(events, failure).write(folder);
}
