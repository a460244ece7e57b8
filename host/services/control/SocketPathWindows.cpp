#include "PipeNameWindows.h"
#include "SocketName.h"
#include "SocketPath.h"

#include <QDir>

namespace host {

// One name for all users, so that an administrator finds the host of a service. Pipes lie in no folder.
std::vector<std::string> controlSocketPaths(const std::string& sitePath, std::optional<GroupId>) {
    return {std::string(pipeFolder) + "sbus-host-" + socketName(sitePath)};
}

SocketPaths findControlSockets(const std::string& sitePath, std::optional<GroupId> group) {
    SocketPaths sockets;
    sockets.paths = controlSocketPaths(sitePath, group);
    return sockets;
}

SocketPlace prepareControlSocketPlace(const std::string& sitePath, std::optional<GroupId> group) {
    return {controlSocketPaths(sitePath, group).front(), {}};
}

std::string fullSocketPath(const std::string& path) {
    return isPipe(path) ? path : QDir::current().absoluteFilePath(QString::fromStdString(path)).toStdString();
}

} // namespace host
