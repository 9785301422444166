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
        const auto [place, isNew] = places_.try_emplace(key, changes_.size());
        if (isNew)
            changes_.emplace_back(key, std::move(value));
        else
            changes_[place->second].second = std::move(value);
    }

    /// Each key once, in the order of its first writing.
    const Changes& changes() const noexcept { return changes_; }

private:
    Changes changes_;
    std::map<std::string, std::size_t, std::less<>> places_;
};

} // namespace zorvan::internal
