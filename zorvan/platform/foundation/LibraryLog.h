#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

namespace zorvan {

/// What the library has to say to the people who run a program: nothing, unless something is wrong
/// that no result of a call tells. An application takes it into its own log:
///
/// ```cpp
/// LibraryLog::setHandler([](const LibraryLog::Entry& entry) {
///     if (entry.level >= LibraryLog::Level::warning)
///         journal.write(entry.category, entry.message);
/// });
/// ```
///
/// Without a handler each warning and error is one line on standard error, the message alone, and
/// what is only information is dropped. The lines that operations print on standard output by
/// their documentation, and the last word of `fatalError`, do not come this way.
class LibraryLog {
public:
    /// How bad it is.
    enum class Level : std::uint8_t {
        information, ///< Something is well again.
        warning,     ///< The library goes on with less: in memory, without a format.
        error,       ///< Something was lost.
    };

    /// Something that the library says.
    struct Entry {
        Level level; ///< How bad it is.
        /// The service that speaks: "settings", "messagebus", "libraries".
        std::string_view category;
        /// One line for people, without a line break at its end.
        std::string_view message;
    };

    /// Called on the thread that met the problem, on several at once; the texts live as long as the
    /// call. What it throws is dropped, and the entry written to standard error. So is what the
    /// library says within a call of it, on that thread.
    using Handler = std::function<void(const Entry& entry)>;

    /// Takes the place of the handler there was; an empty one restores standard error. A call that
    /// another thread has begun may still be under way when this returns. From any thread.
    static void setHandler(Handler handler);

    /// For the library's own services, and whoever adds to them. From any thread.
    static void write(const Entry& entry) noexcept;
};

} // namespace zorvan
