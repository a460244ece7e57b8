#include <HalvexDriverComponent/CLogger.h>

#include "LogFiles.h"
#include "LogWatchers.h"

#include <chrono>
#include <exception>
#include <mutex>
#include <shared_mutex>
#include <utility>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

// How long the end of the process waits for the last lines: enough for a disk that works, and unnoticed by
// whoever waits for the process.
constexpr std::chrono::milliseconds lastLinesTime{100};

// Records are told from the lines of RTUs, whose ids begin at 0.
constexpr int recordSource = -1;

std::string fileLine(const LogLine& line) {
    const bool isFrame = line.route == LogLine::Route::Packet;
    const int code = isFrame ? static_cast<int>(line.packetType) : static_cast<int>(line.level);
    return "rtu " + std::to_string(line.rtuId) + (isFrame ? " packet " : " level ") + std::to_string(code) +
           ": " + line.text.toStdString();
}

} // namespace

struct CLogger::Backend {
    Backend() = default;
    Backend(const Backend&) = delete;
    Backend& operator=(const Backend&) = delete;
    ~Backend();

    void write(const LogLine& line);
    void writeFrameLine(int channelId, int rtuId, Halvex::PacketType type, const QString& text,
                        bool startsEntry);
    // Throws, with the files as they were, when the system has no thread or memory to give.
    void useFiles(const LoggerSettings& settings);
    // Forgets file sets that are written out; false when one is not by the deadline.
    bool collectRetired(Clock::time_point deadline);

    const std::shared_ptr<LogWatchers> watchers = std::make_shared<LogWatchers>();
    const std::shared_ptr<LogCounters> counters = std::make_shared<LogCounters>();

    // Held by configure and flush, so that the files stay the same while a flush waits.
    std::mutex settingsMutex;

    // Guards the pointer, not the files: writers share it, configure takes it for itself for a moment. Nobody
    // keeps it while waiting for anything.
    mutable std::shared_mutex filesMutex;
    std::shared_ptr<LogFiles> files;
    bool filesTrace = false;

    // File sets of earlier settings whose last lines are on their way to the disk.
    mutable std::mutex retiredMutex; // changes of the list are under both mutexes
    std::vector<std::shared_ptr<LogFiles>> retired;
    std::uint64_t overrunsBefore = 0; // of file sets that are gone
};

void CLogger::Backend::write(const LogLine& line) {
    const bool isFrame = line.route == LogLine::Route::Packet;
    if (watchers->areThere())
        watchers->notify(line);
    const std::shared_lock<std::shared_mutex> lock(filesMutex);
    if (files && (!isFrame || filesTrace))
        files->write({line.channelId, line.rtuId, isFrame}, std::chrono::system_clock::now(), fileLine(line));
}

void CLogger::Backend::writeFrameLine(int channelId, int rtuId, Halvex::PacketType type, const QString& text,
                                      bool startsEntry) {
    LogLine line;
    line.route = LogLine::Route::Packet;
    line.channelId = channelId;
    line.rtuId = rtuId;
    line.packetType = type;
    line.startsEntry = startsEntry;
    line.text = text;
    write(line);
}

void CLogger::Backend::useFiles(const LoggerSettings& settings) {
    // Everything that can fail comes before the swap, the start of the threads last.
    {
        const std::lock_guard<std::mutex> lock(retiredMutex);
        retired.reserve(retired.size() + 1);
    }
    std::shared_ptr<LogFiles> newFiles;
    if (!settings.directory.empty())
        newFiles = LogFiles::start(settings, counters);
    const bool trace = newFiles && settings.traceFrames;
    {
        const std::unique_lock<std::shared_mutex> lock(filesMutex);
        watchers->addTraceViewers((trace ? 1 : 0) - (filesTrace ? 1 : 0));
        filesTrace = trace;
        files.swap(newFiles);
    }
    if (!newFiles)
        return;
    newFiles->end();
    const std::lock_guard<std::mutex> lock(retiredMutex);
    retired.push_back(std::move(newFiles));
}

bool CLogger::Backend::collectRetired(Clock::time_point deadline) {
    while (!retired.empty()) {
        if (!retired.back()->waitForEnd(deadline))
            return false;
        const std::lock_guard<std::mutex> lock(retiredMutex);
        overrunsBefore += retired.back()->overruns();
        retired.pop_back();
    }
    return true;
}

// The file sets that the disk keeps beyond the deadline live on until the process is gone.
CLogger::Backend::~Backend() {
    const auto deadline = Clock::now() + lastLinesTime;
    if (files) {
        files->flush(deadline);
        files->end();
        files->waitForEnd(deadline);
        files->dropQueued();
    }
    collectRetired(deadline);
    for (const auto& late : retired)
        late->dropQueued();
}

CLogger::CLogger() : backend(std::make_unique<Backend>()) {}

CLogger::~CLogger() = default;

CLogger* CLogger::GetInstance() {
#ifdef _WIN32
    // Windows ends all other threads before it lets go of the libraries, wherever they are: a destructor
    // would wait for ever for a lock that one of them held. Who wants the last lines on the disk calls
    // flush() before.
    static CLogger* const instance = new CLogger;
    return instance;
#else
    static CLogger instance;
    return &instance;
#endif
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
    if (backend->watchers->isTraceWanted())
        backend->writeFrameLine(channelId, rtuId, type, text, startsEntry);
}

void CLogger::writeRecord(int channelId, std::chrono::system_clock::time_point time,
                          const std::string& text) {
    const std::shared_lock<std::shared_mutex> lock(backend->filesMutex);
    if (backend->files)
        backend->files->write({channelId, recordSource, false}, time, text);
}

bool CLogger::configure(const LoggerSettings& settings) {
    const std::lock_guard<std::mutex> lock(backend->settingsMutex);
    backend->collectRetired(Clock::now());
    try {
        backend->useFiles(settings);
        return true;
    } catch (const std::exception&) {
        return false; // the channels run on
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
        for (const auto& retired : backend->retired) {
            figures.dropped += retired->overruns();
            figures.queued += retired->queued();
        }
    }
    const std::shared_lock<std::shared_mutex> lock(backend->filesMutex);
    if (backend->files) {
        figures.dropped += backend->files->overruns();
        figures.queued += backend->files->queued();
    }
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
