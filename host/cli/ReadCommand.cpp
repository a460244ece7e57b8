#include "oneshot/Commands.h"
#include "oneshot/ElementReader.h"
#include "oneshot/ElementTally.h"
#include "oneshot/OneShotCapture.h"

#include "services/console/ProgressBar.h"
#include "services/console/StopSignal.h"
#include "services/console/Terminal.h"
#include "site/PointValue.h"
#include "values/ReadingText.h"
#include "values/TimeText.h"
#include <OutputReader.h>

#include <QDateTime>

#include <ControlCharacters.h>

#include <iostream>
#include <thread>

namespace host {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds lookPeriod{20}; // how soon a signal is seen

void show(const ReadOptions& options, const ElementRead& element, const Reading& reading) {
    const Point point = pointOf(element);
    const bool isGood = reading.isRead && isNumber(point, reading.value);
    const PointState state{reading.value, reading.timeMs, reading.timeMs,
                           isGood ? PointQuality::Good : PointQuality::Bad};
    switch (options.format) {
    case ReadFormat::Text:
        if (reading.isRead)
            std::cout << readingAsText(point, reading.value) << '\n';
        break;
    case ReadFormat::Json:
        std::cout << readingAsJson(point, state) << '\n';
        break;
    case ReadFormat::Csv:
        std::cout << readingAsCsv(point, state) << '\n';
        break;
    }
}

void show(const ReadOptions& options, const ReadRound& round) {
    for (std::size_t i = 0; i < options.elements.size(); ++i)
        show(options, options.elements[i], round.readings[i]);
    std::cout << std::flush;
    const std::string time =
        options.every ? localTimeText(QDateTime::currentMSecsSinceEpoch()) + "  " : std::string();
    for (const std::string& failure : round.failures)
        tellError(time + failure);
}

void count(ElementTally& tally, const ReadRound& round) {
    std::size_t good = 0;
    for (const Reading& reading : round.readings)
        good += reading.isRead ? 1 : 0;
    tally.good += good;
    tally.refused += round.refused;
    tally.failed += round.readings.size() - good - round.refused;
}

// False when a signal came first, or nobody reads any more.
bool sleepUntil(Clock::time_point time) {
    while (!stopsignal::isRequested() && !outputreader::isGone()) {
        const auto left = time - Clock::now();
        if (left <= Clock::duration::zero())
            return true;
        std::this_thread::sleep_for(std::min<Clock::duration>(left, lookPeriod));
    }
    return false;
}

ReadRound readWithProgress(ElementReader& reader) {
    ProgressBar bar;
    return reader.read([&bar](std::size_t read, std::size_t all) { bar.show(read, all); });
}

ElementTally readRounds(const ReadOptions& options, ElementReader& reader) {
    ElementTally tally;
    const unsigned rounds = options.every ? options.count.value_or(0) : 1; // 0: for ever
    Clock::time_point next = Clock::now();
    for (unsigned done = 1;; ++done) {
        const ReadRound round = readWithProgress(reader);
        // A reading that the end of a repetition cuts short tells nothing of the controller.
        if (round.isInterrupted && done > 1)
            return tally;
        show(options, round);
        count(tally, round);
        if (done == rounds || round.isInterrupted || !std::cout.good())
            return tally;
        // A reading that took longer than the period costs the beats that it missed.
        for (next += *options.every; next < Clock::now();)
            next += *options.every;
        if (!sleepUntil(next))
            return tally;
    }
}

} // namespace

void tellError(const std::string& text) {
    std::cerr << "sbus-host: " << text::printable(text) << std::endl;
}

ExitStatus readElements(const ReadOptions& options) {
    terminal::survivePipeEnd();
    stopsignal::install();
    OneShotCapture capture(options.controller.capture);
    ElementReader reader(options.controller.line, options.elements);
    const auto captured = capture.follow(reader.exchanges());
    std::string fault = capture.start();
    if (fault.empty())
        fault = reader.open(options.controller.pluginPath);
    if (!fault.empty()) {
        tellError(fault);
        return ExitStatus::Configuration;
    }
    if (options.format == ReadFormat::Csv)
        std::cout << readingCsvHeader << '\n';
    return statusOf(readRounds(options, reader));
}

} // namespace host
