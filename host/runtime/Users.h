#pragma once

#include <optional>
#include <string>
#include <vector>

class QLocalSocket;

// Users and groups of the system, by their numbers.
namespace host {

using UserId = unsigned;
using GroupId = unsigned;

// The process at the other end of a local socket, as the system knows it: who connected, or who listens.
struct Peer {
    UserId user = 0;
    std::vector<GroupId> groups; // its own and its supplementary ones
};

constexpr UserId rootUser = 0;

UserId ownUser();
// Nothing when the system does not tell.
std::optional<Peer> peerOf(const QLocalSocket& socket);
// For people: "user id 1000", or the name of an account.
std::string peerText(const QLocalSocket& socket, const Peer& peer);
// Nothing for a name that the system does not know.
std::optional<GroupId> findGroup(const std::string& name);
// What to do about a name of which findGroup() knows nothing.
std::string groupRemedy();

bool isMember(const Peer& peer, GroupId group);
// Whether `peer` is `user` or root, who can do anyway what the user can.
bool isUserOrRoot(const Peer& peer, UserId user);

} // namespace host
