#include "ControlSocket.h"

#include "SocketPath.h"

#include <utility>

namespace host {

ControlSocket::ControlSocket(const std::string& socketPath, const std::string& siteFile)
    : path(socketPath), sitePath(siteFile) {}

ControlSocket::~ControlSocket() {
    stop();
}

std::string ControlSocket::start(RunningSite& runningSite) {
    running = &runningSite;
    server = std::make_unique<ControlServer>(*this, running->values);
    if (!path.empty())
        return server->start(path);
    const SocketPlace place = prepareControlSocketPlace(sitePath);
    const std::string fault = place.fault.empty() ? server->start(place.path) : place.fault;
    if (!fault.empty())
        running->messages.tell(fault +
                               "; sbus-host ctl cannot reach this one. Give it a socket with --control PATH");
    return {};
}

void ControlSocket::stop() {
    if (server)
        server->stop();
}

std::vector<ServiceFigure> ControlSocket::figures() const {
    return {};
}

std::string ControlSocket::submit(const Command& command, CommandDone done) {
    return running->commands.submit(command, std::move(done));
}

Halvex::DriverErrorResult ControlSocket::requestPoll(int channelId, int rtuId) {
    return running->requestPoll(channelId, rtuId);
}

HostFigures ControlSocket::siteFigures() const {
    const SiteFigures figures = running->figures();
    return {figures.channels, collectOutcomes(figures.rtus, running->values)};
}

bool ControlSocket::wasRefused(int channelId, int rtuId) const {
    return running->wasRefused(channelId, rtuId);
}

} // namespace host
