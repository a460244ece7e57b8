#pragma once

#include <HalvexDriverComponent/Export.h>
#include <HalvexDriverComponent/Halvex.h>

#include <QString>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

struct LogLine {
    // Who is to be shown the line; watchers get every line, and go by its route.
    enum class Route {
        All,    // the channel's file and the operator
        File,   // the channel's file
        Packet, // the frame trace
    };
    Route route = Route::All;
    int channelId = 0;
    int rtuId = 0;                                                     // 0: the channel itself
    Halvex::LogLevel level = Halvex::LogLevel::Success;                // routes All and File
    Halvex::PacketType packetType = Halvex::PacketType::ProtocolError; // route Packet
    bool startsEntry = true; // route Packet: begins an entry, rather than going on with the one before
    QString text;
};

struct LoggerSettings {
    std::string directory;                                // empty: no files
    std::size_t fileBytes = std::size_t{5} * 1024 * 1024; // a channel's file is rotated at this size
    std::size_t filesPerChannel = 3;
    bool traceFrames = false;       // the frame trace goes into the files too
    std::size_t queuedLines = 8192; // lines waiting for the disk; the oldest is dropped beyond
};

struct LoggerFigures {
    std::uint64_t written = 0;
    std::uint64_t dropped = 0;   // the queue was full, or the disk refused the line
    std::uint64_t queued = 0;    // not on the disk yet
    std::uint64_t collapsed = 0; // repeats of the line before, reported as one line with their count
};

// The host's log: one file per channel and one of the host itself, written behind the caller's back, and
// subscribers that see each line as it comes. No operation waits for a disk or throws. Any thread.
class HALVEXDRIVERCOMPONENT_EXPORT CLogger {
public:
    static CLogger* GetInstance();

    void writeAll(int channelId, int rtuId, Halvex::LogLevel level, const QString& text);
    void writeFile(int channelId, int rtuId, Halvex::LogLevel level, const QString& text);
    // Returns at once while nobody looks at the frame trace.
    void writeConPacket(int channelId, int rtuId, Halvex::PacketType type, const QString& text,
                        bool startsEntry);

    // A record of the host's own for a channel's file, as it is and with its own time; channel 0 is the host
    // itself, whose file is "host.log". Subscribers do not see it.
    void writeRecord(int channelId, std::chrono::system_clock::time_point time, const std::string& text);

    // Replaces the settings; lines written before go where they were meant to. False when the system has no
    // thread or memory for the files: then all stays as it was. Host's main thread.
    bool configure(const LoggerSettings& settings);
    // Waits until what was written is on the disk or dropped, at most `timeoutMs`.
    bool flush(int timeoutMs);
    LoggerFigures figures() const;

    // The watcher sees lines on the thread that writes them until its subscription is destroyed, which waits
    // for a call in progress. It may log: what it writes itself is not handed back to it.
    class Subscription;
    using Watcher = std::function<void(const LogLine&)>;
    // Leaves the frame trace unseen, and unpaid for.
    [[nodiscard]] std::unique_ptr<Subscription> watchLines(Watcher watcher);
    [[nodiscard]] std::unique_ptr<Subscription> watchLinesAndFrames(Watcher watcher);

    CLogger(const CLogger&) = delete;
    CLogger& operator=(const CLogger&) = delete;

private:
    CLogger();
    ~CLogger();

    struct Backend;
    const std::unique_ptr<Backend> backend;
};

class HALVEXDRIVERCOMPONENT_EXPORT CLogger::Subscription {
public:
    ~Subscription();

private:
    friend class CLogger;
    explicit Subscription(std::shared_ptr<void> subscriberEntry);
    std::shared_ptr<void> entry;
};
