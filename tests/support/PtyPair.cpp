#include "PtyPair.h"

#include <QFile>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace {

constexpr int patienceMs = 5000;

void require(bool succeeded, const char* what) {
    if (!succeeded)
        throw std::system_error(errno, std::generic_category(), what);
}

bool awaits(int descriptor, short events) {
    pollfd waiting{descriptor, events, 0};
    return poll(&waiting, 1, patienceMs) > 0;
}

} // namespace

PtyPair::PtyPair() : path(QFile::encodeName(folder.filePath(QStringLiteral("line"))).toStdString()) {
    plugIn();
}

PtyPair::~PtyPair() {
    unplug();
}

void PtyPair::unplug() {
    if (farEnd < 0)
        return;
    unlink(path.c_str());
    close(farEnd);
    close(nearEnd);
    farEnd = nearEnd = -1;
}

void PtyPair::plugIn() {
    farEnd = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    require(farEnd >= 0, "posix_openpt");
    require(grantpt(farEnd) == 0 && unlockpt(farEnd) == 0, "unlockpt");
    const char* terminal = ptsname(farEnd);
    nearEnd = open(terminal, O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    require(nearEnd >= 0, terminal);
    // Raw, so that what is written before the device is opened is not echoed.
    termios settings{};
    require(tcgetattr(nearEnd, &settings) == 0, "tcgetattr");
    cfmakeraw(&settings);
    require(tcsetattr(nearEnd, TCSANOW, &settings) == 0, "tcsetattr");
    require(symlink(terminal, path.c_str()) == 0, path.c_str());
}

void PtyPair::write(const QByteArray& bytes) {
    int written = 0;
    while (written < bytes.size()) {
        const auto count =
            ::write(farEnd, bytes.constData() + written, static_cast<std::size_t>(bytes.size() - written));
        if (count > 0)
            written += static_cast<int>(count);
        else
            require(errno == EAGAIN && awaits(farEnd, POLLOUT), "write");
    }
}

QByteArray PtyPair::read(int count) {
    QByteArray bytes;
    while (bytes.size() < count && awaits(farEnd, POLLIN)) {
        QByteArray piece(count - bytes.size(), '\0');
        const auto size = ::read(farEnd, piece.data(), static_cast<std::size_t>(piece.size()));
        if (size <= 0)
            break;
        bytes += piece.left(static_cast<int>(size));
    }
    return bytes;
}

bool PtyPair::awaitUnread(int count) const {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(patienceMs);
    for (;;) {
        int unread = 0;
        require(ioctl(nearEnd, FIONREAD, &unread) == 0, "FIONREAD");
        if (unread >= count)
            return true;
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}
