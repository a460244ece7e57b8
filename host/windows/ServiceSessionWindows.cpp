#include "ServiceSession.h"

#include "ServiceProgress.h"
#include "services/console/StopSignal.h"

#include <QString>

#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>

#include <windows.h>

namespace host {

struct ServiceSession::State {
    std::wstring name;
    std::thread dispatcher;

    std::mutex mutex; // guards what follows
    std::condition_variable changed;
    SERVICE_STATUS_HANDLE handle = nullptr;
    bool hasEnded = false; // the dispatcher, whether it has ever begun or not
    DWORD failure = ERROR_SUCCESS;
    ServiceProgress progress;
    bool isNews = false;
    bool isOver = false;

    template <typename Change>
    void tell(Change change) {
        const std::lock_guard<std::mutex> lock(mutex);
        change(progress);
        isNews = true;
        changed.notify_all();
    }
    void dispatch();
    void serve();
    void report();

    static void WINAPI serviceMain(DWORD, wchar_t**);
    static DWORD WINAPI control(DWORD request, DWORD, void*, void* session);
    static State* theOne; // what the system calls gets no pointer
};

ServiceSession::State* ServiceSession::State::theOne = nullptr;

namespace {

DWORD stateOf(ServicePhase phase) {
    switch (phase) {
    case ServicePhase::Starting:
        return SERVICE_START_PENDING;
    case ServicePhase::Running:
        return SERVICE_RUNNING;
    case ServicePhase::Stopping:
        return SERVICE_STOP_PENDING;
    case ServicePhase::Stopped:
        break;
    }
    return SERVICE_STOPPED;
}

constexpr DWORD stops = SERVICE_ACCEPT_STOP | SERVICE_ACCEPT_SHUTDOWN | SERVICE_ACCEPT_PRESHUTDOWN;

} // namespace

void ServiceSession::State::dispatch() {
    SERVICE_TABLE_ENTRYW services[] = {{name.data(), serviceMain}, {nullptr, nullptr}};
    const BOOL wasServed = StartServiceCtrlDispatcherW(services);
    const DWORD reason = wasServed == 0 ? GetLastError() : ERROR_SUCCESS;
    const std::lock_guard<std::mutex> lock(mutex);
    failure = reason;
    hasEnded = true;
    changed.notify_all();
}

void WINAPI ServiceSession::State::serviceMain(DWORD, wchar_t**) {
    theOne->serve();
}

// The only thread that reports, so that checkpoints grow.
void ServiceSession::State::serve() {
    std::unique_lock<std::mutex> lock(mutex);
    handle = RegisterServiceCtrlHandlerExW(name.c_str(), control, this);
    report();
    changed.notify_all();
    while (!isOver) {
        changed.wait_for(lock, ServiceProgress::reportPeriod, [this] { return isNews; });
        report();
    }
}

void ServiceSession::State::report() {
    isNews = false;
    const ServiceReport now = progress.nextReport();
    SERVICE_STATUS status{};
    status.dwServiceType = SERVICE_WIN32_OWN_PROCESS;
    status.dwCurrentState = stateOf(now.phase);
    status.dwControlsAccepted = now.takesStop ? stops : 0;
    status.dwWin32ExitCode = now.exitStatus == 0 ? NO_ERROR : ERROR_SERVICE_SPECIFIC_ERROR;
    status.dwServiceSpecificExitCode = now.exitStatus;
    status.dwCheckPoint = now.checkpoint;
    status.dwWaitHint = static_cast<DWORD>(now.wait.count());
    SetServiceStatus(handle, &status);
    isOver = now.phase == ServicePhase::Stopped;
}

DWORD WINAPI ServiceSession::State::control(DWORD request, DWORD, void*, void* session) {
    if (request == SERVICE_CONTROL_INTERROGATE)
        return NO_ERROR;
    if (request != SERVICE_CONTROL_STOP && request != SERVICE_CONTROL_SHUTDOWN &&
        request != SERVICE_CONTROL_PRESHUTDOWN)
        return ERROR_CALL_NOT_IMPLEMENTED;
    static_cast<State*>(session)->tell([](ServiceProgress& progress) { progress.tellStopping(); });
    stopsignal::request();
    return NO_ERROR;
}

ServiceSession::ServiceSession() : state(std::make_unique<State>()) {}

ServiceSession::~ServiceSession() {
    constexpr unsigned failed = 2;
    end(failed);
}

std::string ServiceSession::begin(const std::string& serviceName) {
    state->name = QString::fromStdString(serviceName).toStdWString();
    State::theOne = state.get();
    state->dispatcher = std::thread([this] { state->dispatch(); });
    std::unique_lock<std::mutex> lock(state->mutex);
    state->changed.wait(lock, [this] { return state->handle != nullptr || state->hasEnded; });
    if (state->handle != nullptr)
        return {};
    if (state->failure == ERROR_FAILED_SERVICE_CONTROLLER_CONNECT)
        return "the service manager alone runs services; start this one with: sbus-host service start " +
               serviceName;
    return "the service manager: " + std::system_category().message(static_cast<int>(state->failure));
}

void ServiceSession::tellRunning() {
    state->tell([](ServiceProgress& progress) { progress.tellRunning(); });
}

void ServiceSession::end(unsigned status) {
    if (!state->dispatcher.joinable())
        return;
    state->tell([status](ServiceProgress& progress) { progress.tellEnded(status); });
    state->dispatcher.join();
}

} // namespace host
