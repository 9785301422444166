#pragma once

#include <cstdlib>
#include <optional>
#include <string>

/// An environment variable, while the object lives; null takes it away.
class Variable {
public:
    Variable(const char* name, const char* value) : name_(name) {
        if (const char* before = std::getenv(name))
            before_ = before;
        value ? setenv(name, value, 1) : unsetenv(name);
    }
    ~Variable() { before_ ? setenv(name_, before_->c_str(), 1) : unsetenv(name_); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    const char* name_;
    std::optional<std::string> before_;
};
