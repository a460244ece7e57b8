#pragma once

#include <chrono>

namespace host {

enum class ServicePhase { Starting, Running, Stopping, Stopped };

// What the service manager is told at a time.
struct ServiceReport {
    ServicePhase phase = ServicePhase::Starting;
    bool takesStop = false;
    unsigned checkpoint = 0;           // grows while something is under way
    std::chrono::milliseconds wait{0}; // how long the next report may take
    unsigned exitStatus = 0;           // other than 0: the service has failed
};

// How far a service has come. States as the phases; none leads back. One thread at a time.
class ServiceProgress {
public:
    // The next report is due after this time in a phase that is to end.
    static constexpr std::chrono::milliseconds reportPeriod{1'000};

    void tellRunning();
    void tellStopping();
    // A service that was asked to stop has not failed, whatever its status: the manager would start it again.
    void tellEnded(unsigned status);

    ServiceReport nextReport();

private:
    void enter(ServicePhase next);

    ServicePhase phase = ServicePhase::Starting;
    unsigned checkpoint = 0;
    bool wasAsked = false;
    unsigned exitStatus = 0;
};

} // namespace host
