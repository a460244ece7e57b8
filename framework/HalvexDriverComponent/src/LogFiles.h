#pragma once

#include <HalvexDriverComponent/CLogger.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace spdlog {
class async_logger;
namespace details {
class thread_pool;
} // namespace details
} // namespace spdlog

// What has become of the lines; shared by all file sets of a process, one after the other.
struct LogCounters {
    std::atomic<std::uint64_t> written{0};
    std::atomic<std::uint64_t> refused{0}; // by the disk
    std::atomic<std::uint64_t> collapsed{0};
};

// The log files of one configuration, "channel-<id>.log", "host.log" for channel 0, and their rotated
// predecessors. Lines go through a queue to a thread of its own, which alone touches the disk: a full queue
// loses its oldest line, a disk that refuses a line loses that one, a slow disk delays nobody else. A second
// thread reports repeats while the files are in use and waits for the disk at their end. It is detached and
// shares ownership, so that a disk that hangs keeps nobody: neither those who let go of the files nor the end
// of the process. Threads: any; end() comes after the last write and flush.
class LogFiles {
public:
    // Throws when no thread can be started. end() must follow: until then the files own themselves.
    static std::shared_ptr<LogFiles> start(const LoggerSettings& settings,
                                           std::shared_ptr<LogCounters> counters);
    LogFiles(const LogFiles&) = delete;
    LogFiles& operator=(const LogFiles&) = delete;
    ~LogFiles();

    // Where a line comes from: lines that repeat are looked for among those of one source.
    struct Source {
        int channelId = 0;
        int rtuId = 0;
        bool isFrame = false;
    };
    void write(const Source& source, std::chrono::system_clock::time_point time, const std::string& line);
    // Whether everything written before this call is on the disk or dropped, and repeats reported, in time.
    bool flush(std::chrono::steady_clock::time_point deadline);
    // Has what is queued written out and the files closed, and returns at once.
    void end();
    bool waitForEnd(std::chrono::steady_clock::time_point deadline);
    // From now on lines that wait for the disk are dropped and counted as refused.
    void dropQueued();
    // The lines that a full queue has lost.
    std::uint64_t overruns() const;
    // The lines that wait for the disk, or are on their way to it.
    std::uint64_t queued() const;

private:
    class Sink;

    LogFiles(const LoggerSettings& settings, std::shared_ptr<LogCounters> counters);
    void reportRepeatsUntilEnd();
    void closeFiles();
    std::shared_ptr<spdlog::async_logger> loggerOf(int channelId);
    void postFlush();

    const std::shared_ptr<Sink> sink;
    std::shared_ptr<spdlog::details::thread_pool> pool;
    mutable std::mutex poolMutex; // between closeFiles() and overruns(): the end of the pool, its last figure
    std::mutex loggersMutex;
    std::map<int, std::shared_ptr<spdlog::async_logger>> loggers;
    std::atomic<std::uint64_t> posted{0}; // lines and flushes
    std::atomic<std::uint64_t> postedFlushes{0};
    std::uint64_t overrunsAtEnd = 0;

    std::mutex endMutex; // never held while the disk is at work
    std::condition_variable endChanged;
    bool endAsked = false;
    bool ended = false;
};
