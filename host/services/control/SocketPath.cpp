#include "SocketPath.h"

#include "PrivateDirectory.h"
#include "ServiceDirectory.h"
#include "SocketName.h"

#include <QDir>

#include <algorithm>

namespace host {

namespace {

QString runtimeDirectory() {
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (runtime.isEmpty() || QDir::isRelativePath(runtime))
        return {};
    const FoundDirectory found = findDirectory(runtime.toStdString());
    return found.state == DirectoryState::Own && found.isClosed ? runtime : QString();
}

const QString sharedName = QStringLiteral("sbus-host-"); // before the user's tag

QString directoryBesideTemporaryFiles() {
    return QDir::tempPath() + QLatin1Char('/') + sharedName + QString::fromStdString(userTag());
}

std::vector<std::string> otherUsers() {
    std::vector<std::string> tags;
    for (const QString& name :
         QDir(QDir::tempPath()).entryList({sharedName + QLatin1Char('*')}, QDir::Dirs, QDir::Name)) {
        const std::string tag = name.mid(sharedName.size()).section(QLatin1Char('-'), 0, 0).toStdString();
        if (tag != userTag() && std::find(tags.begin(), tags.end(), tag) == tags.end())
            tags.push_back(tag);
    }
    return tags;
}

// In the folder of a service.
QString directoryOfService(const std::string& service, std::optional<GroupId> group) {
    return QString::fromStdString(service) +
           (group ? QStringLiteral("/group-") + QString::number(*group) : QStringLiteral("/own"));
}

// A group has a directory for itself: it gets into none that is the user's alone. A service has its own
// places: its temporary files may be hidden from everybody else.
QStringList directories(std::optional<GroupId> group) {
    if (const std::string service = ownServiceDirectory(); !service.empty())
        return {directoryOfService(service, group)};
    if (group)
        return {directoryBesideTemporaryFiles() + QStringLiteral("-group-") + QString::number(*group)};
    QStringList list;
    const QString runtime = runtimeDirectory();
    if (!runtime.isEmpty())
        list << runtime + QStringLiteral("/sbus-host");
    list << directoryBesideTemporaryFiles();
    return list;
}

std::string pathIn(const QString& directory, const std::string& sitePath) {
    return directory.toStdString() + '/' + socketName(sitePath) + ".sock";
}

} // namespace

std::vector<std::string> controlSocketPaths(const std::string& sitePath, std::optional<GroupId> group) {
    std::vector<std::string> paths;
    for (const QString& directory : directories(group))
        paths.push_back(pathIn(directory, sitePath));
    return paths;
}

SocketPaths findControlSockets(const std::string& sitePath, std::optional<GroupId> group) {
    SocketPaths sockets;
    for (const QString& directory : directories(group)) {
        const FoundDirectory found = findDirectory(directory.toStdString());
        if (found.state == DirectoryState::Own)
            sockets.paths.push_back(pathIn(directory, sitePath));
        else if (found.state == DirectoryState::SomebodyElse)
            sockets.passedOver.push_back(found.fault);
    }
    if (const auto service = findServiceDirectory(sitePath)) {
        sockets.paths.push_back(pathIn(directoryOfService(service->path, group), sitePath));
        sockets.serviceUser = service->user;
    }
    sockets.otherUsers = otherUsers();
    return sockets;
}

SocketPlace prepareControlSocketPlace(const std::string& sitePath, std::optional<GroupId> group) {
    SocketPlace place;
    for (const QString& directory : directories(group)) {
        const std::string fault = makePrivateDirectory(directory.toStdString(), group);
        if (fault.empty())
            return {pathIn(directory, sitePath), {}};
        place.fault += (place.fault.empty() ? "" : "; ") + fault;
    }
    return place;
}

std::string fullSocketPath(const std::string& path) {
    return QDir::current().absoluteFilePath(QString::fromStdString(path)).toStdString();
}

} // namespace host
