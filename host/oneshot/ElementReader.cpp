#include "ElementReader.h"

#include "runtime/FailureText.h"
#include "runtime/OpenFailureText.h"
#include "services/console/StopSignal.h"

#include <HalvexDriverComponent/CRtu.h>
#include <HalvexDriverComponent/Halvex.h>

#include <algorithm>
#include <map>

namespace host {

namespace {

using Clock = std::chrono::steady_clock;
using Kind = RequestEnd::Kind;

constexpr std::chrono::milliseconds lookPeriod{20}; // how soon a signal is seen
constexpr unsigned mostTries = 3;
constexpr unsigned silencesOfADeadStation = 3;
// A station that has answered is lost only after so many: single telegrams get lost on a bad line.
constexpr unsigned silencesOfALostStation = 10;
// Beyond the answer's time-out: a send and a drain may take 5 s each, the next try to open the line 1 s.
constexpr std::chrono::seconds patienceBeyondTimeOut{15};
constexpr std::size_t mostRangesTold = 4;

std::string rangesText(const std::vector<std::string>& ranges) {
    std::string text;
    for (std::size_t i = 0; i < std::min(ranges.size(), mostRangesTold); ++i)
        text += (i == 0 ? "" : ", ") + ranges[i];
    if (ranges.size() > mostRangesTold)
        text += " and " + std::to_string(ranges.size() - mostRangesTold) + " more telegrams";
    return text;
}

} // namespace

ElementReader::ElementReader(const ControllerLine& controllerLine,
                             const std::vector<ElementRead>& elementsToRead)
    : line(controllerLine), site(makeReadSite(line, elementsToRead)), board(site, elementsToRead.size()),
      runtime(site, board, &board), chunks(channel().rtus.size()) {}

ElementReader::~ElementReader() {
    if (stopsignal::isRequested())
        runtime.stopAtOnce();
}

std::string ElementReader::open(const std::string& pluginPath) {
    return runtime.start(pluginPath);
}

ReadRound ElementReader::read(const Progress& progress) {
    begin();
    const std::chrono::milliseconds patience = line.timeout + patienceBeyondTimeOut;
    Clock::time_point lastNews = Clock::now();
    std::size_t readBefore = 0;
    while (!isSettled() && !stopsignal::isRequested()) {
        board.waitForNews(lookPeriod);
        if (const int failure = board.takeFailedOpen())
            giveUpAll(cannotOpenReason(line.end, failure) + (isInUse(failure) ? lineInUseHint(line) : ""));
        const std::vector<RequestEnd> ends = board.takeEnds();
        for (const RequestEnd& end : ends)
            takeEnd(end);
        const std::size_t readNow = board.readCount();
        if (!ends.empty() || readNow != readBefore)
            lastNews = Clock::now();
        else if (Clock::now() - lastNews > patience)
            giveUpAll("the driver gave no result; check the line");
        readBefore = readNow;
        progress(readNow, board.readings().size());
    }
    board.finish();
    return collect(!isSettled());
}

void ElementReader::begin() {
    chunks.assign(chunks.size(), Chunk());
    silentInARow = 0;
    hasAnswered = false;
    // The driver asks every RTU by itself when the line connects.
    if (isFirstRound) {
        isFirstRound = false;
        return;
    }
    board.begin();
    for (std::size_t chunk = 0; chunk < chunks.size(); ++chunk)
        ask(chunk);
}

void ElementReader::ask(std::size_t chunk) {
    if (CRtu* const rtu = runtime.findRtu(oneShotChannelId, channel().rtus[chunk].id))
        rtu->RequestPoll(static_cast<int>(Halvex::PollKind::Integrity), nullptr);
}

// The values of a telegram come together.
bool ElementReader::isRead(std::size_t chunk) const {
    return board.isRead(pointsOf(chunk).front().id);
}

bool ElementReader::isSettled() const {
    for (std::size_t chunk = 0; chunk < chunks.size(); ++chunk)
        if (!chunks[chunk].isGivenUp && !isRead(chunk))
            return false;
    return true;
}

void ElementReader::takeEnd(const RequestEnd& end) {
    const auto place = static_cast<std::size_t>(end.rtu->id - 1);
    if (place >= chunks.size())
        return;
    judgeSilence(end);
    Chunk& chunk = chunks[place];
    if (end.kind == Kind::Answered || chunk.isGivenUp || isRead(place))
        return;
    ++chunk.tries;
    chunk.isRefused = end.kind == Kind::Refused;
    chunk.failure = chunk.isRefused
                        ? "the controller refused the request (" + refusalText(end) +
                              "); check that it has all of these elements, or ask for fewer at a time"
                        : failureReason(end);
    chunk.isGivenUp = chunk.isRefused || chunk.tries >= mostTries;
    if (!chunk.isGivenUp)
        ask(place);
}

void ElementReader::judgeSilence(const RequestEnd& end) {
    if (end.kind != Kind::NoAnswer && end.kind != Kind::LineFailed && end.kind != Kind::NotSent) {
        hasAnswered = true;
        silentInARow = 0;
        return;
    }
    ++silentInARow;
    if (silentInARow >= (hasAnswered ? silencesOfALostStation : silencesOfADeadStation))
        giveUpAll(failureReason(end));
}

void ElementReader::giveUpAll(const std::string& reason) {
    for (std::size_t place = 0; place < chunks.size(); ++place) {
        Chunk& chunk = chunks[place];
        if (chunk.isGivenUp || isRead(place))
            continue;
        chunk.isGivenUp = true;
        chunk.failure = reason;
    }
}

ReadRound ElementReader::collect(bool isInterrupted) const {
    ReadRound round;
    round.readings = board.readings();
    round.isInterrupted = isInterrupted;
    for (std::size_t place = 0; place < chunks.size(); ++place)
        if (chunks[place].isRefused && !isRead(place))
            round.refused += pointsOf(place).size();
    addFailures(round);
    return round;
}

// One line for all telegrams that failed in the same way.
void ElementReader::addFailures(ReadRound& round) const {
    std::map<std::string, std::vector<std::string>> rangesOfReason;
    for (std::size_t place = 0; place < chunks.size(); ++place) {
        const Chunk& chunk = chunks[place];
        if (isRead(place))
            continue;
        const std::string reason = chunk.isGivenUp ? chunk.failure : "interrupted before it was read";
        rangesOfReason[reason].push_back(elementsText(channel().rtus[place]));
    }
    for (const auto& [reason, ranges] : rangesOfReason)
        round.failures.push_back(nameOf(line) + ", " + rangesText(ranges) + ": " + reason);
}

} // namespace host
