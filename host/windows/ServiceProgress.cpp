#include "ServiceProgress.h"

namespace host {

namespace {

// Some reports may be late on a computer that is busy.
constexpr std::chrono::milliseconds patience = 5 * ServiceProgress::reportPeriod;

} // namespace

void ServiceProgress::enter(ServicePhase next) {
    if (next <= phase)
        return;
    phase = next;
    checkpoint = 0;
}

void ServiceProgress::tellRunning() {
    enter(ServicePhase::Running);
}

void ServiceProgress::tellStopping() {
    wasAsked = true;
    enter(ServicePhase::Stopping);
}

void ServiceProgress::tellEnded(unsigned status) {
    exitStatus = wasAsked ? 0 : status;
    enter(ServicePhase::Stopped);
}

ServiceReport ServiceProgress::nextReport() {
    ServiceReport report;
    report.phase = phase;
    report.takesStop = phase == ServicePhase::Running;
    report.exitStatus = exitStatus;
    if (phase == ServicePhase::Starting || phase == ServicePhase::Stopping) {
        report.checkpoint = ++checkpoint;
        report.wait = patience;
    }
    return report;
}

} // namespace host
