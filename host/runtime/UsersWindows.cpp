#include "Users.h"

#include "AccountsWindows.h"

#include <QLocalSocket>

#include <windows.h>

namespace host {

// Accounts have no numbers here. Those that matter are told apart: this user, those who can do anyway what
// every user can, and everybody else.
namespace {

constexpr UserId theUser = 1;
constexpr UserId somebodyElse = 2;

HANDLE pipeOf(const QLocalSocket& socket) {
    return reinterpret_cast<HANDLE>(socket.socketDescriptor());
}

} // namespace

UserId ownUser() {
    return theUser;
}

std::optional<Peer> peerOf(const QLocalSocket& socket) {
    DWORD flags = 0;
    if (GetNamedPipeInfo(pipeOf(socket), &flags, nullptr, nullptr, nullptr) == 0)
        return std::nullopt;
    if ((flags & PIPE_SERVER_END) != 0)
        return Peer{theUser, {}}; // the pipe itself lets nobody in who may not command
    const std::string owner = accounts::ownerOfPipe(pipeOf(socket));
    if (owner.empty())
        return std::nullopt;
    if (owner == accounts::ownSid())
        return Peer{theUser, {}};
    const bool isTrusted = accounts::isSystemOrAdministrators(owner) || accounts::isOfHostService(owner);
    return Peer{isTrusted ? rootUser : somebodyElse, {}};
}

std::string peerText(const QLocalSocket& socket, const Peer&) {
    return accounts::nameOf(accounts::ownerOfPipe(pipeOf(socket)));
}

std::optional<GroupId> findGroup(const std::string&) {
    return std::nullopt;
}

std::string groupRemedy() {
    return "leave the group out: on Windows the control pipe is open to the host's own account and to "
           "administrators";
}

} // namespace host
