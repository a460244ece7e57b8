#include "DirectoryWay.h"

#include <filesystem>
#include <iterator>
#include <list>
#include <sys/stat.h>

namespace host {

namespace {

namespace files = std::filesystem;

bool isTrusted(const struct stat& found, UserId user) {
    return found.st_uid == user || found.st_uid == rootUser;
}

std::string ownerText(const struct stat& found) {
    return " of another user (user id " + std::to_string(found.st_uid) + ")";
}

// Whose "/" is can do everything; where a sandbox does not know root, that is not its number.
bool ownsTheSystem(UserId user) {
    struct stat root {};
    return stat("/", &root) == 0 && root.st_uid == user;
}

std::string directoryFault(const std::string& path, const struct stat& found, UserId user) {
    if (!isTrusted(found, user) && !ownsTheSystem(found.st_uid))
        return path + " is a directory" + ownerText(found);
    if ((found.st_mode & S_IWOTH) != 0 && (found.st_mode & S_ISVTX) == 0)
        return path + " can be written to by every user (chmod o-w closes it)";
    return {};
}

} // namespace

std::string linkFault(const std::string& path, UserId user) {
    struct stat found {};
    if (lstat(path.c_str(), &found) != 0 || !S_ISLNK(found.st_mode) || isTrusted(found, user))
        return {};
    return path + " is a symbolic link" + ownerText(found);
}

// In the order in which the system follows them.
std::string wayFault(const std::string& path, UserId user) {
    constexpr int mostLinks = 40; // as many as the system follows
    std::error_code failure;
    const files::path whole = files::absolute(path, failure);
    std::list<files::path> left(whole.begin(), whole.end());
    files::path done;
    for (int links = 0; !left.empty() && links <= mostLinks; left.pop_front()) {
        const files::path step = left.front() == ".." ? done.parent_path() : done / left.front();
        struct stat found {};
        if (lstat(step.c_str(), &found) != 0)
            return {};
        std::string fault;
        if (S_ISLNK(found.st_mode)) {
            fault = linkFault(step.string(), user);
            const files::path target = files::read_symlink(step, failure);
            left.insert(std::next(left.begin()), target.begin(), target.end());
            ++links;
        } else {
            fault = left.size() > 1 ? directoryFault(step.string(), found, user) : std::string();
            done = step;
        }
        if (!fault.empty())
            return fault;
    }
    return {};
}

} // namespace host
