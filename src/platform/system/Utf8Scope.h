#pragma once

namespace thntfs {

/// As long as it stands, libraries that ask this thread for the encoding of narrow text are told UTF-8,
/// whatever the user's own is.
class Utf8Scope {
public:
    Utf8Scope();
    ~Utf8Scope();
    Utf8Scope(const Utf8Scope&) = delete;
    Utf8Scope& operator=(const Utf8Scope&) = delete;

private:
    void* previous_;
};

} // namespace thntfs
