#include <HalvexDriverComponent/CLogger.h>

#include "LogFiles.h"
#include "LogWatchers.h"

#include <chrono>
#include <exception>
#include <future>
#include <mutex>
#include <shared_mutex>
#include <utility>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

std::string fileLine(const LogLine& line) {
    const bool isFrame = line.route == LogLine::Route::Packet;
    const int code = isFrame ? static_cast<int>(line.packetType) : static_cast<int>(line.level);
    return "rtu " + std::to_string(line.rtuId) + (isFrame ? " packet " : " level ") + std::to_string(code) +
           ": " + line.text.toStdString();
}

} // namespace

struct CLogger::Backend {
    void write(const LogLine& line);
    void useFiles(std::unique_ptr<LogFiles> newFiles, bool traceFrames);
    // Forgets file sets that are written out; false when one is not by the deadline.
    bool collectRetired(Clock::time_point deadline);

    const std::shared_ptr<LogWatchers> watchers = std::make_shared<LogWatchers>();
    const std::shared_ptr<LogCounters> counters = std::make_shared<LogCounters>();

    // Held by configure and flush, so that the files stay the same while a flush waits.
    std::mutex settingsMutex;

    // Guards the pointer, not the files: writers share it, configure takes it for itself for a moment. Nobody
    // keeps it while waiting for anything.
    mutable std::shared_mutex filesMutex;
    std::unique_ptr<LogFiles> files;
    bool filesTrace = false;

    // File sets of earlier settings whose last lines are on their way to the disk. The future comes after
    // what it works on: its destructor waits.
    struct Retired {
        std::unique_ptr<LogFiles> files;
        std::future<void> stopped;
    };
    mutable std::mutex retiredMutex; // changes of the list are under both mutexes
    std::vector<Retired> retired;
    std::uint64_t overrunsBefore = 0; // of file sets that are gone
};

void CLogger::Backend::write(const LogLine& line) {
    const bool isFrame = line.route == LogLine::Route::Packet;
    if (watchers->areThere())
        watchers->notify(line);
    const std::shared_lock<std::shared_mutex> lock(filesMutex);
    if (files && (!isFrame || filesTrace))
        files->write(line.channelId, line.rtuId, isFrame, fileLine(line));
}

void CLogger::Backend::useFiles(std::unique_ptr<LogFiles> newFiles, bool traceFrames) {
    const bool trace = newFiles && traceFrames;
    {
        const std::unique_lock<std::shared_mutex> lock(filesMutex);
        watchers->addTraceViewers((trace ? 1 : 0) - (filesTrace ? 1 : 0));
        filesTrace = trace;
        files.swap(newFiles);
    }
    if (!newFiles)
        return;
    LogFiles* old = newFiles.get();
    const std::lock_guard<std::mutex> lock(retiredMutex);
    retired.push_back({std::move(newFiles), std::async(std::launch::async, [old] { old->stop(); })});
}

bool CLogger::Backend::collectRetired(Clock::time_point deadline) {
    while (!retired.empty()) {
        if (retired.back().stopped.wait_until(deadline) != std::future_status::ready)
            return false;
        const std::lock_guard<std::mutex> lock(retiredMutex);
        overrunsBefore += retired.back().files->overruns();
        retired.pop_back();
    }
    return true;
}

CLogger::CLogger() : backend(std::make_unique<Backend>()) {}

CLogger::~CLogger() = default;

CLogger* CLogger::GetInstance() {
    static CLogger instance;
    return &instance;
}

void CLogger::writeAll(int channelId, int rtuId, Halvex::LogLevel level, const QString& text) {
    LogLine line;
    line.route = LogLine::Route::All;
    line.channelId = channelId;
    line.rtuId = rtuId;
    line.level = level;
    line.text = text;
    backend->write(line);
}

void CLogger::writeFile(int channelId, int rtuId, Halvex::LogLevel level, const QString& text) {
    LogLine line;
    line.route = LogLine::Route::File;
    line.channelId = channelId;
    line.rtuId = rtuId;
    line.level = level;
    line.text = text;
    backend->write(line);
}

void CLogger::writeConPacket(int channelId, int rtuId, Halvex::PacketType type, const QString& text,
                             bool startsEntry) {
    if (!backend->watchers->isTraceWanted())
        return;
    LogLine line;
    line.route = LogLine::Route::Packet;
    line.channelId = channelId;
    line.rtuId = rtuId;
    line.packetType = type;
    line.startsEntry = startsEntry;
    line.text = text;
    backend->write(line);
}

void CLogger::configure(const LoggerSettings& settings) {
    const std::lock_guard<std::mutex> lock(backend->settingsMutex);
    backend->collectRetired(Clock::now());
    try {
        std::unique_ptr<LogFiles> files;
        if (!settings.directory.empty())
            files = std::make_unique<LogFiles>(settings, backend->counters);
        backend->useFiles(std::move(files), settings.traceFrames);
    } catch (const std::exception&) {
        // The system has no thread to give: the files stay as they were, and the channels run on.
        return;
    }
}

bool CLogger::flush(int timeoutMs) {
    const auto deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
    const std::lock_guard<std::mutex> lock(backend->settingsMutex);
    bool inTime = backend->collectRetired(deadline);
    if (backend->files)
        inTime = backend->files->flush(deadline) && inTime;
    return inTime;
}

LoggerFigures CLogger::figures() const {
    LoggerFigures figures;
    figures.written = backend->counters->written;
    figures.collapsed = backend->counters->collapsed;
    figures.dropped = backend->counters->refused;
    {
        const std::lock_guard<std::mutex> lock(backend->retiredMutex);
        figures.dropped += backend->overrunsBefore;
        for (const auto& retired : backend->retired)
            figures.dropped += retired.files->overruns();
    }
    const std::shared_lock<std::shared_mutex> lock(backend->filesMutex);
    if (backend->files)
        figures.dropped += backend->files->overruns();
    return figures;
}

std::unique_ptr<CLogger::Subscription> CLogger::watchLines(Watcher watcher) {
    return std::unique_ptr<Subscription>(
        new Subscription(LogWatchers::add(backend->watchers, std::move(watcher), false)));
}

std::unique_ptr<CLogger::Subscription> CLogger::watchLinesAndFrames(Watcher watcher) {
    return std::unique_ptr<Subscription>(
        new Subscription(LogWatchers::add(backend->watchers, std::move(watcher), true)));
}

CLogger::Subscription::Subscription(std::shared_ptr<void> subscriberEntry)
    : entry(std::move(subscriberEntry)) {}

CLogger::Subscription::~Subscription() {
    const auto subscriber = std::static_pointer_cast<LogWatchers::Subscriber>(entry);
    subscriber->owner->remove(subscriber);
}
