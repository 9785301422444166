#include "Process.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

Process::Process(const std::vector<std::string>& command, const Environment& environment) {
    std::array<int, 2> in{};
    std::array<int, 2> out{};
    if (::pipe2(in.data(), O_CLOEXEC) != 0 || ::pipe2(out.data(), O_CLOEXEC) != 0)
        throw std::runtime_error("pipe");
    std::vector<char*> arguments;
    for (const std::string& word : command)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    id_ = ::fork();
    if (id_ == 0) {
        ::dup2(in[0], 0);
        ::dup2(out[1], 1);
        for (const auto& [name, value] : environment)
            value.empty() ? ::unsetenv(name.c_str()) : ::setenv(name.c_str(), value.c_str(), 1);
        ::execvp(arguments[0], arguments.data());
        ::_exit(127);
    }
    ::close(in[0]);
    ::close(out[1]);
    input_ = in[1];
    output_ = out[0];
}

Process::~Process() {
    end();
    ::close(input_);
    ::close(output_);
}

void Process::tell(const std::string& line) {
    const std::string text = line + '\n';
    if (::write(input_, text.data(), text.size()) != static_cast<ssize_t>(text.size()))
        throw std::runtime_error("the process has ended");
}

std::optional<std::string> Process::hear(std::chrono::milliseconds timeout) {
    for (;;) {
        if (const auto end = heard_.find('\n'); end != std::string::npos) {
            std::string line = heard_.substr(0, end);
            heard_.erase(0, end + 1);
            return line;
        }
        pollfd entry{output_, POLLIN, 0};
        std::array<char, 4096> chunk;
        if (::poll(&entry, 1, static_cast<int>(timeout.count())) != 1)
            return std::nullopt;
        const ssize_t got = ::read(output_, chunk.data(), chunk.size());
        if (got <= 0)
            return std::nullopt;
        heard_.append(chunk.data(), static_cast<std::size_t>(got));
    }
}

bool Process::isSilent(std::chrono::milliseconds time) {
    bool wasSilent = true;
    while (hear(time))
        wasSilent = false;
    return wasSilent;
}

void Process::kill(int signal) {
    if (id_ > 0)
        ::kill(id_, signal);
}

void Process::end() {
    kill(SIGKILL);
    if (id_ > 0)
        ::waitpid(id_, nullptr, 0);
    id_ = -1;
}
