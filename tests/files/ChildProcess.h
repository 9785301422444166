#pragma once

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <exception>
#include <grp.h>
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
