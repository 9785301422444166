#pragma once

#include <zorvan/platform/foundation/Required.h>

#include <compare>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zorvan {

/// The address of a file, or of anything else.
///
/// A file URL keeps its path as plain bytes, exactly as the file system has them; every other URL
/// keeps its text. Operations on components work on the path of either.
class URL {
public:
    /// A path, absolute or not.
    struct FilePath {
        Required<std::string> fileURLWithPath;
    };
    /// The whole URL.
    struct Text {
        Required<std::string> string;
    };

    /// The file URL of a path. A relative path is taken from the current directory; "." and ".."
    /// components and doubled slashes are folded without looking at the file system; a trailing
    /// slash is dropped (except in "/").
    URL(FilePath argument);

    /// Parses "scheme:rest". A "file:" URL has its percent escapes decoded. Absent when the text is
    /// no URL, and when a file URL holds an escaped NUL or another host than "localhost".
    ///
    /// A URL has a scheme and holds no blank, control character, quote, angle bracket, backslash,
    /// caret, grave accent, brace or bar, no "%" without two hexadecimal digits, and one "#" at
    /// most; a port is a number up to 65,535, and brackets in the host hold an IPv6 address.
    /// Letters beyond ASCII may stand in it as UTF-8.
    static std::optional<URL> make(Text argument);

    /// The file URL of the root directory.
    static URL root();

    /// Whether it is the URL of a file.
    bool isFileURL() const noexcept { return isFile_; }

    /// The path: of a file URL as the file system has it, of any other the text between the
    /// authority and "?" or "#", still escaped.
    /// @{
    const std::string& path() const& noexcept { return path_; }
    std::string path() && noexcept { return std::move(path_); }
    /// @}

    /// The whole URL; a file URL has every byte outside the unreserved characters and "/" escaped.
    std::string absoluteString() const;

    /// The last component, "/" for the root, empty when there is no path. A view into the URL, or a
    /// text of its own when the URL is the result of a call.
    /// @{
    std::string_view lastPathComponent() const& noexcept;
    std::string lastPathComponent() const&& { return std::string(lastPathComponent()); }
    /// @}

    /// What follows the last dot of the last component; empty when the dot begins the name
    /// (".git"), ends it, or is missing. A view or a text as above.
    /// @{
    std::string_view pathExtension() const& noexcept;
    std::string pathExtension() const&& { return std::string(pathExtension()); }
    /// @}

    /// "/", then each component: "/a/b" gives "/", "a", "b".
    std::vector<std::string> pathComponents() const;

    /// Without the dot and the extension of the last component; unchanged without one.
    URL deletingPathExtension() const;
    // What is appended is escaped where the path is: every byte but the unreserved characters and
    // "/".

    /// The extension appended after a dot; unchanged when it is empty, or no component is there.
    URL appendingPathExtension(std::string_view extension) const;
    /// Without the last component; "/" stays.
    URL deletingLastPathComponent() const;
    /// The component after a slash.
    URL appendingPathComponent(std::string_view component) const;

    /// With every symbolic link of an existing path followed; a component that does not exist, and
    /// what comes after it, is kept as it is. Unchanged for a URL that is not a file's.
    URL resolvingSymlinksInPath() const;

    friend bool operator==(const URL&, const URL&) = default;
    friend std::strong_ordering operator<=>(const URL&, const URL&) = default;

private:
    URL() = default;
    URL withPath(std::string path) const;

    std::string prefix_; // what stands before the path; empty for a file
    std::string path_;
    std::string suffix_; // "?query#fragment"
    bool isFile_ = false;

    friend struct std::hash<URL>; ///< Of all the texts.
};

} // namespace zorvan

/// Agrees with equality.
template <>
struct std::hash<zorvan::URL> {
    std::size_t operator()(const zorvan::URL& url) const noexcept;
};
