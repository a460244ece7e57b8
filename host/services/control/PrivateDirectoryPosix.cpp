#include "PrivateDirectory.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace host {

namespace {

constexpr mode_t userAlone = 0700;
constexpr mode_t groupEnters = 0750;
constexpr mode_t permissions = 07777;

std::string reason(int failure) {
    return std::generic_category().message(failure);
}

// The directory itself, opened and not only named: what is judged is what is changed.
class OpenDirectory {
public:
    explicit OpenDirectory(const std::string& path)
        : descriptor(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC)),
          failure(descriptor < 0 ? errno : 0) {
        if (descriptor >= 0 && fstat(descriptor, &found) != 0)
            failure = errno;
    }
    OpenDirectory(const OpenDirectory&) = delete;
    OpenDirectory& operator=(const OpenDirectory&) = delete;
    ~OpenDirectory() {
        if (descriptor >= 0)
            close(descriptor);
    }

    const int descriptor;
    int failure;
    struct stat found {};
};

std::string openFault(const std::string& path, int failure) {
    if (failure == ENOTDIR || failure == ELOOP) // a symbolic link may be anybody's and lead anywhere
        return path + " is no directory";
    return "directory " + path + " cannot be opened: " + reason(failure);
}

std::string ownerFault(const std::string& path, const struct stat& found) {
    return "directory " + path + " belongs to another user (user id " + std::to_string(found.st_uid) + ")";
}

} // namespace

std::string userTag() {
    return std::to_string(geteuid());
}

std::string makePrivateDirectory(const std::string& path, std::optional<GroupId> group) {
    if (mkdir(path.c_str(), userAlone) != 0 && errno != EEXIST)
        return "directory " + path + " cannot be made: " + reason(errno);
    const OpenDirectory directory(path);
    const struct stat& found = directory.found;
    // Who may not even open it is somebody else.
    struct stat named {};
    if (directory.failure == EACCES && lstat(path.c_str(), &named) == 0 && named.st_uid != geteuid())
        return ownerFault(path, named);
    if (directory.failure != 0)
        return openFault(path, directory.failure);
    if (found.st_uid != geteuid())
        return ownerFault(path, found);
    if (group && found.st_gid != *group && fchown(directory.descriptor, found.st_uid, *group) != 0)
        return "directory " + path + " cannot be given to the group: " + reason(errno) +
               "; its user has to be a member";
    const mode_t wanted = group ? groupEnters : userAlone;
    if ((found.st_mode & permissions) != wanted && fchmod(directory.descriptor, wanted) != 0)
        return "directory " + path + " cannot be closed to other users: " + reason(errno);
    return {};
}

FoundDirectory findDirectory(const std::string& path) {
    const OpenDirectory directory(path);
    if (directory.failure == ENOENT)
        return {};
    struct stat named {};
    if (directory.failure == EACCES && lstat(path.c_str(), &named) == 0 && named.st_uid != geteuid())
        return {DirectoryState::SomebodyElse, false, ownerFault(path, named)};
    if (directory.failure != 0)
        return {DirectoryState::SomebodyElse, false, openFault(path, directory.failure)};
    if (directory.found.st_uid != geteuid())
        return {DirectoryState::SomebodyElse, false, ownerFault(path, directory.found)};
    const mode_t mode = directory.found.st_mode & permissions;
    if ((mode & (S_IWGRP | S_IWOTH)) != 0)
        return {DirectoryState::SomebodyElse, false, "directory " + path + " can be written to by others"};
    return {DirectoryState::Own, mode == userAlone, {}};
}

} // namespace host
