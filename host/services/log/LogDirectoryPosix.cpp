#include "LogDirectory.h"

#include <cerrno>
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

// None where there is no link, or nothing at all.
std::string linkFault(const std::string& path, UserId user) {
    struct stat found {};
    if (lstat(path.c_str(), &found) != 0 || !S_ISLNK(found.st_mode) || isTrusted(found, user))
        return {};
    return path + " is a symbolic link of another user (user id " + std::to_string(found.st_uid) +
           "); remove it, or name another directory with --log-dir";
}

std::string directoryFault(const std::string& path, UserId user) {
    const std::string name = "log directory " + path;
    struct stat found {};
    if (stat(path.c_str(), &found) != 0)
        return name + " cannot be seen: " + std::generic_category().message(errno);
    if (!isTrusted(found, user))
        return name + " belongs to another user (user id " + std::to_string(found.st_uid) +
               "), who could lead the logs elsewhere; name one of your own with --log-dir";
    if ((found.st_mode & (S_IWGRP | S_IWOTH)) != 0)
        return name + " can be written to by other users, who could lead the logs elsewhere; close it with "
                      "chmod go-w, or name another with --log-dir";
    return {};
}

// Whose "/" is can do everything; where a sandbox does not know root, that is not its number.
bool ownsTheSystem(UserId user) {
    struct stat root {};
    return stat("/", &root) == 0 && root.st_uid == user;
}

// Who could put something else in the place of a directory on the way. The members of a group are not asked
// for: on some systems /var/log is open to one.
std::string stepFault(const std::string& step, const struct stat& found, UserId user) {
    if (!isTrusted(found, user) && !ownsTheSystem(found.st_uid))
        return step + " on the way to it belongs to another user (user id " + std::to_string(found.st_uid) +
               "), who could lead the logs elsewhere; name another with --log-dir";
    if ((found.st_mode & S_IWOTH) != 0 && (found.st_mode & S_ISVTX) == 0)
        return step + " on the way to it can be written to by every user, who could lead the logs elsewhere; "
                      "close it with chmod o-w, or name another with --log-dir";
    return {};
}

// Judges links and directories in the order in which the system follows them, up to what is not there yet.
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
        if (S_ISLNK(found.st_mode)) {
            std::string fault = linkFault(step.string(), user);
            if (!fault.empty())
                return fault;
            const files::path target = files::read_symlink(step, failure);
            left.insert(std::next(left.begin()), target.begin(), target.end());
            ++links;
            continue;
        }
        std::string fault = left.size() > 1 ? stepFault(step.string(), found, user) : std::string();
        if (!fault.empty())
            return "log directory " + path + ": " + fault;
        done = step;
    }
    return {};
}

// The user's mask may leave a new one open to others.
std::string makeDirectory(const std::string& path) {
    std::error_code failure;
    files::path step;
    for (const files::path& name : files::path(path)) {
        step /= name;
        if (!failure && files::create_directory(step, failure))
            files::permissions(step, files::perms::group_write | files::perms::others_write,
                               files::perm_options::remove, failure);
    }
    return failure ? "log directory " + path + " cannot be made: " + failure.message() +
                         "; name one that may be written with --log-dir"
                   : std::string();
}

bool isLogFile(const files::path& file) {
    const std::string name = file.filename().string();
    return name.rfind("channel-", 0) == 0 || name.rfind("host.", 0) == 0;
}

} // namespace

std::string prepareLogDirectory(const std::string& path, UserId user) {
    // "logs/" names what the link "logs" leads to.
    std::string fault = linkFault((files::path(path) / "").parent_path().string(), user);
    if (fault.empty())
        fault = wayFault(path, user);
    if (!fault.empty())
        return fault;
    fault = makeDirectory(path);
    if (fault.empty())
        fault = directoryFault(path, user);
    std::error_code failure;
    for (files::directory_iterator entry(path, failure), end; fault.empty() && !failure && entry != end;
         entry.increment(failure))
        if (isLogFile(entry->path()))
            fault = linkFault(entry->path().string(), user);
    return fault;
}

} // namespace host
