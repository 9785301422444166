#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace zorvan::internal {

/// Watches databases for being written, by whichever process, without asking again and again: the
/// kernel tells of their folders. One thread serves all of them, from the first that is watched on.
class FileWatch {
public:
    /// `isPlaced` when a file may have come into the place, whole. Called on the thread of the
    /// watch, sometimes for nothing, and perhaps once more after `stop`.
    using Handler = std::function<void(bool isPlaced)>;
    using Number = std::uint64_t;

    /// Of the process. Never destroyed.
    static FileWatch& shared();

    /// The file, its log and its folder need not exist. 0 when the system gives nothing to watch
    /// with.
    Number start(const std::string& path, Handler handler);
    void stop(Number number);

    // Around a fork. The child has no watches.
    void lock() { mutex_.lock(); }
    void unlock() { mutex_.unlock(); }
    void forgetInChild();

private:
    struct File {
        std::string folder, name;
        Handler handler;
        int watch = -1;  // of the folder, or of the nearest one around it that is there
        int around = -1; // of the one around the folder
        bool isInFolder = false;
    };
    using Files = std::map<Number, File>;
    struct Call {
        Handler handler;
        bool isPlaced = false;
    };
    using Calls = std::map<Number, Call>;

    bool begin();
    void run();
    void handle(std::span<const std::byte> events, Calls& calls);
    void place(File& file);
    void release(int watch);
    /// Whether the file is to be looked at after an event, and whether it may have come into place.
    std::optional<bool> isPlacedBy(File& file, int watch, std::uint32_t what,
                                   std::string_view name);

    std::mutex mutex_;
    int events_ = -1;
    Number last_ = 0;
    Files files_;
};

} // namespace zorvan::internal
