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
    terminal::survivePipeEnd();
    stopsignal::install();
    const ControllerLine& line = controller.line;
    const Site site = makeWriteSite(line, {});
    const LineType type = site.channels.front().type;
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
    if (type == LineType::Ethernet)
        tellError(
            "warning: " + nameOf(line) +
            ": on Ethernet the clock telegram goes out without a header, and controllers ignore it; set "
            "the clock over a serial line");
    const CommandEnding ending = sender.send(SynchroniseClock());
    if (ending.kind == CommandEnding::Kind::Done) {
        std::cout << nameOf(line) << ": "
                  << telegramText(framingOf(type, line.transmitType), ending.telegrams.back(), false)
                  << std::endl;
        return ExitStatus::Good;
    }
    const bool isIgnored = type == LineType::Ethernet && ending.isSilent;
    tellError(nameOf(line) + ", clock: " +
              (isIgnored ? "no answer came, as was to be expected; take it for not set" : ending.reason));
    return ending.kind == CommandEnding::Kind::Refused ? ExitStatus::Refused
                                                       : ExitStatus::CommunicationFailed;
}

} // namespace host
