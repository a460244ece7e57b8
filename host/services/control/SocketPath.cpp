#include "SocketPath.h"

#include "PrivateDirectory.h"
#include "ServiceDirectory.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace host {

namespace {

// A socket's path has room for some hundred bytes all in all.
constexpr int longestStem = 24;
constexpr int hashDigits = 12; // 48 bits: no two sites of one user meet by chance

QString socketName(const std::string& sitePath) {
    const QFileInfo site(QString::fromStdString(sitePath));
    const QString real = site.exists() ? site.canonicalFilePath() : site.absoluteFilePath();
    QString stem;
    for (const QChar letter : QFileInfo(real).completeBaseName().left(longestStem))
        stem += letter.unicode() < 0x80 && letter.isLetterOrNumber() ? letter : QLatin1Char('-');
    const QByteArray hash = QCryptographicHash::hash(real.toUtf8(), QCryptographicHash::Sha256).toHex();
    return stem + QLatin1Char('-') + QString::fromLatin1(hash.left(hashDigits)) + QStringLiteral(".sock");
}

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
    return (directory + QLatin1Char('/') + socketName(sitePath)).toStdString();
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
