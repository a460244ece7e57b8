#include "oneshot/CommandSender.h"
#include "oneshot/Commands.h"
#include "oneshot/ElementReader.h"
#include "oneshot/ElementTally.h"
#include "oneshot/OneShotCapture.h"
#include "oneshot/WriteSteps.h"

#include "services/console/ProgressBar.h"
#include "services/console/StopSignal.h"
#include "services/console/Terminal.h"
#include "site/PointValue.h"
#include "values/ReadingText.h"
#include "values/ValueText.h"

#include <iostream>
#include <map>

namespace host {

namespace {

constexpr unsigned silencesOfADeadStation = 3; // in a row: nothing more is sent to it

using Kind = CommandEnding::Kind;

// What the controller holds when the write was carried out.
double heldBy(const ElementWrite& write) {
    return isBitMedia(write.address.media) ? write.value : rawOf(pointOf(write), write.value).raw;
}

// How each of the writes ended.
using WriteEndings = std::vector<Kind>;

ElementTally tallyOf(const WriteEndings& endings) {
    ElementTally tally;
    for (const Kind kind : endings)
        ++(kind == Kind::Done ? tally.good : kind == Kind::Refused ? tally.refused : tally.failed);
    return tally;
}

// Sends one step after the other and tells what becomes of it.
class Writing {
public:
    Writing(const WriteOptions& writeOptions, const Site& site, OneShotCapture& capture)
        : options(writeOptions), sender(writeOptions.controller.line, site),
          captured(capture.follow(sender.exchanges())), endings(writeOptions.writes.size(), Kind::NotSent) {}

    std::string open() { return sender.open(options.controller.pluginPath); }

    WriteEndings carryOut() {
        const std::vector<WriteStep> steps = planWriteSteps(options.writes);
        ProgressBar bar;
        for (const WriteStep& step : steps) {
            carryOut(step, bar);
            bar.show(static_cast<std::size_t>(&step - steps.data()) + 1, steps.size());
        }
        bar.erase();
        for (const auto& [reason, elements] : failures)
            tellError(std::string(elements).append(": ").append(reason));
        return endings;
    }

private:
    void carryOut(const WriteStep& step, ProgressBar& bar) {
        if (silentInARow >= silencesOfADeadStation) {
            fail(step, "not sent, since the station does not answer");
            return;
        }
        const CommandEnding ending = sender.send(step.action);
        silentInARow = ending.isSilent ? silentInARow + 1 : 0;
        for (const std::size_t write : step.writes)
            endings[write] = ending.kind;
        if (ending.kind != Kind::Done) {
            fail(step, ending.reason);
            return;
        }
        bar.erase();
        for (const std::size_t place : step.writes) {
            const ElementWrite& write = options.writes[place];
            std::cout << readingAsText(pointOf(write), heldBy(write)) << '\n';
        }
        std::cout << std::flush;
    }

    void fail(const WriteStep& step, const std::string& reason) {
        std::string& elements = failures[reason];
        if (elements.empty())
            elements = nameOf(options.controller.line) + ",";
        for (const std::size_t write : step.writes)
            elements.append(" ").append(toText(options.writes[write].address));
    }

    const WriteOptions& options;
    CommandSender sender;
    const std::unique_ptr<ExchangeFeed::Watch> captured;
    WriteEndings endings;
    unsigned silentInARow = 0;
    std::map<std::string, std::string> failures; // by reason: line, station, elements
};

// The last write of each element: what is to be found there afterwards.
std::vector<std::size_t> lastWrites(const WriteOptions& options, const WriteEndings& endings) {
    std::map<std::pair<char, unsigned>, std::size_t> writeOfElement;
    for (std::size_t i = 0; i < options.writes.size(); ++i)
        writeOfElement[{options.writes[i].address.media, options.writes[i].address.number}] = i;
    std::vector<std::size_t> writes;
    for (std::size_t i = 0; i < options.writes.size(); ++i)
        if (endings[i] == Kind::Done &&
            writeOfElement.at({options.writes[i].address.media, options.writes[i].address.number}) == i)
            writes.push_back(i);
    return writes;
}

std::string differenceText(const ControllerLine& line, const ElementWrite& write, double read) {
    const Point point = pointOf(write);
    const bool isTimer = write.address.media == 'T';
    return nameOf(line) + ", " + toText(write.address) + ": " + valueText(point, heldBy(write)) +
           " was written and acknowledged, but " + valueText(point, read) + " was read back; check " +
           (isTimer ? "whether the timer runs" : "whether the controller's program writes it, too");
}

// False when anything differs or could not be read back.
ExitStatus verify(const WriteOptions& options, const WriteEndings& endings, OneShotCapture& capture) {
    const ControllerLine& line = options.controller.line;
    const std::vector<std::size_t> writes = lastWrites(options, endings);
    if (writes.empty())
        return ExitStatus::Good;
    std::vector<ElementRead> elements;
    elements.reserve(writes.size());
    for (const std::size_t write : writes)
        elements.push_back(
            {options.writes[write].address, options.writes[write].isFloat, options.writes[write].isIeee});
    ElementReader reader(line, elements);
    const auto captured = capture.follow(reader.exchanges());
    const std::string fault = reader.open(options.controller.pluginPath);
    if (!fault.empty()) {
        tellError(fault);
        return ExitStatus::Configuration;
    }
    const ReadRound round = reader.read([](std::size_t, std::size_t) {});
    for (const std::string& failure : round.failures)
        tellError(failure + " (while reading back)");
    ElementTally tally{0, round.refused, 0};
    bool differs = false;
    for (std::size_t i = 0; i < writes.size(); ++i) {
        if (!round.readings[i].isRead)
            continue;
        const ElementWrite& write = options.writes[writes[i]];
        ++tally.good;
        if (heldBy(write) == round.readings[i].value)
            continue;
        differs = true;
        tellError(differenceText(line, write, round.readings[i].value));
    }
    tally.failed = writes.size() - tally.good - tally.refused;
    return differs ? ExitStatus::SomeElements : statusOf(tally);
}

} // namespace

ExitStatus writeElements(const WriteOptions& options) {
    terminal::survivePipeEnd();
    stopsignal::install();
    const Site site = makeWriteSite(options.controller.line, options.writes);
    WriteEndings endings;
    OneShotCapture capture(options.controller.capture);
    {
        Writing writing(options, site, capture); // closes the line before it is opened to read back
        std::string fault = capture.start();
        if (fault.empty())
            fault = writing.open();
        if (!fault.empty()) {
            tellError(fault);
            return ExitStatus::Configuration;
        }
        endings = writing.carryOut();
    }
    const ExitStatus written = statusOf(tallyOf(endings));
    if (!options.verify || stopsignal::isRequested())
        return written;
    const ExitStatus verified = verify(options, endings, capture);
    return written == ExitStatus::Good ? verified : written;
}

} // namespace host
