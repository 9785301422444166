#pragma once

#include <filesystem>
#include <string>
#include <vector>

/// A folder that goes away with the object.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::filesystem::path path;
};

struct Outcome {
    int status = -1;
    std::string output, errors;
};

/// Runs a program with exactly these arguments and waits for it.
Outcome run(const std::vector<std::string>& command);
