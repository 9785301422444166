#pragma once

#include <zorvan/platform/settingsdatabase/internal/SettingRows.h>

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zorvan::internal {

/// What a transaction has written so far.
class SettingsOverlay {
public:
    using Changes = std::vector<std::pair<std::string, SharedSetting>>;

    /// What was written under the key, null for a removal; a null pointer when nothing was.
    const SharedSetting* find(std::string_view key) const {
        const auto found = places_.find(key);
        return found == places_.end() ? nullptr : &changes_[found->second].second;
    }

    void put(const std::string& key, SharedSetting value) {
        if (const auto found = places_.find(key); found != places_.end()) {
            SharedSetting& known = changes_[found->second].second;
            if (depth_ > 0)
                replaced_.emplace_back(found->second, known);
            known = std::move(value);
            return;
        }
        changes_.emplace_back(key, std::move(value));
        try {
            places_.emplace(key, changes_.size() - 1);
        } catch (...) {
            changes_.pop_back();
            throw;
        }
    }

    /// How much was written before a transaction within this one.
    struct Mark {
        std::size_t changes;
        std::size_t replaced;
    };
    Mark begin() noexcept {
        ++depth_;
        return {changes_.size(), replaced_.size()};
    }
    void end() noexcept {
        if (--depth_ == 0)
            replaced_.clear();
    }
    /// Ends it, and takes back what it wrote.
    void rollBack(const Mark& mark) noexcept {
        for (; replaced_.size() > mark.replaced; replaced_.pop_back())
            changes_[replaced_.back().first].second = std::move(replaced_.back().second);
        for (; changes_.size() > mark.changes; changes_.pop_back())
            places_.erase(changes_.back().first);
        end();
    }

    /// Each key once, in the order of its first writing.
    const Changes& changes() const noexcept { return changes_; }

private:
    Changes changes_;
    std::map<std::string, std::size_t, std::less<>> places_;
    std::size_t depth_ = 0;                                       // of transactions within this one
    std::vector<std::pair<std::size_t, SharedSetting>> replaced_; // by those, and where
};

} // namespace zorvan::internal
