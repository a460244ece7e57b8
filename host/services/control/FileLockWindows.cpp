#include "FileLock.h"

#include <QLockFile>

namespace host {

struct FileLock::Held {
    explicit Held(const std::string& path) : file(QString::fromStdString(path)) {
        file.setStaleLockTime(0); // only by the end of its process
    }
    QLockFile file;
};

FileLock::FileLock(std::unique_ptr<Held> heldLock) : held(std::move(heldLock)) {}

FileLock::~FileLock() = default;

FileLock::Taken FileLock::take(const std::string& path) {
    auto held = std::make_unique<Held>(path);
    if (held->file.tryLock(0))
        return {std::unique_ptr<FileLock>(new FileLock(std::move(held))), false, {}};
    return {nullptr, held->file.error() == QLockFile::LockFailedError,
            "its directory is not there or not writable"};
}

} // namespace host
