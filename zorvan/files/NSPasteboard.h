#pragma once

#include <zorvan/platform/foundation/URL.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace zorvan {

/// Holds what was cut or copied, or is being dragged, until it is put down somewhere.
///
/// A pasteboard belongs to this process alone, but for the general one while a host shows windows:
/// that is the clipboard of the desktop then, from which it takes texts and URLs. Safe from every
/// thread.
class NSPasteboard {
public:
    using Object = std::variant<URL, std::string>; ///< What it can hold.

    /// The one that cut, copy and paste share.
    static const std::shared_ptr<NSPasteboard>& generalPasteboard();

    /// A new one, for a drag or for the program's own use. Empty.
    static std::shared_ptr<NSPasteboard> create();

    /// Takes everything away, which is what a new owner begins with. Gives the new change count.
    std::int64_t clearContents();

    /// Adds objects after those that are there.
    void writeObjects(std::vector<Object> objects);

    /// All that is there, in the order it was written.
    std::vector<Object> objects() const;

    /// Grows each time the pasteboard is cleared.
    std::int64_t changeCount() const;

    /// Called after each change, on the thread that made it, for the host that passes it on; empty
    /// for nothing.
    void setChangeHandler(std::function<void()> handler);
    /// In place of all that is there, without a word to the handler: what the desktop holds now,
    /// which may take a while to get. It is asked for when somebody reads the pasteboard, on that
    /// thread; what is absent counts as nothing, and is asked for again.
    void adopt(std::function<std::optional<std::vector<Object>>()> contents);

    /// The file URLs among the objects, in their order; a text is none, whatever it says.
    std::vector<URL> fileURLs() const;

private:
    NSPasteboard() = default;
    void tellHandler() const;
    void fetchContents() const;

    mutable std::vector<Object> objects_;
    /// Where the objects are to be had; empty once they are there.
    mutable std::function<std::optional<std::vector<Object>>()> contents_;
    std::int64_t changeCount_ = 0;
    std::function<void()> changeHandler_;
};

} // namespace zorvan
