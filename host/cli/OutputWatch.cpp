#include "OutputWatch.h"

#include "services/console/ConsoleService.h"
#include "services/console/StreamWriter.h"
#include "site/CountText.h"
#include <OutputReader.h>

namespace host {

namespace {

bool doesNothingButPrint(const RunOptions& options) {
    return options.controlPath.empty() && !options.capture && !options.log;
}

} // namespace

OutputWatch::OutputWatch(const RunOptions& options, Console& shownOn, const ConsoleService& consoleService)
    : endsWithReader(doesNothingButPrint(options)), console(shownOn), service(consoleService) {}

bool OutputWatch::isOver() {
    const StreamWriter::Losses losses = console.out.losses();
    if (losses.lines > 0 && !isLossTold) {
        isLossTold = true;
        console.error.write("standard output cannot be written: " + losses.reason +
                            "; its lines are lost, and polling goes on\n");
    }
    if (!service.isClosed() && !outputreader::isGone())
        return false;
    if (!endsWithReader && !isReaderTold) {
        isReaderTold = true;
        console.error.write("nobody reads standard output any more; polling goes on\n");
    }
    return endsWithReader;
}

bool OutputWatch::tellLosses(Console& console) {
    const StreamWriter::Losses losses = console.out.losses();
    if (losses.lines == 0)
        return true;
    console.error.write(countText(losses.lines, "line") +
                        " could not be written to standard output: " + losses.reason + '\n');
    return false;
}

} // namespace host
