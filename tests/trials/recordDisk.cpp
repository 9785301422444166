#include "DiskRecord.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <linux/fs.h>
#include <map>
#include <optional>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/ptrace.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace fs = std::filesystem;

namespace {

using Kind = DiskEvent::Kind;

struct Call {
    std::uint64_t number = 0;
    std::uint64_t argument[6]{};
    std::int64_t result = 0;
    int flag(int at) const { return static_cast<int>(argument[at]); }
};

/// A name in a folder that is below the one recorded.
struct Place {
    int folder = 0;
    std::string name;
    fs::path path;
};

enum class Effect { opens, creates, makesFolder, links, renames, leaves };

/// A call that takes names: one, or the old one and the new one.
struct NamingCall {
    std::uint64_t number;
    Effect effect;
    bool isAt;        // before each name comes a descriptor of the folder it counts from
    int flagsAt = -1; // which argument the flags are, if any
    bool hasTwo() const { return effect == Effect::links || effect == Effect::renames; }
};

constexpr NamingCall namingCalls[] = {
    {SYS_openat, Effect::opens, true, 2},    {SYS_mkdirat, Effect::makesFolder, true},
    {SYS_unlinkat, Effect::leaves, true},    {SYS_linkat, Effect::links, true},
    {SYS_renameat, Effect::renames, true},   {SYS_renameat2, Effect::renames, true, 4},
#ifdef SYS_open
    {SYS_open, Effect::opens, false, 1},     {SYS_creat, Effect::creates, false},
    {SYS_mkdir, Effect::makesFolder, false}, {SYS_unlink, Effect::leaves, false},
    {SYS_rmdir, Effect::leaves, false},      {SYS_link, Effect::links, false},
    {SYS_rename, Effect::renames, false},
#endif
};

const NamingCall* namingCall(std::uint64_t number) {
    const auto found = std::find_if(std::begin(namingCalls), std::end(namingCalls),
                                    [&](const NamingCall& each) { return each.number == number; });
    return found == std::end(namingCalls) ? nullptr : found;
}

/// What a thread is about.
struct Thread {
    Call call;
    std::optional<Place> old{}, name{}; // in the call
    bool wasThere = false;              // what the name is of
};

class Recorder {
public:
    explicit Recorder(const fs::path& root) : root_(fs::canonical(root)) {
        items_[inode(root_).value()] = 0;
    }

    std::vector<DiskEvent> run(const std::function<void()>& work) {
        const pid_t child = ::fork();
        if (child == 0) {
            ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
            ::raise(SIGSTOP);
            work();
            ::_exit(0);
        }
        int status = 0;
        if (::waitpid(child, &status, 0) != child || !WIFSTOPPED(status))
            throw std::runtime_error("processes may not be traced here");
        ::ptrace(PTRACE_SETOPTIONS, child, nullptr,
                 PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL | PTRACE_O_TRACECLONE |
                     PTRACE_O_TRACEFORK | PTRACE_O_TRACEVFORK);
        ::ptrace(PTRACE_SYSCALL, child, nullptr, 0);
        try {
            follow(child);
        } catch (...) {
            ::kill(child, SIGKILL);
            ::waitpid(child, nullptr, __WALL);
            throw;
        }
        return std::move(events_);
    }

private:
    void follow(pid_t child) {
        int status = 0;
        for (pid_t thread; (thread = ::waitpid(-1, &status, __WALL)) > 0;)
            if (WIFSTOPPED(status))
                ::ptrace(PTRACE_SYSCALL, thread, nullptr, passStop(thread, status));
            else if (thread == child && (!WIFEXITED(status) || WEXITSTATUS(status) != 0))
                throw std::runtime_error("the work did not end well");
    }

    /// The signal to go on with.
    int passStop(pid_t thread, int status) {
        const int signal = WSTOPSIG(status);
        if (signal == (SIGTRAP | 0x80))
            passCall(thread);
        const bool isOurs = signal == (SIGTRAP | 0x80) || signal == SIGTRAP || signal == SIGSTOP;
        return isOurs ? 0 : signal;
    }

    /// A stop comes before each call and after it.
    void passCall(pid_t thread) {
        __ptrace_syscall_info info{};
        ::ptrace(PTRACE_GET_SYSCALL_INFO, thread, sizeof info, &info);
        number_ = thread;
        thread_ = &threads_[thread];
        if (info.op == PTRACE_SYSCALL_INFO_ENTRY) {
            *thread_ = {.call = {.number = info.entry.nr}};
            std::copy_n(info.entry.args, 6, thread_->call.argument);
            before(thread_->call);
        } else if (info.op == PTRACE_SYSCALL_INFO_EXIT && !info.exit.is_error) {
            thread_->call.result = info.exit.rval;
            after(thread_->call);
        }
    }

