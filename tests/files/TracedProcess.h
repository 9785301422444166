#pragma once

#include "ChildProcess.h"

#include <csignal>
#include <cstddef>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/user.h>
#include <utility>

/// Runs work in a process of its own whose n-th system call is fateful, so that a loop over n tries
/// every moment at which it could be.
class TracedProcess {
public:
    enum class Fate {
        killed, // instead of the call
        fails,  // with EIO, without being made
    };
    enum class End {
        hadFewerCalls, // and so came to its own end
        wasStruck,
    };

    TracedProcess(std::size_t fatefulCall, Fate fate) : left_(fatefulCall), fate_(fate) {}

    template <class Work>
    End run(Work work) {
        child_ = startChild([&] {
            ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
            raise(SIGSTOP);
            work();
        });
        int status = 0;
        waitpid(child_, &status, 0);
        EXPECT_TRUE(WIFSTOPPED(status)) << "processes may not be traced here";
        ptrace(PTRACE_SETOPTIONS, child_, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
        for (int signal = 0; WIFSTOPPED(status);) {
            ptrace(PTRACE_SYSCALL, child_, nullptr, signal);
            if (waitpid(child_, &status, 0) != child_)
                break;
            const bool isCall = WIFSTOPPED(status) && WSTOPSIG(status) == (SIGTRAP | 0x80);
            signal = isCall || !WIFSTOPPED(status) ? 0 : WSTOPSIG(status);
            if (isCall)
                passCall();
        }
        exitStatus_ = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        return end_;
    }

    /// How it ended, by itself; -1 when a signal ended it.
    int exitStatus() const { return exitStatus_; }

private:
    /// A stop comes before each call and after it.
    void passCall() {
        isInside_ = !isInside_;
        if (isInside_ && end_ == End::hadFewerCalls && left_-- == 0)
            strike();
        else if (!isInside_ && std::exchange(isFailing_, false))
            setResult();
    }

    void strike() {
        if (fate_ == Fate::killed) {
            end_ = End::wasStruck;
            kill(child_, SIGKILL);
            return;
        }
#if defined(__x86_64__)
        user_regs_struct registers{};
        ptrace(PTRACE_GETREGS, child_, nullptr, &registers);
        if (registers.orig_rax == SYS_exit_group)
            return;
        end_ = End::wasStruck;
        isFailing_ = true;
        registers.orig_rax = ~0ull;
        ptrace(PTRACE_SETREGS, child_, nullptr, &registers);
#endif
    }

    void setResult() {
#if defined(__x86_64__)
        user_regs_struct registers{};
        ptrace(PTRACE_GETREGS, child_, nullptr, &registers);
        registers.rax = static_cast<unsigned long long>(-EIO);
        ptrace(PTRACE_SETREGS, child_, nullptr, &registers);
#endif
    }

    std::size_t left_;
    Fate fate_;
    End end_ = End::hadFewerCalls;
    pid_t child_ = 0;
    int exitStatus_ = -1;
    bool isInside_ = false;
    bool isFailing_ = false;
};
