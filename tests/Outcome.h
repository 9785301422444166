#pragma once

#include <tests/files/ChildProcess.h>
#include <tests/files/TemporaryFolder.h>

#include <fcntl.h>
#include <stdexcept>
#include <string>
#include <unistd.h>
#include <vector>

/// How a program has ended, and what it wrote.
struct Outcome {
    int status = -1; // where it was not killed
    std::string output, errors;
};

/// Runs a program with exactly these arguments and waits for it.
inline Outcome run(const std::vector<std::string>& command) {
    const TemporaryFolder folder;
    const std::string output = folder.path() / "output", errors = folder.path() / "errors";
    std::vector<char*> words;
    for (const std::string& word : command)
        words.push_back(const_cast<char*>(word.c_str()));
    words.push_back(nullptr);
    const pid_t child = startChild([&] {
        dup2(creat(output.c_str(), 0600), STDOUT_FILENO);
        dup2(creat(errors.c_str(), 0600), STDERR_FILENO);
        execvp(words[0], words.data());
        throw std::runtime_error("there is no such program");
    });
    return {exitStatus(child), text(output), text(errors)};
}
