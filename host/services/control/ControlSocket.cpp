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
    const Place place = findPlace();
    server = std::make_unique<ControlServer>(*this, running->values);
    std::string fault = place.fault.empty() ? server->start(place.door) : place.fault;
    if (!place.door.isDirectoryOwn && !fault.empty())
        return fault;
    if (!fault.empty())
        running->messages.tell(
            fault + "; sbus-host ctl cannot reach this one. Give it a socket with --control PATH",
            Severity::Warning);
    return {};
}

ControlSocket::Place ControlSocket::findPlace() const {
    const ControlSettings& settings = running->site.control;
    Place place;
    if (!settings.group.empty()) {
        const auto group = findGroup(settings.group);
        if (!group)
            return {{}, "control socket: there is no group \"" + settings.group + "\""};
        place.door.group = AdmittedGroup{*group, settings.access};
    }
    const std::string& given = path.empty() ? settings.socket : path;
    if (!given.empty()) {
        place.door.path = fullSocketPath(given);
        return place;
    }
    const SocketPlace own = prepareControlSocketPlace(sitePath, place.door.groupId());
    place.door.path = own.path;
    place.door.isDirectoryOwn = true;
    place.fault = own.fault;
    return place;
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
    return {figures.channels, collectOutcomes(figures.rtus, running->values), running->serviceFigures()};
}

} // namespace host
