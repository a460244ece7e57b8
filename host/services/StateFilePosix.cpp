#include "StateFile.h"

#include "runtime/DirectoryWay.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace host {

namespace {

constexpr mode_t userAlone = 0700;
constexpr mode_t ownFile = 0600;
constexpr off_t longestText = off_t{4} * 1024 * 1024; // some ten thousand pulses

std::string failed(const std::string& what) {
    return what + ": " + std::generic_category().message(errno);
}

// An open file or directory, closed at the end.
class Descriptor {
public:
    explicit Descriptor(int openedAs) : number(openedAs) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (number >= 0)
            ::close(number);
    }
    int get() const { return number; }

private:
    const int number;
};

std::string baseFault(const std::string& base) {
    struct stat found {};
    if (stat(base.c_str(), &found) != 0)
        return failed("directory " + base + " cannot be looked at");
    if (!S_ISDIR(found.st_mode))
        return base + " is no directory";
    if (found.st_uid != geteuid() && found.st_uid != 0)
        return "directory " + base + " belongs to another user";
    return (found.st_mode & S_IWOTH) != 0 ? "everybody may write to directory " + base : std::string();
}

std::string makeFolder(const std::string& folder) {
    if (mkdir(folder.c_str(), userAlone) != 0 && errno != EEXIST)
        return failed("directory " + folder + " cannot be made");
    struct stat found {};
    if (lstat(folder.c_str(), &found) != 0 || !S_ISDIR(found.st_mode))
        return folder + " is no directory";
    if (found.st_uid != geteuid())
        return "directory " + folder + " belongs to another user";
    if ((found.st_mode & 07777) != userAlone && chmod(folder.c_str(), userAlone) != 0)
        return failed("directory " + folder + " cannot be closed to other users");
    return {};
}

bool writeAll(int descriptor, const std::string& text) {
    for (std::size_t done = 0; done < text.size();) {
        const ssize_t written = ::write(descriptor, text.data() + done, text.size() - done);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        done += static_cast<std::size_t>(written);
    }
    return true;
}

// The names in a directory are on the disk only once the directory is.
std::string syncFolder(const std::string& folder) {
    const Descriptor directory(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return directory.get() >= 0 && fsync(directory.get()) == 0 ? std::string()
                                                               : failed(folder + " cannot be written");
}

} // namespace

StateFile::StateFile(std::string baseDirectory, std::string fileName)
    : base(std::move(baseDirectory)), folder(base + "/sbus-host"), name(std::move(fileName)) {}

StateFile::~StateFile() {
    if (lock >= 0)
        ::close(lock);
}

bool StateFile::isThere() const {
    struct stat found {};
    return lstat(path().c_str(), &found) == 0;
}

std::string StateFile::open() {
    // Of the user who has called su or sudo, for example.
    std::string fault = wayFault(base, ownUser());
    if (!fault.empty())
        return "directory " + base + " could be led elsewhere: " + fault;
    std::error_code failure;
    std::filesystem::create_directories(base, failure);
    fault = baseFault(base);
    if (fault.empty())
        fault = makeFolder(folder);
    if (!fault.empty())
        return fault;
    const std::string lockPath = path() + ".lock";
    lock = ::open(lockPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, ownFile);
    if (lock < 0)
        return failed(lockPath + " cannot be opened");
    return flock(lock, LOCK_EX | LOCK_NB) == 0 ? std::string() : "another sbus-host uses " + path();
}

StateFile::Contents StateFile::read() const {
    // Not through a symbolic link, and without waiting for the other side of a pipe.
    const Descriptor file(::open(path().c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    if (file.get() < 0)
        return {{}, errno == ENOENT ? std::string() : failed(path() + " cannot be read")};
    struct stat found {};
    if (fstat(file.get(), &found) != 0 || !S_ISREG(found.st_mode) || found.st_uid != geteuid())
        return {{}, path() + " is no file of this user's"};
    if (found.st_size > longestText)
        return {{}, path() + " is too long"};
    std::string text(static_cast<std::size_t>(found.st_size), '\0');
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t got = ::read(file.get(), text.data() + done, text.size() - done);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return {{}, failed(path() + " cannot be read")};
        done += static_cast<std::size_t>(got);
    }
    return {text, {}};
}

std::string StateFile::replace(const std::string& text) {
    if (text.empty())
        return unlink(path().c_str()) == 0 || errno == ENOENT ? syncFolder(folder)
                                                              : failed(path() + " cannot be removed");
    const std::string newPath = path() + ".new";
    unlink(newPath.c_str()); // of a host that was killed while it wrote
    {
        const Descriptor file(
            ::open(newPath.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, ownFile));
        if (file.get() < 0 || !writeAll(file.get(), text) || fsync(file.get()) != 0)
            return failed(newPath + " cannot be written");
    }
    if (rename(newPath.c_str(), path().c_str()) != 0)
        return failed(path() + " cannot be replaced");
    return syncFolder(folder);
}

} // namespace host
