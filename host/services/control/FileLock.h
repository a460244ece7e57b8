#pragma once

#include <memory>
#include <string>

namespace host {

// Held by one process at a time, for as long as this lives: the system gives it back at the process's end,
// however that comes. The lock's file is removed with it, unless somebody put another in its place.
class FileLock {
public:
    struct Taken {
        std::unique_ptr<FileLock> lock; // null: not taken
        bool isTakenByAnother = false;
        std::string fault; // why it cannot be had otherwise
    };
    static Taken take(const std::string& path);

    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;
    ~FileLock();

private:
    struct Held;
    explicit FileLock(std::unique_ptr<Held> heldLock);

    const std::unique_ptr<Held> held;
};

} // namespace host
