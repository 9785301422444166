#pragma once

#include <gtest/gtest.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <grp.h>
#include <iterator>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <poll.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

// Work in child processes: with other rights, at the same time, or stopped half-way.

/// Starts `work` in a child, which ends with status 0 unless an expectation fails in it (1) or it
/// throws (2).
template <class Work>
pid_t startChild(Work work) {
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child != 0)
        return child;
    int status = 2;
    try {
        work();
        status = testing::Test::HasFailure() ? 1 : 0;
    } catch (const std::exception&) {
    }
    std::fflush(nullptr);
    _exit(status);
}

/// The exit status of a child; -1 when a signal ended it.
inline int exitStatus(pid_t child) {
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// Lets one process wait for another.
class Signal {
public:
    Signal() {
        if (pipe(ends_) != 0)
            throw std::runtime_error("no pipe");
    }
    ~Signal() {
        for (const int end : ends_)
            close(end);
    }
    Signal(const Signal&) = delete;
    Signal& operator=(const Signal&) = delete;

    bool give() const { return write(ends_[1], "x", 1) == 1; }
    /// False when nobody gives it in good time.
    bool await() const {
        char c = 0;
        pollfd end{ends_[0], POLLIN, 0};
        return poll(&end, 1, 20'000) == 1 && read(ends_[0], &c, 1) == 1;
    }

private:
    int ends_[2]{};
};

/// How many descriptors this process has.
inline std::ptrdiff_t openDescriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

/// Lets the kernel refuse a call to this process from here on.
inline void refuseCall(unsigned call, unsigned error) {
    sock_filter steps[] = {BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
                           BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, call, 0, 1),
                           BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | error),
                           BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW)};
    const sock_fprog filter{std::size(steps), steps};
    ASSERT_EQ(prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0), 0);
    ASSERT_EQ(prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter), 0);
}

/// Runs `work` without the rights of the superuser, whom no permission holds up.
template <class Work>
void asOrdinaryUser(Work work) {
    constexpr uid_t nobody = 65534;
    const pid_t child = startChild([&] {
        if (geteuid() == 0) {
            ASSERT_TRUE(setgroups(0, nullptr) == 0 && setresgid(nobody, nobody, nobody) == 0 &&
                        setresuid(nobody, nobody, nobody) == 0);
        }
        work();
    });
    EXPECT_EQ(exitStatus(child), 0);
}
