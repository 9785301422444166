#pragma once

#include <tests/files/TemporaryFolder.h>

#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
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
    posix_spawn_file_actions_t streams;
    posix_spawn_file_actions_init(&streams);
    for (const auto& [stream, file] : {std::pair(STDOUT_FILENO, &output), {STDERR_FILENO, &errors}})
        posix_spawn_file_actions_addopen(&streams, stream, file->c_str(), O_CREAT | O_WRONLY, 0600);
    pid_t child = 0;
    int status = -1;
    if (posix_spawnp(&child, words[0], &streams, nullptr, words.data(), environ) == 0)
        waitpid(child, &status, 0);
    posix_spawn_file_actions_destroy(&streams);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, text(output), text(errors)};
}
