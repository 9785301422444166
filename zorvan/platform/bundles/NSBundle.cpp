#include <zorvan/platform/bundles/NSBundle.h>

#include <zorvan/platform/foundation/executablePath.h>
#include <zorvan/platform/propertylist/PropertyListFile.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace zorvan {

namespace {

namespace fs = std::filesystem;

bool isFolder(const fs::path& path) {
    std::error_code ignored;
    return fs::is_directory(path, ignored);
}

std::optional<fs::path> informationFile(const fs::path& folder) {
    for (const fs::path& file : {folder / "Contents" / "Info.plist", folder / "Info.plist"}) {
        std::error_code ignored;
        if (fs::is_regular_file(file, ignored))
            return file;
    }
    return std::nullopt;
}

PropertyList::Dictionary readInformation(const fs::path& folder) {
    const std::optional<fs::path> file = informationFile(folder);
    std::optional<PropertyList> list = file ? propertylist::readFile(file->string()) : std::nullopt;
    auto* dictionary = list ? list->as<PropertyList::Dictionary>() : nullptr;
    return dictionary ? std::move(*dictionary) : PropertyList::Dictionary();
}

fs::path resourceFolder(const fs::path& folder) {
    for (const fs::path& resources : {folder / "Contents" / "Resources", folder / "Resources"})
        if (isFolder(resources))
            return resources;
    return folder;
}

/// Whether a relative path stays where it begins.
bool staysInside(std::string_view text) {
    const fs::path path(text);
    return path.is_relative() && text.find('\0') == std::string_view::npos &&
           std::find(path.begin(), path.end(), "..") == path.end();
}

URL fileURL(const fs::path& path) { return URL({.fileURLWithPath = path.string()}); }

} // namespace

NSBundle::NSBundle(const std::string& path)
    : url_(fileURL(path)), resources_(fileURL(resourceFolder(url_.path()))),
      info_(readInformation(url_.path())) {}

std::shared_ptr<NSBundle> NSBundle::create(const std::string& path) {
    if (path.empty() || !isFolder(path))
        return nullptr;
    return std::shared_ptr<NSBundle>(new NSBundle(path));
}

std::shared_ptr<NSBundle> NSBundle::mainBundle() {
    // Never destroyed, since it may be asked for while the program ends.
    static const auto& bundle =
        *new std::shared_ptr<NSBundle>(new NSBundle(bundlePathForExecutable(executablePath())));
    return bundle;
}

std::string NSBundle::bundlePathForExecutable(const std::string& executablePath) {
    const fs::path executable(URL({.fileURLWithPath = executablePath}).path());
    const fs::path folder = executable.parent_path();
    const fs::path name = executable.filename();
    if (const fs::path beside = folder / (name.string() + ".bundle"); informationFile(beside))
        return beside.string();
    if (const fs::path shared = folder.parent_path() / "share" / name; informationFile(shared))
        return shared.string();
    const fs::path around = folder.parent_path();
    if (around.filename() == "Contents" && informationFile(around.parent_path()))
        return around.parent_path().string();
    return folder.string();
}

const PropertyList* NSBundle::objectForInfoDictionaryKey(std::string_view key) const noexcept {
    const auto found = info_.find(key);
    return found == info_.end() ? nullptr : &found->second;
}

std::optional<std::string> string(const NSBundle& bundle, std::string_view key) {
    const PropertyList* value = bundle.objectForInfoDictionaryKey(key);
    const auto* text = value ? value->as<std::string>() : nullptr;
    return text ? std::optional(*text) : std::nullopt;
}

std::optional<std::string> NSBundle::bundleIdentifier() const {
    return string(*this, "CFBundleIdentifier");
}

std::optional<URL> NSBundle::URLForResource(std::string_view name, std::string_view withExtension,
                                            std::optional<std::string_view> subdirectory) const {
    std::string file(name);
    if (!withExtension.empty()) {
        file += withExtension.starts_with('.') ? "" : ".";
        file += withExtension;
    }
    if (name.empty() || !staysInside(file) || !staysInside(subdirectory.value_or("")))
        return std::nullopt;
    const fs::path path = fs::path(resources_.path()) / subdirectory.value_or("") / file;
    std::error_code ignored;
    return fs::exists(path, ignored) ? std::optional(fileURL(path)) : std::nullopt;
}

} // namespace zorvan
