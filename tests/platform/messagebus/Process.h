#pragma once

#include <chrono>
#include <cstdio>
#include <map>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

/// A child process that is spoken to over its standard input and output; killed at the end.
class Process {
public:
    using Environment = std::map<std::string, std::string>;

    Process(const std::vector<std::string>& command, const Environment& environment);
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    void tell(const std::string& line);
    /// The next line, without its end; absent when none comes within the time.
    std::optional<std::string> hear(std::chrono::milliseconds timeout = std::chrono::seconds(20));
    /// Whether no line comes for that long; those that do are dropped.
    bool isSilent(std::chrono::milliseconds time);
    void kill(int signal);
    /// Kills it and waits for its end.
    void end();

private:
    pid_t id_ = -1;
    int input_ = -1;
    int output_ = -1;
    std::string heard_;
};
