#pragma once

#include <string>
#include <string_view>

namespace zorvan::internal {

/// The place of a database in its folder, made safe: the folder belongs to the user and may be
/// written by nobody else (`settingsFolder()` may not even be read), nothing that stands in for the
/// database is a link or somebody else's. Other processes that open, make or set aside databases in
/// the folder wait while this lives.
class SettingsPlace {
public:
    /// Makes the folder (0700) and an empty database (0600) when they are missing.
    ///
    /// Throws `RefusedFile` when something else is in the place, `std::system_error` when the
    /// folder or the file cannot be made.
    explicit SettingsPlace(const std::string& path);
    ~SettingsPlace();
    SettingsPlace(const SettingsPlace&) = delete;
    SettingsPlace& operator=(const SettingsPlace&) = delete;

    /// Without a symbolic link on the way.
    const std::string& path() const noexcept { return path_; }

    /// Whether a log with something in it stands beside the database.
    bool hasLog() const;

    /// Renames the database and its log to "NAME.damaged", "NAME.damaged-2" and so on, makes an
    /// empty one and returns the new path of the old. Throws `std::system_error`.
    std::string setAside();

private:
    void makeFolder(const std::string& folder);
    void checkFile(const std::string& path) const;
    void makeFile() const;

    int folder_ = -1;
    std::string path_;
};

} // namespace zorvan::internal
