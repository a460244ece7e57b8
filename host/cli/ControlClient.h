#pragma once

#include <QByteArray>
#include <QLocalSocket>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace host {

// The client's end of a control socket. Waits where it is called; one thread.
class ControlClient {
public:
    // Connects to the first path at which somebody listens. False when nobody does.
    bool connectTo(const std::vector<std::string>& paths);
    // False when the connection has ended.
    bool send(const QByteArray& line);
    // The next line, without its end. Nothing at the end of the connection, and soon after `isCancelled`
    // became true.
    std::optional<QByteArray> nextLine(const std::function<bool()>& isCancelled);

private:
    QLocalSocket socket;
};

} // namespace host
