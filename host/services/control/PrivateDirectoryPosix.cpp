#include "PrivateDirectory.h"

#include <cerrno>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace host {

std::string userTag() {
    return std::to_string(geteuid());
}

std::string makePrivateDirectory(const std::string& path) {
    constexpr mode_t userAlone = 0700;
    if (mkdir(path.c_str(), userAlone) != 0 && errno != EEXIST)
        return "directory " + path + " cannot be made: " + std::generic_category().message(errno);
    struct stat found {};
    // Not through a symbolic link: it may be anybody's and lead anywhere.
    if (lstat(path.c_str(), &found) != 0 || !S_ISDIR(found.st_mode))
        return path + " is no directory";
    if (found.st_uid != geteuid())
        return "directory " + path + " belongs to another user";
    if ((found.st_mode & 07777) != userAlone && chmod(path.c_str(), userAlone) != 0)
        return "directory " + path + " cannot be closed to other users";
    return {};
}

} // namespace host
