#include "Pty.h"

#include <array>
#include <filesystem>
#include <system_error>

#include <asio/buffer.hpp>
#include <asio/io_context.hpp>
#include <asio/posix/stream_descriptor.hpp>

#include <cstdlib>
#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

namespace sim {

namespace files = std::filesystem;

namespace {

std::string systemError(const std::string& what) {
    return what + ": " + std::generic_category().message(errno);
}

// Bytes pass as they are: no echo, no line ends, no control characters.
bool makeRaw(int descriptor) {
    termios settings{};
    if (tcgetattr(descriptor, &settings) != 0)
        return false;
    cfmakeraw(&settings);
    return tcsetattr(descriptor, TCSANOW, &settings) == 0;
}

std::string slaveName(int master) {
    std::array<char, 128> name{};
    return ptsname_r(master, name.data(), name.size()) == 0 ? name.data() : "";
}

} // namespace

// Kept alive by its read in progress, which may end after the terminal was closed.
struct Pty::Terminal : std::enable_shared_from_this<Terminal> {
    explicit Terminal(asio::io_context& context) : master(context) {}

    std::string open();
    std::string link(const std::string& path);
    void close();
    void readNext();

    asio::posix::stream_descriptor master;
    // Held open so that the terminal does not count as hung up whenever the other side closes the device.
    int slave = -1;
    std::string slavePath;
    std::string linkPath;
    Receive receive;
    std::array<std::uint8_t, 4096> buffer{};
};

std::string Pty::Terminal::open() {
    const int descriptor = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0)
        return systemError("no pseudo-terminal is to be had");
    std::error_code error;
    master.assign(descriptor, error);
    if (error) {
        ::close(descriptor);
        return "no pseudo-terminal is to be had: " + error.message();
    }
    if (grantpt(descriptor) != 0 || unlockpt(descriptor) != 0)
        return systemError("the pseudo-terminal cannot be unlocked");
    slavePath = slaveName(descriptor);
    slave = ::open(slavePath.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (slave < 0 || !makeRaw(slave))
        return systemError("the pseudo-terminal cannot be set up");
    master.non_blocking(true, error);
    return error ? "the pseudo-terminal cannot be set up: " + error.message() : std::string();
}

std::string Pty::Terminal::link(const std::string& path) {
    if (path.empty())
        return {};
    std::error_code error;
    if (files::exists(files::symlink_status(path, error)))
        return "cannot link the device at " + path +
               ": something is there already; remove it or choose another path";
    files::create_symlink(slavePath, path, error);
    if (error)
        return "cannot link the device at " + path + ": " + error.message();
    linkPath = path;
    return {};
}

void Pty::Terminal::close() {
    std::error_code ignored;
    if (!linkPath.empty() && files::read_symlink(linkPath, ignored) == slavePath)
        files::remove(linkPath, ignored);
    linkPath.clear();
    master.close(ignored);
    if (slave >= 0)
        ::close(slave);
    slave = -1;
}

void Pty::Terminal::readNext() {
    master.async_read_some(asio::buffer(buffer),
                           [self = shared_from_this()](const std::error_code& error, std::size_t size) {
                               if (error || !self->master.is_open())
                                   return;
                               self->receive(self->buffer.data(), size);
                               if (self->master.is_open())
                                   self->readNext();
                           });
}

Pty::Pty(asio::io_context& ioContext) : context(ioContext) {}

Pty::~Pty() {
    close();
}

void Pty::removeStaleLink(const std::string& path) {
    std::error_code ignored;
    if (files::is_symlink(files::symlink_status(path, ignored)) && !files::exists(path, ignored))
        files::remove(path, ignored);
}

std::string Pty::open(const std::string& path, Receive receive) {
    close();
    removeStaleLink(path);
    terminal = std::make_shared<Terminal>(context);
    std::string error = terminal->open();
    if (error.empty())
        error = terminal->link(path);
    if (!error.empty()) {
        close();
        return error;
    }
    terminal->receive = std::move(receive);
    terminal->readNext();
    return {};
}

void Pty::close() {
    if (terminal)
        terminal->close();
    terminal.reset();
}

void Pty::write(const std::uint8_t* bytes, std::size_t size) {
    if (!terminal)
        return;
    std::error_code ignored;
    terminal->master.write_some(asio::buffer(bytes, size), ignored);
}

std::string Pty::device() const {
    if (!terminal)
        return {};
    return terminal->linkPath.empty() ? terminal->slavePath : terminal->linkPath;
}

} // namespace sim
