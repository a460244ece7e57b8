#pragma once

#include "runtime/Users.h"

#include <QObject>

#include <functional>
#include <memory>
#include <string>

class QLocalSocket;

namespace host {

// A local socket in the file system, at which clients are accepted. States: closed (as made), listening.
// One thread, that of its event loop.
class ListeningSocket : public QObject {
public:
    using Take = std::function<void(QLocalSocket*)>; // the client is the taker's
    // The process or the system has no descriptor left. Returns true when it has one again.
    using MakeRoom = std::function<bool()>;

    // Changes threads with its owner.
    ListeningSocket(Take takeClient, MakeRoom makeRoomForClients, QObject* owner);
    ~ListeningSocket() override;

    // Whether nothing else than a socket is at `path`.
    static bool isFreeOrSocket(const std::string& path);
    // Replaces a socket at `path`: nobody may listen there. Open to its user alone, or to the members of
    // `group` too. Empty, or why nothing listens.
    std::string listen(const std::string& path, std::optional<GroupId> group);
    // Whether clients find it: false when its file was removed or replaced.
    bool isInPlace() const;
    // Accepts clients again after there was no descriptor for one.
    void resume();
    // Removes its file, unless somebody put another in its place.
    void close();

private:
    struct Open;

    void acceptClients();

    const Take take;
    const MakeRoom makeRoom;
    std::unique_ptr<Open> open; // null while closed
};

} // namespace host
