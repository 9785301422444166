#pragma once

#include <zorvan/platform/foundation/PropertyList.h>
#include <zorvan/platform/foundation/URL.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace zorvan {

/// A folder that holds what an application brings along: an information dictionary and resources.
///
/// The information dictionary is the property list "Contents/Info.plist" in the folder, else
/// "Info.plist", XML or binary. The resources are in "Contents/Resources", else "Resources", else
/// in the folder itself, whichever is there first. All of it is read once, when the bundle is made;
/// a bundle never changes after that and may be used from every thread. What it gives by reference
/// lives as long as the bundle does.
class NSBundle {
public:
    /// The bundle at a folder; null when there is no such folder. A folder without an information
    /// dictionary, or with one that cannot be read, makes a bundle whose dictionary is empty.
    static std::shared_ptr<NSBundle> create(const std::string& path);

    /// The bundle of the running program, at `bundlePathForExecutable` of `executablePath()`. Found
    /// on first use. Never null.
    static std::shared_ptr<NSBundle> mainBundle();

    /// Where the main bundle of an executable "dir/name" is. The first of these folders that holds
    /// an information dictionary:
    ///
    /// 1. "dir/name.bundle", which suits a build tree;
    /// 2. "dir/../share/name", which suits an installed program;
    /// 3. when "dir" is a folder in "Contents", the folder around "Contents";
    ///
    /// and "dir" itself when there is none.
    static std::string bundlePathForExecutable(const std::string& executablePath);

    /// The folder.
    /// @{
    const std::string& bundlePath() const noexcept { return url_.path(); }
    const URL& bundleURL() const noexcept { return url_; }
    /// @}

    /// Empty when there is none that can be read.
    const PropertyList::Dictionary& infoDictionary() const noexcept { return info_; }
    /// The value under a key of the information dictionary; null when there is none.
    const PropertyList* objectForInfoDictionaryKey(std::string_view key) const noexcept;
    /// The text under a key; absent when there is none, or something of another kind.
    ///
    /// Found by its argument, `string(*bundle, "CFBundleName")`, and not by its name alone: so
    /// `string` stays the standard one after `using namespace std; using namespace zorvan;`.
    friend std::optional<std::string> string(const NSBundle& bundle, std::string_view key);
    /// The text under "CFBundleIdentifier".
    std::optional<std::string> bundleIdentifier() const;

    /// The folder of the resources.
    const URL& resourceURL() const noexcept { return resources_; }

    /// The resource "name.extension", or "name" when the extension is empty, in a folder below that
    /// of the resources, or in that folder itself. Absent when there is no such file or folder,
    /// when the name is empty, and when a part would lead out of the resources ("..", or a leading
    /// slash).
    std::optional<URL> URLForResource(std::string_view name, std::string_view withExtension,
                                      std::optional<std::string_view> subdirectory = {}) const;

private:
    explicit NSBundle(const std::string& path);

    URL url_;
    URL resources_;
    PropertyList::Dictionary info_;
};

} // namespace zorvan
