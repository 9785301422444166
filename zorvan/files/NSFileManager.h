#pragma once

#include <zorvan/platform/foundation/URL.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace zorvan {

/// Questions about the file system and names for new files. Has no state; safe from every thread.
class NSFileManager {
public:
    struct Content {
        bool exist = false;
        bool isDir = false;
    };
    struct PathExtension {
        std::string_view pathExt;
    };
    struct Model {
        Required<URL> for_;
    };

    static const std::shared_ptr<NSFileManager>& defaultManager();

    /// What stands at the URL, symbolic links followed: a link that leads nowhere does not exist,
    /// nor does anything at a URL that is not a file's.
    Content contentExists(const URL& url) const;

    /// The URL itself when nothing exists there, else the first free one of "photo (0).jpg",
    /// "photo (1).jpg" and so on beside it. A symbolic link takes its name even when it leads
    /// nowhere.
    ///
    /// Another process may take the name before you do: create the file so that this fails
    /// (`O_EXCL`, `link`), then ask again.
    URL availableItemURL(const URL& url) const;

    /// The same for a name in a directory.
    URL availableItemURL(std::string_view name, const URL& directory) const;

    /// A URL for a new file in the directory for temporary files (`$TMPDIR`, else "/tmp"), named by
    /// a UUID; with the extension unless it is empty. Nothing is created.
    URL temporaryURL(PathExtension argument = {}) const;

    /// The same with the path extension of `for_`.
    URL temporaryURL(Model argument) const;

private:
    NSFileManager() = default;
};

} // namespace zorvan
