#pragma once

#include <functional>
#include <memory>
#include <string>

namespace asio {
class io_context;
}

namespace sim {

// The far end of a serial device that does not exist: a pseudo-terminal, linked at a path under which others
// open it like any device. They may close and open it at will; only close() makes the device vanish.
//
// States: closed (as made) and open. Owns the terminal and the link. One thread, the context's.
class Pty {
public:
    using Receive = std::function<void(const std::uint8_t* bytes, std::size_t size)>;

    explicit Pty(asio::io_context& ioContext);
    ~Pty();
    Pty(const Pty&) = delete;
    Pty& operator=(const Pty&) = delete;

    // Removes a link at `path` that leads nowhere, as a run that was killed leaves behind.
    static void removeStaleLink(const std::string& path);

    // Opens the terminal and links it at `path` (empty: nowhere), where nothing may be. Empty, or what went
    // wrong. `receive` is then called on the context's thread with all that is written to the device.
    std::string open(const std::string& path, Receive receive);
    // Removes the link, unless somebody put another in its place, and hangs up on whoever has the device
    // open.
    void close();
    // What nobody reads is lost beyond the system's buffer.
    void write(const std::uint8_t* bytes, std::size_t size);
    // The path under which the device is opened. Empty while closed.
    std::string device() const;

private:
    struct Terminal;
    asio::io_context& context;
    std::shared_ptr<Terminal> terminal; // one for each life; null while closed
};

} // namespace sim
