#include "FileLock.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace host {

struct FileLock::Held {
    int descriptor = -1;
    std::string path;
};

namespace {

// Not when the file was removed by the one who had the lock before, after it was opened here.
bool isStillAt(const std::string& path, int descriptor) {
    struct stat opened {};
    struct stat there {};
    return fstat(descriptor, &opened) == 0 && lstat(path.c_str(), &there) == 0 &&
           opened.st_dev == there.st_dev && opened.st_ino == there.st_ino;
}

} // namespace

FileLock::FileLock(std::unique_ptr<Held> heldLock) : held(std::move(heldLock)) {}

FileLock::~FileLock() {
    if (isStillAt(held->path, held->descriptor))
        unlink(held->path.c_str());
    close(held->descriptor);
}

FileLock::Taken FileLock::take(const std::string& path) {
    constexpr mode_t userAlone = 0600;
    for (;;) {
        const int descriptor = open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, userAlone);
        if (descriptor < 0)
            return {nullptr, false, std::generic_category().message(errno)};
        if (flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
            const int failure = errno;
            close(descriptor);
            return {nullptr, failure == EWOULDBLOCK, std::generic_category().message(failure)};
        }
        if (isStillAt(path, descriptor)) {
            auto held = std::make_unique<Held>(Held{descriptor, path});
            return {std::unique_ptr<FileLock>(new FileLock(std::move(held))), false, {}};
        }
        close(descriptor);
    }
}

} // namespace host
