#include "DiskRecord.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <linux/fs.h>
#include <map>
#include <optional>
#include <set>
#include <span>
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

constexpr std::uint64_t namingCalls[] = {
    SYS_mkdirat, SYS_unlinkat, SYS_linkat, SYS_renameat, SYS_renameat2,
#ifdef SYS_open
    SYS_mkdir,   SYS_unlink,   SYS_rmdir,  SYS_link,     SYS_rename,
#endif
};

/// That would change a file in another way.
constexpr std::uint64_t unknownCalls[] = {
    SYS_pwritev,   SYS_pwritev2, SYS_sendfile,  SYS_splice,
    SYS_fallocate, SYS_truncate, SYS_symlinkat, SYS_io_uring_setup,
#ifdef SYS_open
    SYS_creat,     SYS_symlink,
#endif
};

bool isAmong(std::span<const std::uint64_t> calls, const Call& call) {
    return std::ranges::find(calls, call.number) != calls.end();
}

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
        thread_ = thread;
        Call& call = calls_[thread];
        if (info.op == PTRACE_SYSCALL_INFO_ENTRY) {
            call = {.number = info.entry.nr};
            std::copy_n(info.entry.args, 6, call.argument);
            if (call.number == SYS_write && call.flag(0) == -1)
                events_.push_back({.kind = Kind::say, .offset = peek(call.argument[1])});
        } else if (info.op == PTRACE_SYSCALL_INFO_EXIT && !info.exit.is_error) {
            call.result = info.exit.rval;
            after(call);
        }
    }

    void after(const Call& call) {
        if (isAmong(unknownCalls, call))
            refuse("call " + std::to_string(call.number));
        if (isAmong(namingCalls, call))
            addNames();
        switch (call.number) {
#ifdef SYS_open
        case SYS_open:
            addOpened(call.flag(1), static_cast<int>(call.result));
            break;
#endif
        case SYS_openat:
            addOpened(call.flag(2), static_cast<int>(call.result));
            break;
        case SYS_write:
        case SYS_writev:
            addWrite(call.flag(0), std::nullopt, call.result);
            break;
        case SYS_pwrite64:
            addWrite(call.flag(0), call.argument[3], call.result);
            break;
        case SYS_copy_file_range:
            if (!call.argument[3])
                refuse("copy_file_range without an offset");
            addWrite(call.flag(2), peek(call.argument[3]) - std::uint64_t(call.result),
                     call.result);
            break;
        case SYS_sync:
        case SYS_syncfs:
            events_.push_back({.kind = Kind::synchronize, .item = DiskEvent::everything});
            break;
        case SYS_ftruncate:
            add(Kind::resize, call.flag(0), call.argument[1]);
            break;
        case SYS_fsync:
        case SYS_fdatasync:
            add(Kind::synchronize, call.flag(0));
            break;
        case SYS_mmap:
            // The shared memory of a database's readers is made anew after a failure.
            if ((call.flag(3) & MAP_SHARED) && (call.flag(2) & PROT_WRITE) &&
                itemAt(call.flag(4)) && !target(call.flag(4)).string().ends_with("-shm"))
                refuse("mmap");
            break;
        case SYS_ioctl:
            if (call.argument[1] == FICLONE)
                refuse("FICLONE");
            break;
        default:
            break;
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
        return "/proc/" + std::to_string(thread_) + "/fd/" + std::to_string(descriptor);
    }

    fs::path target(int descriptor) const {
        std::error_code gone;
        return fs::read_symlink(descriptorPath(descriptor), gone);
    }

    bool isBelowRoot(int descriptor) const {
        const fs::path path = target(descriptor);
        return std::mismatch(root_.begin(), root_.end(), path.begin(), path.end()).first ==
               root_.end();
    }

    /// What a descriptor of the process leads to; absent for what is elsewhere.
    std::optional<int> itemAt(int descriptor) const {
        if (!isBelowRoot(descriptor))
            return std::nullopt;
        const auto known = items_.find(inode(descriptorPath(descriptor)).value());
        if (known == items_.end())
            refuse("a file without a name");
        return known->second;
    }

    int itemOf(ino_t inode) {
        const auto [item, isNew] = items_.try_emplace(inode, count_ + 1);
        count_ += isNew;
        return item->second;
    }

    std::uint64_t peek(std::uint64_t address) const {
        return static_cast<std::uint64_t>(::ptrace(PTRACE_PEEKDATA, thread_, address, nullptr));
    }

    // What becomes of them.

    void add(Kind kind, int descriptor, std::uint64_t size = 0) {
        if (const auto item = itemAt(descriptor))
            events_.push_back({.kind = kind, .item = *item, .offset = size});
    }

    void addWrite(int descriptor, std::optional<std::uint64_t> offset, std::int64_t count) {
        const auto item = itemAt(descriptor);
        if (!item || count == 0)
            return;
        if (!offset) {
            std::ifstream information("/proc/" + std::to_string(thread_) + "/fdinfo/" +
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
        if ((flags & O_TMPFILE) == O_TMPFILE && isBelowRoot(descriptor))
            itemOf(inode(descriptorPath(descriptor)).value());
        else if ((flags & O_CREAT) && addNames())
            return;
        else if (flags & O_TRUNC)
            add(Kind::resize, descriptor);
    }

    using Names = std::set<DiskEvent::Entry>;

    void look(const fs::path& folder, int folderItem, Names& found) {
        std::error_code gone; // by another thread
        for (const auto& entry : fs::directory_iterator(folder, gone)) {
            const auto number = inode(entry.path());
            if (!number)
                continue;
            const int item = itemOf(*number);
            found.insert({folderItem, entry.path().filename(), item, entry.is_directory(gone)});
            if (entry.is_directory(gone))
                look(entry.path(), item, found);
        }
    }

    /// Whether there is another name than before.
    bool addNames() {
        Names now;
        look(root_, 0, now);
        DiskEvent event{.kind = Kind::names};
        std::ranges::set_difference(names_, now, std::back_inserter(event.gone));
        std::ranges::set_difference(now, names_, std::back_inserter(event.come));
        names_ = std::move(now);
        for (const auto& gone : event.gone) // the number of its inode may come to be another's
            if (std::ranges::find(names_, gone.item, &DiskEvent::Entry::item) == names_.end())
                std::erase_if(items_, [&](const auto& item) { return item.second == gone.item; });
        const bool hasCome = !event.come.empty();
        if (hasCome || !event.gone.empty())
            events_.push_back(std::move(event));
        return hasCome;
    }

    const fs::path root_;
    std::vector<DiskEvent> events_;
    Names names_;
    std::map<ino_t, int> items_;
    int count_ = 0;
    std::map<pid_t, Call> calls_;
    pid_t thread_ = 0; // whose stop is being handled
};

} // namespace

std::vector<DiskEvent> recordDisk(const fs::path& folder, const std::function<void()>& work) {
    return Recorder(folder).run(work);
}

void sayToRecorder(std::int64_t number) { (void)!::write(-1, &number, sizeof number); }
