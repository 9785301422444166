#pragma once

#include <csignal>
#include <cstdlib>
#include <exception>
#include <functional>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

/// A process of its own that runs a function; true results end it with status 0.
class Child {
public:
    explicit Child(const std::function<bool()>& body) : id_(fork()) {
        if (id_ < 0)
            throw std::runtime_error("no process");
        if (id_ > 0)
            return;
        int status = 1;
        try {
            status = body() ? 0 : 1;
        } catch (const std::exception&) {
            status = 2;
        }
        _exit(status);
    }
    ~Child() {
        if (id_ > 0)
            end();
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    void kill() const { ::kill(id_, SIGKILL); }

    /// Whether it ended by itself with status 0.
    bool end() {
        int status = 0;
        waitpid(id_, &status, 0);
        id_ = 0;
        return WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }

private:
    pid_t id_;
};

inline bool inChild(const std::function<bool()>& body) { return Child(body).end(); }
