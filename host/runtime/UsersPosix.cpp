#include "Users.h"

#include <QLocalSocket>

#include <cerrno>
#include <grp.h>
#include <sys/socket.h>
#include <unistd.h>

namespace host {

namespace {

#ifdef SO_PEERGROUPS
void addSupplementaryGroups(int descriptor, Peer& peer) {
    socklen_t bytes = 0;
    // Tells the length when there is no room; without any group it succeeds.
    getsockopt(descriptor, SOL_SOCKET, SO_PEERGROUPS, nullptr, &bytes);
    std::vector<gid_t> groups(bytes / sizeof(gid_t));
    if (groups.empty() || getsockopt(descriptor, SOL_SOCKET, SO_PEERGROUPS, groups.data(), &bytes) != 0)
        return;
    peer.groups.insert(peer.groups.end(), groups.begin(), groups.end());
}
#endif

} // namespace

UserId ownUser() {
    return geteuid();
}

std::optional<Peer> peerOf(const QLocalSocket& socket) {
    const int descriptor = static_cast<int>(socket.socketDescriptor());
#ifdef SO_PEERCRED
    ucred credentials{};
    socklen_t bytes = sizeof credentials;
    if (getsockopt(descriptor, SOL_SOCKET, SO_PEERCRED, &credentials, &bytes) != 0)
        return std::nullopt;
    Peer peer{credentials.uid, {credentials.gid}};
#else
    uid_t user = 0;
    gid_t group = 0;
    if (getpeereid(descriptor, &user, &group) != 0)
        return std::nullopt;
    Peer peer{user, {group}};
#endif
#ifdef SO_PEERGROUPS
    addSupplementaryGroups(descriptor, peer);
#endif
    return peer;
}

std::string peerText(const QLocalSocket&, const Peer& peer) {
    return "user id " + std::to_string(peer.user);
}

std::optional<GroupId> findGroup(const std::string& name) {
    // Bytes of a group's entry; large ones list thousands of members.
    constexpr std::size_t most = std::size_t{1024} * 1024;
    for (std::vector<char> room(4096); room.size() <= most; room.resize(2 * room.size())) {
        group entry{};
        group* found = nullptr;
        const int failure = getgrnam_r(name.c_str(), &entry, room.data(), room.size(), &found);
        if (failure != ERANGE)
            return found == nullptr ? std::nullopt : std::optional<GroupId>(found->gr_gid);
    }
    return std::nullopt;
}

std::string groupRemedy() {
    return "name a group that \"getent group\" lists, or make one with groupadd";
}

} // namespace host
