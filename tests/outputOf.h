#pragma once

#include <cstdio>
#include <string>

/// All that a command of the shell writes. Its exit status goes to `status`.
inline std::string outputOf(const std::string& command, int* status = nullptr) {
    std::string output;
    FILE* const pipe = popen((command + " 2>&1").c_str(), "r");
    for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe))
        output += static_cast<char>(c);
    const int ended = pclose(pipe);
    if (status)
        *status = WEXITSTATUS(ended);
    return output;
}
