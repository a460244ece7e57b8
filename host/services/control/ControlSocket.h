#pragma once

#include "ControlServer.h"
#include "services/RunningSite.h"
#include "services/Service.h"

#include <memory>
#include <string>

namespace host {

// Opens a running site to sbus-host ctl.
class ControlSocket : public Service, public ControlledHost {
public:
    // Serves `socketPath`, or when it is empty the one that the site file names, or else the site's own.
    ControlSocket(const std::string& socketPath, const std::string& siteFile);
    ~ControlSocket() override;

    std::string name() const override { return "control"; }
    // A site's own socket may belong to another host that runs it: then this one runs on without, and says
    // so.
    std::string start(RunningSite& runningSite) override;
    void stop() override;
    std::vector<ServiceFigure> figures() const override;

private:
    // The fault, when there is one, is why there is no door.
    struct Place {
        ControlDoor door;
        std::string fault;
    };
    Place findPlace() const;
    std::string submit(const Command& command, CommandDone done) override;
    Halvex::DriverErrorResult requestPoll(int channelId, int rtuId) override;
    HostFigures siteFigures() const override;
    const Site& site() const override { return running->site; }
    ExchangeFeed& exchanges() override { return running->exchanges; }

    const std::string path;
    const std::string sitePath;
    RunningSite* running = nullptr; // from start() on
    std::unique_ptr<ControlServer> server;
};

} // namespace host