    /// What can be told only while the names are as they were.
    void before(const Call& call) {
        if (call.number == SYS_write && call.flag(0) == -1)
            events_.push_back({.kind = Kind::say, .offset = peek(call.argument[1])});
        const NamingCall* const naming = namingCall(call.number);
        if (!naming)
            return;
        int at = 0;
        const auto next = [&] {
            const int folder = naming->isAt ? call.flag(at++) : AT_FDCWD;
            return placeOf(folder, call.argument[at++]);
        };
        if (naming->hasTwo())
            thread_->old = next();
        thread_->name = next();
        thread_->wasThere = thread_->name && fs::exists(fs::symlink_status(thread_->name->path));
    }

    void after(const Call& call) {
        if (const NamingCall* const naming = namingCall(call.number))
            return changeNames(*naming, call);
        switch (call.number) {
        case SYS_write:
        case SYS_writev:
            addWrite(call.flag(0), std::nullopt, call.result);
            break;
        case SYS_pwrite64:
            addWrite(call.flag(0), call.argument[3], call.result);
            break;
        case SYS_copy_file_range:
            addWrite(call.flag(2),
                     call.argument[3]
                         ? std::optional(peek(call.argument[3]) - std::uint64_t(call.result))
                         : std::nullopt,
                     call.result);
            break;
        case SYS_sync:
        case SYS_syncfs:
            events_.push_back({.kind = Kind::synchronize, .item = DiskEvent::everything});
            break;
        case SYS_ftruncate:
            if (const auto item = itemAt(call.flag(0)))
                events_.push_back(
                    {.kind = Kind::resize, .item = *item, .offset = call.argument[1]});
            break;
        case SYS_fsync:
        case SYS_fdatasync:
            if (const auto item = itemAt(call.flag(0)))
                events_.push_back({.kind = Kind::synchronize, .item = *item});
            break;
        case SYS_mmap:
            // The shared memory of a database's readers is made anew after a failure.
            if ((call.flag(3) & MAP_SHARED) && (call.flag(2) & PROT_WRITE) &&
                itemAt(call.flag(4)) && !target(call.flag(4)).string().ends_with("-shm"))
                refuse("mmap");
            break;
        case SYS_pwritev:
        case SYS_pwritev2:
        case SYS_sendfile:
        case SYS_splice:
        case SYS_fallocate:
        case SYS_truncate:
        case SYS_io_uring_setup:
            refuse("call " + std::to_string(call.number));
            break;
        case SYS_ioctl:
            if (call.argument[1] == FICLONE)
                refuse("FICLONE");
            break;
        default:
            break;
        }
    }

    void changeNames(const NamingCall& naming, const Call& call) {
        const int flags = naming.flagsAt < 0 ? 0 : call.flag(naming.flagsAt);
        switch (naming.effect) {
        case Effect::opens:
            return addOpened(flags, static_cast<int>(call.result));
        case Effect::creates:
            return addOpened(O_CREAT | O_TRUNC, static_cast<int>(call.result));
        case Effect::makesFolder:
        case Effect::links:
            return addEntry(naming.effect);
        case Effect::renames:
            return addRename((flags & RENAME_EXCHANGE) != 0);
        case Effect::leaves:
            return addLeave();
        }
    }

    [[noreturn]] static void refuse(const std::string& what) {
        throw std::runtime_error("cannot be recorded: " + what);
    }

    // Where things are.

    static std::optional<ino_t> inode(const fs::path& path) {
        struct stat status {};
        return ::stat(path.c_str(), &status) == 0 ? std::optional(status.st_ino) : std::nullopt;
    }

    fs::path descriptorPath(int descriptor) const {
        return "/proc/" + std::to_string(number_) + "/fd/" + std::to_string(descriptor);
    }

    fs::path target(int descriptor) const {
        std::error_code gone;
        return fs::read_symlink(descriptorPath(descriptor), gone);
    }

    bool isBelowRoot(const fs::path& path) const {
        const auto [mismatch, unused] =
            std::mismatch(root_.begin(), root_.end(), path.begin(), path.end());
        return mismatch == root_.end();
    }

    /// What a descriptor of the process leads to; absent for what is elsewhere.
    std::optional<int> itemAt(int descriptor) const {
        if (!isBelowRoot(target(descriptor)))
            return std::nullopt;
        const auto known = items_.find(inode(descriptorPath(descriptor)).value());
        if (known == items_.end())
            refuse("a file that was there before");
        return known->second;
    }

