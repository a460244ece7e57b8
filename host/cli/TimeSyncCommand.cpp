#include "oneshot/CommandSender.h"
#include "oneshot/Commands.h"
#include "oneshot/OneShotCapture.h"

#include "services/console/StopSignal.h"
#include "services/console/Terminal.h"
#include "telegram/Framing.h"
#include "telegram/TelegramText.h"

#include <iostream>

namespace host {

ExitStatus synchroniseClock(const Controller& controller) {
    const ControllerLine& line = controller.line;
    const Site site = makeWriteSite(line, {});
    const LineType type = site.channels.front().type;
    if (!isClockInReach(type)) {
        tellError(nameOf(line) + ", clock: " + clockOutOfReach);
        return ExitStatus::Configuration;
    }
    terminal::survivePipeEnd();
    stopsignal::install();
    terminal::survivePipeEnd();
    stopsignal::install();
    OneShotCapture capture(controller.capture);
    CommandSender sender(line, site);
    const auto captured = capture.follow(sender.exchanges());
    std::string fault = capture.start();
    if (fault.empty())
        fault = sender.open(controller.pluginPath);
    if (!fault.empty()) {
        tellError(fault);
        return ExitStatus::Configuration;
    }
    const CommandEnding ending = sender.send(SynchroniseClock());
    if (ending.kind == CommandEnding::Kind::Done) {
        std::cout << nameOf(line) << ": "
                  << telegramText(framingOf(type, line.transmitType), ending.telegrams.back(), false)
                  << std::endl;
        return ExitStatus::Good;
    }
    tellError(nameOf(line) + ", clock: " + ending.reason);
    return ending.kind == CommandEnding::Kind::Refused ? ExitStatus::Refused
                                                       : ExitStatus::CommunicationFailed;
}

} // namespace host
