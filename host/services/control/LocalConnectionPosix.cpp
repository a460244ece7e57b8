#include "LocalConnection.h"

#include "LocalAddressPosix.h"

#include <QLocalSocket>

#include <cerrno>
#include <fcntl.h>
#include <sys/time.h>
#include <system_error>
#include <unistd.h>

namespace host {

namespace {

constexpr timeval patience{5, 0}; // for a busy host whose queue of clients is full

Connecting judge(int failure) {
    using End = Connecting::End;
    if (failure == ENOENT || failure == ECONNREFUSED)
        return {End::NobodyThere, "nobody listens there"};
    if (failure == EACCES || failure == EPERM)
        return {End::NotPermitted, std::generic_category().message(failure)};
    if (failure == EAGAIN)
        return {End::Failed, "whoever listens there accepts nobody"};
    return {End::Failed, std::generic_category().message(failure)};
}

} // namespace

Connecting connectTo(QLocalSocket& socket, const std::string& path) {
    const LocalAddress address(path);
    if (!address.fault().empty())
        return {Connecting::End::Failed, address.fault()};
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (descriptor < 0)
        return judge(errno);
    setsockopt(descriptor, SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
    if (connect(descriptor, address.get(), LocalAddress::size()) != 0 ||
        fcntl(descriptor, F_SETFL, O_NONBLOCK) != 0 || !socket.setSocketDescriptor(descriptor)) {
        Connecting failed = judge(errno);
        close(descriptor);
        return failed;
    }
    return {Connecting::End::Connected, {}};
}

} // namespace host
