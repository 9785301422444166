#pragma once

#include <tests/files/ChildProcess.h>

#include <csignal>
#include <functional>
#include <poll.h>
#include <stdexcept>
#include <unistd.h>
#include <utility>

/// A process of its own that runs a function; true results end it with status 0.
class Child {
public:
    explicit Child(const std::function<bool()>& body)
        : id_(startChild([&] { EXPECT_TRUE(body()); })) {}
    ~Child() {
        if (id_ > 0)
            end();
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    void kill() const { ::kill(id_, SIGKILL); }

    /// Whether it ended by itself with status 0.
    bool end() { return exitStatus(std::exchange(id_, 0)) == 0; }

private:
    pid_t id_;
};

/// Lets one process wait for another.
class Signal {
public:
    Signal() {
        if (pipe(ends_) != 0)
            throw std::runtime_error("no pipe");
    }
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

inline bool inChild(const std::function<bool()>& body) { return Child(body).end(); }
