#include "LogFiles.h"

#include "RepeatedLines.h"

#include <spdlog/async.h>
#include <spdlog/async_logger.h>
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/base_sink.h>
#include <spdlog/sinks/rotating_file_sink.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <thread>
#include <utility>

namespace {

using Clock = std::chrono::steady_clock;

// After a refusal the disk is left alone for a while: a failing open costs tens of milliseconds, in which
// lines of the other channels would wait.
constexpr std::chrono::seconds retryInterval{1};

// The name of the channel's logger is the name of its file.
std::string fileStem(int channelId) {
    return channelId == 0 ? "host" : "channel-" + std::to_string(channelId);
}

} // namespace

// The end of the queue. It runs on the queue's thread alone, and after that has ended in close().
class LogFiles::Sink final : public spdlog::sinks::base_sink<spdlog::details::null_mutex> {
public:
    Sink(const LoggerSettings& loggerSettings, std::shared_ptr<LogCounters> sharedCounters)
        : settings(loggerSettings), counters(std::move(sharedCounters)) {}

    std::uint64_t handled() const { return handledLines + handledFlushes; }
    std::uint64_t lines() const { return handledLines; }
    std::uint64_t flushes() const { return handledFlushes; }

    // In place of handling a line: there was no memory for it.
    void noteLost() {
        ++counters->refused;
        ++handledLines;
    }

    void dropFromNowOn() { dropping = true; }

    void close() {
        reportRepeats();
        files.clear();
    }

    void reportRepeats() {
        const auto now = Clock::now();
        for (auto& [stem, file] : files)
            for (const auto& [source, report] : file.repeats.takeReports(now))
                putReport(stem, file, report);
    }

protected:
    void sink_it_(const spdlog::details::log_msg& message) override {
        const std::string stem(message.logger_name.data(), message.logger_name.size());
        File& file = files[stem];
        // The RTU arrives in the message's source line. Frames of an RTU are a source of their own.
        const int source = message.source.line * 2 + (message.level == spdlog::level::trace ? 1 : 0);
        const auto verdict =
            file.repeats.examine(source, {message.payload.data(), message.payload.size()}, Clock::now());
        if (verdict.report)
            putReport(stem, file, *verdict.report);
        if (verdict.repeated)
            ++counters->collapsed;
        else
            ++(put(stem, file, message) ? counters->written : counters->refused);
        ++handledLines;
    }

    void flush_() override {
        reportRepeats();
        ++handledFlushes;
    }

private:
    struct File {
        std::unique_ptr<spdlog::sinks::rotating_file_sink_st> sink;
        Clock::time_point retryAt;
        RepeatedLines repeats;
    };

    void putReport(const std::string& stem, File& file, const std::string& text) {
        if (!put(stem, file, {spdlog::string_view_t(), spdlog::level::info, text}))
            ++counters->refused;
    }

    bool put(const std::string& stem, File& file, const spdlog::details::log_msg& message) {
        if (dropping || (!file.sink && Clock::now() < file.retryAt))
            return false;
        try {
            if (!file.sink)
                file.sink = open(stem);
            file.sink->log(message);
            return true;
        } catch (const std::exception&) {
            file.sink.reset();
            file.retryAt = Clock::now() + retryInterval;
            return false;
        }
    }

    std::unique_ptr<spdlog::sinks::rotating_file_sink_st> open(const std::string& stem) const {
        const std::size_t rotatedFiles = std::max<std::size_t>(settings.filesPerChannel, 1) - 1;
        // Every line goes to the disk at once. A buffer would only be one more thing to write when the
        // process exits, which would then wait for a disk that hangs.
        spdlog::file_event_handlers unbuffered;
        unbuffered.after_open = [](const spdlog::filename_t&, std::FILE* file) {
            std::setvbuf(file, nullptr, _IONBF, 0);
        };
        const auto path = std::filesystem::u8path(settings.directory) / (stem + ".log");
        auto opened = std::make_unique<spdlog::sinks::rotating_file_sink_st>(
            path.native(), std::max<std::size_t>(settings.fileBytes, 1), rotatedFiles, false, unbuffered);
        // Lines end alike on every system.
        opened->set_formatter(std::make_unique<spdlog::pattern_formatter>(
            "%Y-%m-%d %H:%M:%S.%e%z %v", spdlog::pattern_time_type::local, "\n"));
        return opened;
    }

