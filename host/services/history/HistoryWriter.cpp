#include "HistoryWriter.h"

#include "DamagedHistory.h"
#include "site/CountText.h"
#include "site/PointText.h"

#include <sqlite3.h>

#include <algorithm>
#include <filesystem>
#include <utility>

namespace host {

namespace {

using namespace std::chrono_literals;

constexpr auto commitPeriod = 1s;
// Rows stay in the order in which they came for so long, or until there are so many: enough that a page
// of a point takes several, and few enough that to move them takes no longer than some 100 ms.
constexpr auto settlingPeriod = 60s;
constexpr std::uint64_t mostUnsettled = 50'000;
constexpr auto retryPause = 10s;
constexpr auto busyRetryPause = 1s;
// By how much the time of the day may run ahead of the steady clock, or behind it, between two turns.
constexpr std::int64_t clockTolerance = 1'000;

int primaryCode(const SQLite::Exception& failure) {
    return failure.getErrorCode() & 0xFF;
}

bool isDamage(const SQLite::Exception& failure) {
    return primaryCode(failure) == SQLITE_CORRUPT || primaryCode(failure) == SQLITE_NOTADB;
}

std::string remedyFor(const SQLite::Exception& failure) {
    switch (primaryCode(failure)) {
    case SQLITE_FULL:
        return "make room on its disk";
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return "end the program that has it locked";
    case SQLITE_NOTADB:
        return "it is no history: name another file, or remove this one";
    case SQLITE_CANTOPEN:
    case SQLITE_READONLY:
    case SQLITE_PERM:
        return "make its folder, and let the host's user write to it";
    default:
        return "look at its disk";
    }
}

} // namespace

HistoryWriter::HistoryWriter(const ValueStore& valueStore, const HistorySettings& historySettings,
                             std::int64_t beginMs, Tell teller)
    : store(valueStore), settings(historySettings), startMs(beginMs), tell(std::move(teller)),
      numbers(store.points().size(), 0), reader(std::in_place, store) {}

void HistoryWriter::turn(const Moment& moment) {
    work(moment, [&] {
        takeChanges(moment);
        commitIfDue(moment);
    });
    last = moment;
}

void HistoryWriter::finish(const Moment& moment) {
    nextTry = moment.steady; // the last chance
    work(moment, [&] {
        takeChanges(moment);
        commit(moment);
    });
    file.reset();
    counted.lost += store.changeCount() - committed;
    committed = store.changeCount();
}

// While nothing is written, what the ring no longer has is lost already.
HistoryWriter::Counts HistoryWriter::counts() const {
    Counts counts = counted;
    if (const std::uint64_t waiting = store.changeCount() - committed; waiting > ValueStore::mostKeptChanges)
        counts.lost += waiting - ValueStore::mostKeptChanges;
    return counts;
}

void HistoryWriter::work(const Moment& moment, const std::function<void()>& task) {
    if (!file && moment.steady < nextTry)
        return;
    try {
        if (!file)
            open(moment);
        task();
    } catch (const HistoryRefused& refusal) {
        fail(std::string(refusal.what()), moment);
    } catch (const SQLite::Exception& failure) {
        const std::string fault = std::string("cannot be written: ") + failure.what();
        if (isDamage(failure) && wasHistory(settings.file))
            return replaceDamaged(failure.what(), moment);
        fail(fault + "; " + remedyFor(failure), moment);
        if (primaryCode(failure) == SQLITE_BUSY)
            nextTry = moment.steady + busyRetryPause;
    }
}

void HistoryWriter::open(const Moment& moment) {
    file = std::make_unique<HistoryFile>(settings.file);
    retention = std::make_unique<HistoryRetention>(*file, settings);
    std::fill(numbers.begin(), numbers.end(), 0);
    if (run && !file->hasRun(run->number)) // another file has taken its place
        run.reset();
    lastCommit = moment.steady;
    lastSettling = moment.steady - settlingPeriod; // what an earlier host has left
}

// A run goes on when nothing was missed, also over a time in which the file could not be written.
void HistoryWriter::takeChanges(const Moment& moment) {
    file->begin();
    if (!run && !hasCommitted)
        beginFirstRun();
    else if (!run || hasClockMoved(moment))
        beginRun(moment);
    for (;;) {
        reader->read(changes, ValueStore::mostAtOnce);
        if (const std::uint64_t missed = reader->takeMissed(); missed > 0) {
            newlyLost += missed + changes.size();
            beginRun(moment);
            continue;
        }
        if (changes.empty())
            break;
        for (const PointChange& change : changes)
            add(change.index, change.state);
    }
    coveredMs = std::max(coveredMs, moment.timeMs);
}

// A clock that was set makes times that do not follow each other; a computer that has slept has seen nothing.
bool HistoryWriter::hasClockMoved(const Moment& moment) const {
    if (!last)
        return false;
    const auto passed =
        std::chrono::duration_cast<std::chrono::milliseconds>(moment.steady - last->steady).count();
    const std::int64_t shown = moment.timeMs - last->timeMs;
    return shown > passed + clockTolerance || shown < passed - clockTolerance;
}

// All changes since the start are still in the ring; if not, that will be seen.
void HistoryWriter::beginFirstRun() {
    run = Run{file->beginRun(startMs), startMs};
    coveredMs = startMs;
}

// The one before ends with what was read.
void HistoryWriter::beginRun(const Moment& moment) {
    if (run)
        file->extendRun(run->number, coveredMs);
    run = Run{file->beginRun(moment.timeMs), moment.timeMs};
    coveredMs = moment.timeMs;
    addStates();
}

// How all points stand, and goes on with the changes that follow.
void HistoryWriter::addStates() {
    std::optional<std::uint64_t> next;
    const std::size_t count = store.points().size();
    for (PointIndex first = 0; first < count; first += static_cast<PointIndex>(states.size())) {
        const std::uint64_t position = store.copyStates(first, count - first, states);
        next = next.value_or(position);
        for (std::size_t i = 0; i < states.size(); ++i)
            if (states[i].quality != PointQuality::NeverRead) {
                states[i].changeTimeMs = run->beginMs;
                add(first + static_cast<PointIndex>(i), states[i]);
            }
    }
    const std::uint64_t position = next.value_or(0);
    newlyLost += position - reader->position();
    reader.emplace(store, position);
}

void HistoryWriter::add(PointIndex index, const PointState& state) {
    const PointRef ref = store.points().at(index);
    if (numbers[index] == 0)
        numbers[index] = file->numberOf(ref);
    RecordedRow row{std::max<std::int64_t>(state.changeTimeMs, run->beginMs), state.quality, {}};
    if (state.quality == PointQuality::Good)
        row.value = shownValue(*ref.point, state.value);
    file->add(numbers[index], row);
    coveredMs = std::max(coveredMs, row.timeMs);
    ++newRows;
}

void HistoryWriter::commitIfDue(const Moment& moment) {
    if (moment.steady - lastCommit >= commitPeriod)
        commit(moment);
}

void HistoryWriter::commit(const Moment& moment) {
    file->extendRun(run->number, coveredMs);
    if (moment.steady - lastSettling >= settlingPeriod || file->unsettledRows() >= mostUnsettled) {
        if (!std::filesystem::exists(std::filesystem::u8path(settings.file)))
            throw HistoryRefused("was removed while it was written");
        file->settle();
        lastSettling = moment.steady;
    }
    retention->work(moment.timeMs, newRows);
    file->commit();
    counted.rows += std::exchange(newRows, 0);
    counted.lost += std::exchange(newlyLost, 0);
    counted.bytes = file->size().file;
    lastCommit = moment.steady;
    committed = reader->position();
    committedRun = run;
    hasCommitted = true;
    tellEndOfTrouble();
}

void HistoryWriter::fail(const std::string& fault, const Moment& moment) {
    tellTrouble("history " + settings.file + " " + fault +
                "; changes wait in memory, and are counted when "
                "there are too many");
    close(moment);
}

// Goes back to what is in the file.
void HistoryWriter::close(const Moment& moment) {
    ++counted.failures;
    retention.reset();
    file.reset();
    reader.emplace(store, committed);
    run = committedRun;
    newRows = 0;
    newlyLost = 0;
    nextTry = moment.steady + retryPause;
}

void HistoryWriter::replaceDamaged(const std::string& fault, const Moment& moment) {
    close(moment);
    const std::string aside = moveAside(settings.file, moment.timeMs);
    if (aside.empty())
        return tellTrouble("history " + settings.file + " is damaged (" + fault +
                           ") and cannot be moved aside; remove it");
    tell("history " + settings.file + " is damaged (" + fault + "): it is now " + aside +
             ", and a new one begins",
         Severity::Error);
    committedRun.reset();
    run.reset();
    nextTry = moment.steady;
}

void HistoryWriter::tellTrouble(const std::string& what) {
    if (!std::exchange(isInTrouble, true)) {
        lostBeforeTrouble = counted.lost;
        tell(what, Severity::Error);
    }
}

void HistoryWriter::tellEndOfTrouble() {
    if (!std::exchange(isInTrouble, false))
        return;
    const std::uint64_t lost = counted.lost - lostBeforeTrouble;
    tell("history " + settings.file + " is written again; " +
             (lost == 0 ? std::string("nothing is missing") : countWereText(lost, "change") + " lost"),
         Severity::Note);
}

} // namespace host
