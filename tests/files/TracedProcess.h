#pragma once

#include "ChildProcess.h"

#include <cerrno>
#include <csignal>
#include <cstddef>
#include <fcntl.h>
#include <functional>
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
        fails,  // without being made
        meets,  // a deed of this process just before it
    };
    enum class End {
        hadFewerCalls, // and so came to its own end
        wasStruck,
    };

    TracedProcess(std::size_t fatefulCall, Fate fate, int error = EIO)
        : left_(fatefulCall), fate_(fate), error_(error) {}
    TracedProcess(std::size_t fatefulCall, std::function<void()> deed)
        : left_(fatefulCall), fate_(Fate::meets), error_(0), deed_(std::move(deed)) {}

    /// Called within the work: the calls from here on are none of those that count.
    static void goOnUnharmed() { (void)!write(-1, nullptr, 0); }

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

    /// The number of the call that failed.
    long struckCall() const { return struckCall_; }

private:
    /// A stop comes before each call and after it.
    void passCall() {
        isInside_ = !isInside_;
        if (!isInside_ && std::exchange(isFailing_, false))
            setResult();
        if (!isInside_ || end_ != End::hadFewerCalls || isUnharmed_)
            return;
        __ptrace_syscall_info info{};
        ptrace(PTRACE_GET_SYSCALL_INFO, child_, sizeof info, &info);
        const long call = static_cast<long>(info.entry.nr);
        isUnharmed_ = call == SYS_write && static_cast<int>(info.entry.args[0]) == -1;
        if (!isUnharmed_ && (fate_ == Fate::killed || canFail(call, info.entry.args)) &&
            left_-- == 0)
            strike(call);
    }

    /// What the kernel never refuses: among the locks, to give one back.
    template <class Arguments>
    bool canFail(long call, const Arguments& arguments) const {
        if (call == SYS_fcntl && arguments[1] == F_SETLK)
            return (ptrace(PTRACE_PEEKDATA, child_, arguments[2], nullptr) & 0xFFFF) != F_UNLCK;
        for (const long safe :
             {SYS_getpid, SYS_gettid, SYS_getuid, SYS_geteuid, SYS_getgid, SYS_getegid, SYS_umask,
              SYS_getrandom, SYS_brk, SYS_rt_sigprocmask, SYS_exit_group})
            if (call == safe)
                return false;
        return true;
    }

    void strike(long call) {
        if (fate_ == Fate::killed)
            deed_ = [this] { kill(child_, SIGKILL); };
        if (deed_) {
            end_ = End::wasStruck;
            return deed_();
        }
#if defined(__x86_64__)
        user_regs_struct registers{};
        ptrace(PTRACE_GETREGS, child_, nullptr, &registers);
        struckCall_ = call;
        end_ = End::wasStruck;
        isFailing_ = true;
        if (call != SYS_close) // which lets go of the descriptor whatever it says
            registers.orig_rax = ~0ull;
        ptrace(PTRACE_SETREGS, child_, nullptr, &registers);
#endif
    }

    void setResult() {
#if defined(__x86_64__)
        user_regs_struct registers{};
        ptrace(PTRACE_GETREGS, child_, nullptr, &registers);
        registers.rax = static_cast<unsigned long long>(-error_);
        ptrace(PTRACE_SETREGS, child_, nullptr, &registers);
#endif
    }

    std::size_t left_;
    Fate fate_;
    int error_;
    std::function<void()> deed_;
    End end_ = End::hadFewerCalls;
    pid_t child_ = 0;
    int exitStatus_ = -1;
    long struckCall_ = -1;
    bool isInside_ = false;
    bool isFailing_ = false;
    bool isUnharmed_ = false;
};
