#include "Users.h"

#include <algorithm>

namespace host {

bool isMember(const Peer& peer, GroupId group) {
    return std::find(peer.groups.begin(), peer.groups.end(), group) != peer.groups.end();
}

bool isUserOrRoot(const Peer& peer, UserId user) {
    return peer.user == user || peer.user == rootUser;
}

} // namespace host
