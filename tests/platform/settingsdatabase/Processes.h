#pragma once

#include <tests/files/ChildProcess.h>

#include <csignal>
#include <functional>
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

inline bool inChild(const std::function<bool()>& body) { return Child(body).end(); }