    const LoggerSettings settings;
    const std::shared_ptr<LogCounters> counters;
    std::map<std::string, File> files;
    std::atomic<std::uint64_t> handledLines{0};
    std::atomic<std::uint64_t> handledFlushes{0};
    std::atomic<bool> dropping{false};
};

LogFiles::LogFiles(const LoggerSettings& settings, std::shared_ptr<LogCounters> counters)
    : sink(std::make_shared<Sink>(settings, std::move(counters))),
      pool(std::make_shared<spdlog::details::thread_pool>(std::max<std::size_t>(settings.queuedLines, 1),
                                                          1)) {}

LogFiles::~LogFiles() = default;

std::shared_ptr<LogFiles> LogFiles::start(const LoggerSettings& settings,
                                          std::shared_ptr<LogCounters> counters) {
    std::shared_ptr<LogFiles> files(new LogFiles(settings, std::move(counters)));
    std::thread([files] {
        files->reportRepeatsUntilEnd();
        files->closeFiles();
    }).detach();
    return files;
}

void LogFiles::write(const Source& source, std::chrono::system_clock::time_point time,
                     const std::string& line) {
    const auto logger = loggerOf(source.channelId);
    ++posted;
    logger->log(time, spdlog::source_loc{"", source.rtuId, ""},
                source.isFrame ? spdlog::level::trace : spdlog::level::info, line);
}

bool LogFiles::flush(Clock::time_point deadline) {
    postFlush();
    const std::uint64_t before = posted;
    while (sink->handled() + pool->overrun_counter() < before) {
        if (Clock::now() >= deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

void LogFiles::end() {
    const std::lock_guard<std::mutex> lock(endMutex);
    endAsked = true;
    endChanged.notify_all();
}

bool LogFiles::waitForEnd(Clock::time_point deadline) {
    std::unique_lock<std::mutex> lock(endMutex);
    return endChanged.wait_until(lock, deadline, [this] { return ended; });
}

void LogFiles::dropQueued() {
    sink->dropFromNowOn();
}

void LogFiles::reportRepeatsUntilEnd() {
    std::unique_lock<std::mutex> lock(endMutex);
    while (!endChanged.wait_for(lock, RepeatedLines::reportInterval, [this] { return endAsked; }))
        postFlush();
}

void LogFiles::closeFiles() {
    std::shared_ptr<spdlog::details::thread_pool> ending;
    {
        const std::uint64_t lost = overruns();
        const std::lock_guard<std::mutex> lock(poolMutex);
        overrunsAtEnd = lost;
        ending.swap(pool);
    }
    ending.reset(); // waits for the disk until nothing is queued
    sink->close();
    const std::lock_guard<std::mutex> lock(endMutex);
    ended = true;
    endChanged.notify_all();
}

std::uint64_t LogFiles::overruns() const {
    const std::lock_guard<std::mutex> lock(poolMutex);
    if (!pool)
        return overrunsAtEnd;
    // The queue's counter includes flushes that were lost, which are those neither handled nor waiting.
    const std::uint64_t lost = pool->overrun_counter();
    const std::uint64_t flushes = postedFlushes - sink->flushes();
    return lost - std::min(lost, flushes);
}

// Lines are handled meanwhile, so what has left the queue is read first.
std::uint64_t LogFiles::queued() const {
    const std::uint64_t gone = sink->lines() + overruns();
    const std::uint64_t all = posted;
    const std::uint64_t lines = all - std::min<std::uint64_t>(all, postedFlushes);
    return lines - std::min(lines, gone);
}

std::shared_ptr<spdlog::async_logger> LogFiles::loggerOf(int channelId) {
    const std::lock_guard<std::mutex> lock(loggersMutex);
    auto& logger = loggers[channelId];
    if (!logger) {
        logger = std::make_shared<spdlog::async_logger>(fileStem(channelId), sink, pool,
                                                        spdlog::async_overflow_policy::overrun_oldest);
        logger->set_level(spdlog::level::trace);
        logger->set_error_handler([lost = sink](const std::string&) { lost->noteLost(); });
    }
    return logger;
}

void LogFiles::postFlush() {
    // Any logger will do: they share the sink.
    const auto logger = loggerOf(0);
    ++postedFlushes;
    ++posted;
    logger->flush();
}