    std::uint64_t peek(std::uint64_t address) const {
        errno = 0;
        return static_cast<std::uint64_t>(::ptrace(PTRACE_PEEKDATA, number_, address, nullptr));
    }

    std::string textAt(std::uint64_t address) const {
        std::string text;
        for (;; address += sizeof(long)) {
            const std::uint64_t word = peek(address);
            char letters[sizeof word];
            std::memcpy(letters, &word, sizeof word);
            const std::size_t length = ::strnlen(letters, sizeof word);
            text.append(letters, length);
            if (errno != 0 || length < sizeof word)
                return text;
        }
    }

    std::optional<Place> placeOf(int folder, std::uint64_t address) const {
        fs::path path = textAt(address);
        const std::string process = "/proc/" + std::to_string(number_);
        if (path.string().starts_with("/proc/self/"))
            path = process + path.string().substr(10);
        else if (path.is_relative())
            path =
                (folder == AT_FDCWD ? fs::path(process + "/cwd") : descriptorPath(folder)) / path;
        std::error_code missing;
        const fs::path parent = fs::canonical(path.parent_path(), missing);
        if (missing || !isBelowRoot(parent))
            return std::nullopt;
        return Place{items_.at(inode(parent).value()), path.filename(), parent / path.filename()};
    }

    // What becomes of them.

    /// The number of an item that has just been made; that of its inode may have been another's.
    int added(ino_t inode) { return items_[inode] = ++count_; }

    void addWrite(int descriptor, std::optional<std::uint64_t> offset, std::int64_t count) {
        const auto item = itemAt(descriptor);
        if (!item || count == 0)
            return;
        if (!offset) {
            std::ifstream information("/proc/" + std::to_string(number_) + "/fdinfo/" +
                                      std::to_string(descriptor));
            std::string label;
            std::uint64_t position = 0;
            information >> label >> position;
            offset = position - static_cast<std::uint64_t>(count);
        }
        DiskEvent event{.kind = Kind::write, .item = *item, .offset = *offset};
        event.bytes.resize(static_cast<std::size_t>(count));
        std::ifstream file(descriptorPath(descriptor), std::ios::binary);
        file.seekg(static_cast<std::streamoff>(*offset));
        if (!file.read(event.bytes.data(), count))
            refuse("what cannot be read");
        events_.push_back(std::move(event));
    }

    void addOpened(int flags, int descriptor) {
        if ((flags & O_TMPFILE) == O_TMPFILE) {
            if (isBelowRoot(target(descriptor)))
                added(inode(descriptorPath(descriptor)).value());
            return;
        }
        if (!thread_->name)
            return;
        if ((flags & O_CREAT) && !thread_->wasThere)
            addEntry(Effect::opens);
        else if (flags & O_TRUNC)
            events_.push_back({.kind = Kind::resize, .item = itemAt(descriptor).value()});
    }

    void addEntry(Effect effect) {
        const auto& place = thread_->name;
        if (!place)
            return;
        const ino_t number = inode(place->path).value();
        // A link, with or without an old name, leads to what is there already.
        const int item = effect == Effect::links ? items_.at(number) : added(number);
        events_.push_back({.kind = Kind::enter,
                           .item = item,
                           .from = place->folder,
                           .name = place->name,
                           .isFolder = effect == Effect::makesFolder});
    }

    void addLeave() {
        if (const auto& place = thread_->name)
            events_.push_back({.kind = Kind::leave, .from = place->folder, .name = place->name});
    }

    void addRename(bool isExchange) {
        const auto& from = thread_->old;
        const auto& to = thread_->name;
        if (!from && !to)
            return;
        if (!from || !to)
            refuse("a rename from or to elsewhere");
        events_.push_back({.kind = isExchange ? Kind::exchange : Kind::rename,
                           .from = from->folder,
                           .to = to->folder,
                           .name = from->name,
                           .newName = to->name});
    }

    const fs::path root_;
    std::vector<DiskEvent> events_;
    std::map<ino_t, int> items_;
    int count_ = 0;
    // Whose stop is being handled.
    pid_t number_ = 0;
    Thread* thread_ = nullptr;
    std::map<pid_t, Thread> threads_;
};

} // namespace

std::vector<DiskEvent> recordDisk(const fs::path& folder, const std::function<void()>& work) {
    return Recorder(folder).run(work);
}

void sayToRecorder(std::int64_t number) { (void)!::write(-1, &number, sizeof number); }
