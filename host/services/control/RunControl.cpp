#include "RunControl.h"

#include "SocketPath.h"
#include "runtime/HostRuntime.h"
#include "runtime/RunLog.h"

#include <HalvexDriverComponent/CChannel.h>
#include <HalvexDriverComponent/CRtu.h>

namespace host {

RunControl::RunControl(const ValueStore& values, HostRuntime& hostRuntime, const RunLog& runLog,
                       Figures countFigures)
    : runtime(hostRuntime), log(runLog), count(std::move(countFigures)), server(*this, values) {}

RunControl::~RunControl() {
    stop();
}

std::string RunControl::start(CommandTaker& commandTaker, const std::string& path,
                              const std::string& sitePath) {
    taker = &commandTaker;
    if (!path.empty())
        return server.start(path);
    const SocketPlace place = prepareControlSocketPlace(sitePath);
    return place.fault.empty() ? server.start(place.path) : place.fault;
}

void RunControl::stop() {
    server.stop();
}

std::string RunControl::submit(const Command& command, CommandDone done) {
    return taker->submit(command, std::move(done));
}

Halvex::DriverErrorResult RunControl::requestPoll(int channelId, int rtuId) {
    CRtu* const rtu = runtime.findRtu(channelId, rtuId);
    if (rtu == nullptr)
        return Halvex::DriverErrorResult::RtuNotFound;
    // The driver would keep the wish until the line is open, and then poll anyway.
    if (!rtu->GetChannel()->IsConnect())
        return Halvex::DriverErrorResult::ChannelError;
    // Without a reply: the driver drops a wish that equals a pending one, and its reply would never come.
    return static_cast<Halvex::DriverErrorResult>(
        rtu->RequestPoll(static_cast<int>(Halvex::PollKind::Integrity), nullptr));
}

HostFigures RunControl::figures() const {
    return count();
}

bool RunControl::wasRefused(int channelId, int rtuId) const {
    return log.wasRefused(channelId, rtuId);
}

} // namespace host
