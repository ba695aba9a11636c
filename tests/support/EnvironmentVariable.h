#pragma once

#include <cstdlib>
#include <optional>
#include <string>
#include <utility>

namespace thntfs::test {

/// Gives a variable of the environment another value for a while.
class EnvironmentVariable {
public:
    EnvironmentVariable(std::string name, const std::string& value)
        : name_(std::move(name)) {
        if (const char* old = std::getenv(name_.c_str())) {
            old_ = old;
        }
        ::setenv(name_.c_str(), value.c_str(), 1);
    }
    ~EnvironmentVariable() { old_ ? ::setenv(name_.c_str(), old_->c_str(), 1) : ::unsetenv(name_.c_str()); }
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

private:
    std::string name_;
    std::optional<std::string> old_;
};

} // namespace thntfs::test
