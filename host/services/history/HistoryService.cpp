#include "HistoryService.h"

#include "HistoryWriter.h"

#include <QDateTime>

namespace host {

namespace {

// The ring of changes is half a second long at the most changes that a host can have.
constexpr std::chrono::milliseconds readPeriod{100};

HistoryWriter::Moment now() {
    return {QDateTime::currentMSecsSinceEpoch(), std::chrono::steady_clock::now()};
}

} // namespace

HistoryService::HistoryService(const HistorySettings& historySettings) : settings(historySettings) {}

HistoryService::~HistoryService() {
    stop();
}

std::string HistoryService::start(RunningSite& runningSite) {
    writer = std::make_unique<HistoryWriter>(
        runningSite.values, settings, now().timeMs,
        [&messages = runningSite.messages](const std::string& message, Severity severity) {
            messages.tell(message, severity);
        });
    thread.start("the history", readPeriod, [this] {
        writer->turn(now());
        show();
    });
    return {};
}

void HistoryService::stop() {
    if (!writer)
        return;
    thread.stop();
    writer->finish(now());
    show();
    writer.reset();
}

void HistoryService::show() {
    const HistoryWriter::Counts counts = writer->counts();
    rows = counts.rows;
    lost = counts.lost;
    failures = counts.failures;
    bytes = counts.bytes;
}

std::vector<ServiceFigure> HistoryService::figures() const {
    return {{"rows", rows}, {"lost", lost}, {"failures", failures}, {"bytes", bytes}};
}

} // namespace host
