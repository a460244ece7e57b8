#include "LogDirectory.h"

#include "runtime/DirectoryWay.h"

#include <cerrno>
#include <filesystem>
#include <sys/stat.h>

namespace host {

namespace {

namespace files = std::filesystem;

// None where no other user has put a link.
std::string plantedFault(const std::string& path, UserId user) {
    const std::string fault = linkFault(path, user);
    return fault.empty() ? fault : fault + "; remove it, or name another directory with --log-dir";
}

std::string leadFault(const std::string& path, UserId user) {
    const std::string fault = wayFault(path, user);
    return fault.empty() ? fault
                         : "log directory " + path + " could be led elsewhere: " + fault +
                               "; name another with --log-dir";
}

std::string directoryFault(const std::string& path, UserId user) {
    const std::string name = "log directory " + path;
    struct stat found {};
    if (stat(path.c_str(), &found) != 0)
        return name + " cannot be seen: " + std::generic_category().message(errno);
    if (!isUserOrRoot({found.st_uid, {}}, user))
        return name + " belongs to another user (user id " + std::to_string(found.st_uid) +
               "), who could lead the logs elsewhere; name one of your own with --log-dir";
    if ((found.st_mode & (S_IWGRP | S_IWOTH)) != 0)
        return name + " can be written to by other users, who could lead the logs elsewhere; close it with "
                      "chmod go-w, or name another with --log-dir";
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
    std::string fault = plantedFault((files::path(path) / "").parent_path().string(), user);
    if (fault.empty())
        fault = leadFault(path, user);
    if (!fault.empty())
        return fault;
    fault = makeDirectory(path);
    if (fault.empty())
        fault = directoryFault(path, user);
    std::error_code failure;
    for (files::directory_iterator entry(path, failure), end; fault.empty() && !failure && entry != end;
         entry.increment(failure))
        if (isLogFile(entry->path()))
            fault = plantedFault(entry->path().string(), user);
    return fault;
}

} // namespace host
