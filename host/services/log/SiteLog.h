#pragma once

#include "LogOptions.h"
#include "runtime/ExchangeFeed.h"
#include "services/RunningSite.h"
#include "services/Service.h"

#include <memory>
#include <string>

namespace host {

// The log directory: the driver's lines and, where they are wanted, the telegrams in a file for each channel,
// and all messages for people in "host.log". Telegrams are those that have passed the wire; the driver's own
// frame trace, which shows zeros for an answer that never came, is not among them.
// What comes is written on a thread of the logger's; what the disk refuses is counted there.
class SiteLog : public Service {
public:
    explicit SiteLog(const LogOptions& logOptions);
    ~SiteLog() override;

    std::string name() const override { return "log"; }
    std::string start(RunningSite& runningSite) override;
    void stop() override;
    std::vector<ServiceFigure> figures() const override;

private:
    const LogOptions options;
    RunningSite* site = nullptr; // from start() to stop()
    std::unique_ptr<ExchangeFeed::Watch> watch;
};

} // namespace host
