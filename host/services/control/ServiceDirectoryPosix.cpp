#include "ServiceDirectory.h"

#include <QFileInfo>
#include <QString>

#include <cstdlib>
#include <sys/stat.h>

namespace host {

namespace {

// The user of a directory that only its user can write to, never through a symbolic link.
std::optional<UserId> userOf(const std::string& path) {
    struct stat found {};
    if (lstat(path.c_str(), &found) != 0 || !S_ISDIR(found.st_mode) ||
        (found.st_mode & (S_IWGRP | S_IWOTH)) != 0)
        return std::nullopt;
    return found.st_uid;
}

} // namespace

std::string ownServiceDirectory(const std::string& parent) {
    const char* const named = std::getenv("RUNTIME_DIRECTORY"); // with colons between several
    if (named == nullptr)
        return {};
    const std::string path = std::string(named).substr(0, std::string(named).find(':'));
    return path.rfind(parent + '/', 0) == 0 ? path : "";
}

std::optional<ServiceDirectory> findServiceDirectory(const std::string& sitePath, const std::string& parent,
                                                     UserId root) {
    const std::string name = QFileInfo(QString::fromStdString(sitePath)).completeBaseName().toStdString();
    const std::string path = parent + '/' + name;
    const std::optional<UserId> user = userOf(path);
    if (name.empty() || userOf(parent) != root || !user)
        return std::nullopt;
    return ServiceDirectory{path, *user};
}

} // namespace host
