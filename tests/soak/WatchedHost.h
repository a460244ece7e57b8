#pragma once

#include "RelayedPlant.h"

#include <QProcess>
#include <QTemporaryDir>

#include <mutex>

namespace soak {

// sbus-host as a program of its own, which polls a simulated controller of this process through a relay that
// notes every request. The controller's elements hold tagged values; what the program shows is judged.
//
// It has a pulse point P1_START at O32. Main thread.
class WatchedHost {
public:
    static constexpr int lineId = 1;
    static constexpr int station = 5;
    static constexpr unsigned pulseOutput = 32;

    struct Periods {
        std::chrono::milliseconds scan{200}; // of the status poll and of the analog poll
        std::chrono::milliseconds pulse{1000};
    };

    // With more variables in the program's environment.
    explicit WatchedHost(const Periods& hostPeriods, const QProcessEnvironment& more = {});
    ~WatchedHost();

    // Returns when it has shown every value; from here on descriptors and threads are to stay as many.
    void start();
    // It shows values that are newer than this call, and returns when it has.
    void expectFresh();
    // Ends the program in order. It has shown no wrong value, and has as many descriptors and threads as
    // before.
    void stop();
    // "pump-house/P1_START=on", by sbus-host ctl; from its beginning to its end, or both. Whether the command
    // had success.
    std::unique_ptr<QProcess> beginWrite(const char* value) const;
    static bool endWrite(QProcess& command);
    bool write(const char* value) const { return endWrite(*beginWrite(value)); }

    qint64 processId() const { return program.processId(); }
    // What has come of the status poll's and of the analog poll's telegrams since `since`.
    enum class Scan { Status, Analog };
    std::vector<Clock::time_point> polls(Scan scan, Clock::time_point since) const;
    // The pulses that are over.
    struct Pulse {
        std::chrono::milliseconds width;
        bool isReleased; // by its own release, which writes 1 once more and then 0
    };
    std::vector<Pulse> pulses() const;
    ValueJudge& judge() { return valueJudge; }

private:
    void writeSite() const;
    void note(const QByteArray& telegram, Clock::time_point time);
    void awaitFresh(ValueJudge::Demanded which);
    void readOutput();
    void judgeLine(const QByteArray& line);

    const Periods periods;
    const QTemporaryDir folder;
    const QString site = folder.filePath(QStringLiteral("site.toml"));
    sim::Simulator simulator;
    ValueJudge valueJudge;
    mutable std::mutex mutex;                                     // guards the requests
    std::vector<std::pair<unsigned, Clock::time_point>> requests; // command codes
    UdpRelay relay;
    std::uint16_t port = 0;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    QProcess program;
    int descriptors = 0;
    int threads = 0;
    std::atomic<bool> moving{true};
    std::thread mover;
};

} // namespace soak
