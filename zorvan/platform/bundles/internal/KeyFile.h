#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace zorvan::desktop {

/// A file of the form that desktop entries and icon themes have: "[Group]" lines and "Key=value"
/// lines.
class KeyFile {
public:
    /// A file of up to 1 MiB; absent when it cannot be read, or is larger. Lines that are neither
    /// of the two are passed over.
    static std::optional<KeyFile> read(const std::string& path);

    /// The text after "=", without the space around it; null when there is none.
    const std::string* value(std::string_view group, std::string_view key) const;
    /// The value as a number; `otherwise` when it is none from 0 to 65535.
    std::int64_t number(std::string_view group, std::string_view key, std::int64_t otherwise) const;

private:
    using Group = std::map<std::string, std::string, std::less<>>;
    std::map<std::string, Group, std::less<>> groups_;
};

} // namespace zorvan::desktop
