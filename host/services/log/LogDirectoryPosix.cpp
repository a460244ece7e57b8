#include "LogDirectory.h"

#include <cerrno>
#include <filesystem>
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

std::string makeDirectory(const std::string& path) {
    std::error_code failure;
    // False, without a failure, where it is already. The user's mask may leave a new one open to a group.
    if (files::create_directories(path, failure))
        files::permissions(path, files::perms::group_write | files::perms::others_write,
                           files::perm_options::remove, failure);
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
